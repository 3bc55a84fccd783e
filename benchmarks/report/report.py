"""Writes the report on a run of the benchmarks.

usage: report.py <folder of results> <build folder> <report.md> [<picture.svg or .png>]
"""

import sys
from pathlib import Path

from growth import growth_of
from machine import describe
from measurements import read_folder
from rows import read_notes, rows_of, without_library
from table import count, document


def draw_picture(rows, path):
    """True if the picture was written; says why where not."""
    if not any(row.best_peer for row in rows):
        print("no picture: no peer stands beside the library")
        return False
    try:
        from picture import draw

        draw(rows, path, count)
    except ImportError as missing:
        print(f"no picture: {missing}")
        return False
    return True


def remarks_on(unused, lonely):
    remarks = [f"Not measured: `{name}`." for name in unused]
    return remarks + [f"`{work}` has peers or limits, but no row of the library." for work in lonely]


def main(arguments):
    if len(arguments) not in (3, 4):
        print(__doc__, file=sys.stderr)
        return 2
    results, build, report = arguments[:3]
    measurements, unused = read_folder(results)
    if not measurements:
        print(f"no measurements in {results}", file=sys.stderr)
        return 1
    notes = read_notes()
    rows = rows_of(measurements, notes)
    machine = describe(build)  # before files are written, which may be part of the tree described
    picture = arguments[3] if len(arguments) == 4 else ""
    if picture and not draw_picture(rows, picture):
        picture = ""
    remarks = remarks_on(unused, without_library(measurements, notes))
    text = document(rows, growth_of(measurements, notes), machine,
                    Path(picture).name if picture else "", remarks)
    Path(report).write_text(text, encoding="utf-8")
    print(f"{report}: {len(rows)} rows")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
