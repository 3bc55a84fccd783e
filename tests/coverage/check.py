"""Holds what gcovr found against what the tests are to reach.

    check.py <gcovr's JSON> <file of lines left out> <least share of branches in percent>

Every line must have run, but those that the file names, each with its reason. A name is the path of
the source and the text of the line, so that it holds when lines move. Names of lines that are no
longer there fail, too.
"""

import json
import pathlib
import sys


def read_names(path):
    """The (source, text) pairs of the file: `source: text` lines, below remarks with the reason."""
    names = set()
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            source, text = line.split(": ", 1)
            names.add((source, text.strip()))
    return names


def main(report, left_out, least_branches):
    names = read_names(left_out)
    failures = []
    lines = run = branches = taken = 0
    for file in json.loads(pathlib.Path(report).read_text(encoding="utf-8"))["files"]:
        source = pathlib.Path(file["file"]).read_text(encoding="utf-8").splitlines()
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            text = source[line["line_number"] - 1].strip()
            lines += 1
            run += line["count"] > 0
            branches += len(line["branches"])
            taken += sum(branch["count"] > 0 for branch in line["branches"])
            if line["count"] == 0 and (file["file"], text) not in names:
                failures.append(f"{file['file']}:{line['line_number']}: never run: {text}")
    for source, text in sorted(names):
        path = pathlib.Path(source)
        texts = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        if text not in (t.strip() for t in texts):
            failures.append(f"{left_out} names what is not there: {source}: {text}")
    if lines == 0:
        failures.append("no line was found")
    share = 100.0 * taken / max(branches, 1)
    if share < float(least_branches):
        failures.append(f"{share:.2f} % of the branches were taken, {least_branches} % are asked")
    print(f"{run} of {lines} lines run, {taken} of {branches} branches taken ({share:.1f} %)")
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
