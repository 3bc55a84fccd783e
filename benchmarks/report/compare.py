"""Compares two runs of the library's own rows.

usage: compare.py <folder of results before> <folder of results after>
"""

import sys

from measurements import read_folder
from table import count, digits, table


def own_times(measurements):
    return {(m.group, f"{m.work} {m.variant}".strip(), m.who, m.n): m.ns for m in measurements if m.is_library}


def comparison(before, after):
    """Lines for the rows that both runs have, by how much they gained or lost."""
    common = [key for key in after if key in before]
    common.sort(key=lambda key: before[key] / after[key])
    return [
        [f"{work} ({who})", count(n), digits(before[key]), digits(after[key]),
         digits(before[key] / after[key])]
        for key in common
        for _, work, who, n in [key]
    ]


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    before, after = (own_times(read_folder(folder)[0]) for folder in arguments)
    lines = comparison(before, after)
    print(table(["work", "n", "before, ns", "after, ns", "times faster"], lines))
    for text, mine, other in (("only before", before, after), ("only after", after, before)):
        for key in mine:
            if key not in other:
                print(f"- {text}: {key[1]}, {count(key[3])}")
    return 0 if lines else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
