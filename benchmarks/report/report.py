"""Writes the report on a run of the benchmarks.

usage: report.py <folder of results> <build folder> <report.md> [<picture.svg>] [<README.md>]

Prints the means and how many rows break which rule; every such row stands in broken.md beside the
results. Where a README is named, its table is renewed.
"""

import sys
from collections import Counter
from pathlib import Path

from machine import describe
from measurements import read_folder
from page import document, units_of
from readme import pick_table, put_into
from rules import RULES, breaks, geometric_mean, times_faster_than_all, times_faster_than_peers
from table import count, digits, table
from works import read_works


def draw_picture(works, rows, path):
    """True if the picture was written; says why where not."""
    if not any(row.best_other for row in rows):
        print("no picture: nothing stands beside the library")
        return False
    try:
        from picture import draw

        draw(works, rows, path)
    except ImportError as missing:
        print(f"no picture: {missing}")
        return False
    return True


def broken_rows(works, broken):
    """Every break by itself."""
    lines = [[b.rule, b.row.group, b.row.work, b.row.unit, b.row.shape, count(b.row.n),
              digits(b.row.library), digits(b.row.plain),
              f"{b.row.best_peer} {digits(b.row.peers[b.row.best_peer])}" if b.row.best_peer
              else "", digits(b.factor), b.text] for b in broken]
    head = ["rule", "group", "work", "unit", "shape", "n", "library, ns a call",
            "plain loop, ns a call", "best peer, ns a call", "factor", ""]
    rules = "\n".join(f"- {name}: {text}" for name, text in RULES.items())
    return f"# Rows that break a rule\n\n{rules}\n\n{table(head, lines, left=5)}\n"


def print_summary(rows, broken):
    for unit in units_of(rows):
        mine = [row for row in rows if row.unit == unit]
        peers, others = times_faster_than_peers(mine), times_faster_than_all(mine)
        print(f"{unit}: {len(mine)} rows; times faster than the best peer "
              f"{digits(geometric_mean(peers))} (geometric mean of {len(peers)} rows), than the "
              f"best of peers and plain loop {digits(geometric_mean(others))}")
        for rule, number in Counter(b.rule for b in broken if b.row.unit == unit).items():
            print(f"  {number} times: {RULES[rule]}")


def main(arguments):
    if len(arguments) not in (3, 4, 5):
        print(__doc__, file=sys.stderr)
        return 2
    results, build, report = arguments[:3]
    rows, remarks = read_folder(results)
    if not rows:
        print(f"no measurements in {results}", file=sys.stderr)
        return 1
    works = read_works()
    steps, more_remarks = read_folder(Path(results, "steps"))
    remarks += more_remarks
    broken = breaks(rows, steps, works)
    machine = describe(build)  # before files are written, which may be part of the tree described
    picture = arguments[3] if len(arguments) > 3 else ""
    if picture and not draw_picture(works, rows, picture):
        picture = ""
    text = document(works, rows, broken, machine, Path(picture).name if picture else "", remarks)
    Path(report).write_text(text, encoding="utf-8")
    Path(results, "broken.md").write_text(broken_rows(works, broken), encoding="utf-8")
    if len(arguments) > 4:
        readme = Path(arguments[4])
        content = pick_table(works, rows, units_of(rows)[0])
        readme.write_text(put_into(readme.read_text(encoding="utf-8"), content), encoding="utf-8")
    print_summary(rows, broken)
    print(f"{report}: {len(rows)} rows; {Path(results, 'broken.md')}: {len(broken)} breaks")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
