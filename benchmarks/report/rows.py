"""Rows of the report: the library beside its peers and the machine's limit, for one work and n.

What is to be said of a work stands in rows.json, under the work's name; every key may be left out:

title    what the report calls it; else its name
note     said of all its rows
differs  by peer, what that peer's result means instead; such a peer never counts as ahead
limit    "read" where the work only reads; else the limit is a copy
target   the time aimed at: "ratio" to that "of" the limit, the best peer, or a peer by its name;
         of two ratios the second holds for n beyond "inside" (else INSIDE_CACHE); not aimed at
         by the library with other settings
items    "queries" where an item is a query to n points, not one of n items
growth   false where n is not a length
variants what further arguments mean, such as "probes:0"
peer_of  the work whose rows these measurements belong to, as a peer called "who", in which % is
         the peer's own name
"""

import json
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import Optional

from measurements import LIBRARY, Measurement

NOTES = Path(__file__).with_name("rows.json")

# Lengths up to this count as inside the processor's caches where a target tells the two apart.
INSIDE_CACHE = 100_000


@dataclass
class Row:
    group: str
    work: str
    title: str
    library: Measurement
    peers: list = field(default_factory=list)  # fastest first
    limit: Optional[Measurement] = None
    notes: dict = field(default_factory=dict)

    @property
    def n(self):
        return self.library.n

    def differs(self, peer):
        """What the peer's result means instead, or None where it means the same."""
        return self.notes.get("differs", {}).get(peer.who)

    @property
    def best_peer(self):
        """The fastest of those whose result means the same; of all, if none does."""
        same = [peer for peer in self.peers if not self.differs(peer)]
        return next(iter(same or self.peers), None)

    @property
    def times_faster(self):
        """Time of the best peer over the library's: above 1, the library is ahead."""
        return self.best_peer.ns / self.library.ns if self.best_peer else None

    @property
    def share_of_limit(self):
        """Time of the limit over the library's: 1 is as fast as the memory allows."""
        return self.limit.ns / self.library.ns if self.limit else None

    @property
    def peer_is_ahead(self):
        return (
            self.best_peer is not None
            and not self.differs(self.best_peer)
            and self.times_faster < 1.0
        )

    @property
    def target(self):
        """The time aimed at, from a ratio that is stated against the limit or a peer; or None."""
        stated = self.notes.get("target")
        if not stated or self.library.who != LIBRARY:
            return None
        base = self._base(stated["of"])
        beyond = self.n > stated.get("inside", INSIDE_CACHE)
        ratio = stated["ratio"][-1 if beyond else 0]
        return base.ns * ratio if base else None

    def _base(self, of):
        if of == "limit":
            return self.limit
        if of == "best peer":
            return self.best_peer
        return next((peer for peer in self.peers if peer.who == of), None)


def read_notes(path=NOTES):
    return json.loads(Path(path).read_text(encoding="utf-8"))


def limit_of(measurements, notes):
    """The limit that a work is held against: a copy of its bytes, or a read where it says so."""
    wanted = notes.get("limit", "copy")
    limits = {m.who: m for m in measurements if m.is_limit}
    return limits.get(wanted) or next(iter(limits.values()), None)


def title_of(library, notes):
    title = notes.get("title", library.work.replace("_", " "))
    settings = library.who[len(LIBRARY) + 1 :].replace("_", " ")
    variant = notes.get("variants", {}).get(library.variant, library.variant.replace(":", " "))
    more = [settings, variant]
    return ", ".join([title] + [part for part in more if part])


def under_their_rows(measurements, all_notes):
    """Measurements whose notes say that they are peers of another work, under that work."""
    moved = []
    for m in measurements:
        notes = all_notes.get(m.work, {})
        if "peer_of" in notes:
            m = replace(m, work=notes["peer_of"], who=notes["who"].replace("%", m.who))
        moved.append(m)
    return moved


def rows_of(measurements, all_notes):
    """One row for each measurement of the library, in the order of the notes."""
    places = {}
    for m in under_their_rows(measurements, all_notes):
        places.setdefault((m.group, m.work, m.variant, m.n), []).append(m)
    rows = []
    for (group, work, _, _), found in places.items():
        notes = all_notes.get(work, {})
        peers = sorted((m for m in found if m.is_peer), key=lambda m: m.ns)
        for library in (m for m in found if m.is_library):
            title = title_of(library, notes)
            limit = limit_of(found, notes)
            rows.append(Row(group, work, title, library, peers, limit, notes))
    place = {work: i for i, work in enumerate(all_notes)}
    rows.sort(key=lambda row: (row.group, place.get(row.work, len(place)), row.title, row.n))
    return worth_showing(rows)


def worth_showing(rows):
    """Leaves out lengths that were measured for the growth alone: those without peer or limit,
    unless the work has neither at any length and other works of the group have them at this."""
    kept = [row for row in rows if row.peers or row.limit]
    works = {row.work for row in kept}
    lengths = {(row.group, row.n) for row in kept}
    groups = {row.group for row in kept}

    def shown(row):
        alone = row.work not in works
        return row in kept or alone and (
            (row.group, row.n) in lengths or row.group not in groups
        )

    return [row for row in rows if shown(row)]


def without_library(measurements, all_notes):
    """Works that peers or limits have and the library has not: a mistake in a name, most likely."""
    found = under_their_rows(measurements, all_notes)
    own = {(m.group, m.work) for m in found if m.is_library}
    return sorted({m.work for m in found if (m.group, m.work) not in own})
