"""What the benchmark programs have measured: a row for one work on one shape at one size."""

import json
from dataclasses import dataclass, field
from pathlib import Path

LIBRARY = "library"
PLAIN = "plain loop"
COPY = "copy"  # of the bytes that the work reads and writes: what memory allows, no contender


@dataclass(frozen=True)
class Row:
    group: str  # foundation, arrays, tensor, nearest, curve, polyline
    unit: str  # the vector unit that the library used: portable, AVX2, AVX-512
    work: str
    shape: str
    n: int
    items: int  # n, or 1 where a call answers one query
    ns: dict = field(hash=False)  # of a call, by contender
    too_slow: tuple = ()  # contenders left out, as a call was expected to take too long
    differs: bool = False  # the plain loop and the library have not left the same bits

    @property
    def library(self):
        """Nanoseconds of a call; None if the library was left out."""
        return self.ns.get(LIBRARY)

    @property
    def plain(self):
        return self.ns.get(PLAIN)

    @property
    def peers(self):
        return {who: ns for who, ns in self.ns.items() if who not in (LIBRARY, PLAIN, COPY)}

    @property
    def best_peer(self):
        """The name of the fastest peer; None where none was measured."""
        return min(self.peers, key=self.peers.get, default=None)

    @property
    def best_other(self):
        """The name of the fastest of the plain loop and the peers."""
        others = {who: ns for who, ns in self.ns.items() if who not in (LIBRARY, COPY)}
        return min(others, key=others.get, default=None)

    def times_faster(self, who):
        """How many times the library is faster than a contender; None without either."""
        if who is None or self.library is None or who not in self.ns:
            return None
        return self.ns[who] / self.library


def parse(line):
    entry = json.loads(line)
    return Row(entry["group"], entry["unit"], entry["work"], entry["shape"], entry["n"],
               entry["items"], entry["ns"], tuple(entry["too_slow"]), entry["differs"])


def read_file(path):
    """Rows of a file, and how many lines of it are torn, as a program that is stopped leaves one."""
    rows, torn = [], 0
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        try:
            rows.append(parse(line))
        except (ValueError, KeyError):
            torn += 1
    return rows, torn


def read_folder(folder, pattern="*.rows"):
    """Rows of every file of results in a folder, and a remark on each torn file."""
    rows, remarks = [], []
    for path in sorted(Path(folder).glob(pattern)):
        found, torn = read_file(path)
        rows += found
        if torn:
            remarks.append(f"{path.name}: {torn} torn line(s)")
    return rows, remarks
