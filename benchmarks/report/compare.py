"""Compares two runs of the library.

usage: compare.py <folder of results before> <folder of results after>
"""

import sys
from collections import defaultdict

from measurements import read_folder
from rules import geometric_mean
from table import count, digits, table

CHANGED = 1.15  # rows whose ratio is beyond this are listed


def library_times(rows):
    return {(row.unit, row.group, row.work, row.shape, row.n): row.library for row in rows
            if row.library is not None}


def means(before, after):
    """For each unit and work: mean of times faster, and the least and greatest of it."""
    ratios = defaultdict(list)
    for key in after:
        if key in before:
            ratios[key[:3]].append(before[key] / after[key])
    return [[unit, group, work.replace("_", " "), str(len(found)), digits(geometric_mean(found)),
             digits(min(found)), digits(max(found))]
            for (unit, group, work), found in sorted(ratios.items(),
                                                     key=lambda item: geometric_mean(item[1]))]


def changed(before, after):
    lines = []
    for key in sorted(after, key=lambda k: before.get(k, 0.0) / after[k]):
        ratio = before[key] / after[key] if key in before else 1.0
        if not 1.0 / CHANGED < ratio < CHANGED:
            unit, group, work, shape, n = key
            lines.append([unit, group, work.replace("_", " "), shape.replace("_", " "), count(n),
                          digits(before[key]), digits(after[key]), digits(ratio)])
    return lines


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    before, after = (library_times(read_folder(folder)[0]) for folder in arguments)
    common = [before[key] / after[key] for key in after if key in before]
    if not common:
        print("no row is in both")
        return 1
    print(table(["unit", "group", "work", "rows", "times faster, mean", "least", "greatest"],
                means(before, after), left=3))
    print(f"\nRows that changed by more than {CHANGED}, ns a call:\n")
    print(table(["unit", "group", "work", "shape", "n", "before", "after", "times faster"],
                changed(before, after), left=4))
    print(f"\n{len(common)} rows; times faster, geometric mean: {geometric_mean(common):.3f}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
