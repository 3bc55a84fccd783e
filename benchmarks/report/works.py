"""What is to be said of a work. It stands in works.json, under its group and name.

title    what the report calls it
growth   the cost of a call that n items may take: "n log n" if left out, "n" or "log n"
differs  by peer, what that peer's result means instead
note     said of all its rows
readme   true for the rows that the README shows
"""

import json
from pathlib import Path


class Works:
    def __init__(self, notes):
        self.notes = notes

    def of(self, row):
        return self.notes.get(row.group, {}).get(row.work, {})

    def title_of(self, group, work):
        return self.notes.get(group, {}).get(work, {}).get("title", work.replace("_", " "))

    def title(self, row):
        return self.title_of(row.group, row.work)

    def growth(self, row):
        return self.of(row).get("growth", "n log n")

    def differs(self, row, peer):
        """Empty where the peer computes the same."""
        return self.of(row).get("differs", {}).get(peer, "")

    def mark(self, row, peer):
        return f"{peer} †" if self.differs(row, peer) else peer


def read_works():
    path = Path(__file__).with_name("works.json")
    return Works(json.loads(path.read_text(encoding="utf-8")))
