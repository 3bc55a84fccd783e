"""Checks the report on a small run made up here. Prints what is wrong; run by CTest."""

import json
import sys
import tempfile
from pathlib import Path

import compare
import growth
import measurements
import report
import rows
import table

failures = []


def check(what, actual, expected):
    if actual != expected:
        failures.append(f"{what}: {actual!r} is not {expected!r}")


def check_in(what, text, whole):
    if text not in whole:
        failures.append(f"{what}: {text!r} is missing")


def entry(name, ns, **more):
    return {"name": name + "_median", "run_name": name, "run_type": "aggregate",
            "aggregate_name": "median", "items_per_second": 1e9 / ns, **more}


RUN = {
    "benchmarks": [
        entry("sum/qel/1000", 1.0),
        entry("sum/qel/100000/min_time:2.0", 2.0),
        entry("sum/fast/1000", 0.5),
        entry("sum/slow/1000", 4.0),
        entry("sum/copy/1000", 0.25),
        entry("sum/read/1000", 0.125),
        entry("find/qel/1000", 8.0),
        entry("find/qel_default_limits/1000", 9.0),
        entry("find/other/1000", 2.0),
        entry("find/same/1000", 16.0),
        entry("find/qel/1000/probes:7", 1.0),
        entry("find/same/1000/probes:7", 3.0),
        entry("find_again/same/1000", 1.0),
        entry("sum/qel/10", 1.0),
        entry("lonely/other/1000", 1.0),
        entry("unnamed", 1.0),
        entry("sum/broken/1000", 1.0, error_occurred=True),
        entry("sum/qel/1000", 99.0, aggregate_name="mean"),
    ]
}
NOTES = {
    "sum": {"title": "sum of values", "target": {"of": "slow", "ratio": [0.5]}, "note": "floats"},
    "find": {"items": "queries", "target": {"of": "best peer", "ratio": [0.5, 0.25], "inside": 10},
              "differs": {"other": "finds another", "same again": "prepared"},
             "variants": {"probes:7": "seven"}},
    "find_again": {"peer_of": "find", "who": "% again"},
}


def check_measurements(found, unused):
    check("number of measurements", len(found), 15)
    check("what could not be used", unused, ["unnamed", "sum/broken/1000"])
    check("name with settings", measurements.split_name("a/b/7/min_time:2.0"), ("a", "b", 7, ""))
    check("name with more arguments", measurements.split_name("a/b/7/m:3"), ("a", "b", 7, "m:3"))
    check("name of another form", measurements.split_name("a/b"), None)


def check_rows(found):
    made = rows.rows_of(found, NOTES)
    # The lengths of the sum without company are there for its growth alone.
    check("rows", [(row.title, row.n) for row in made],
          [("sum of values", 1000), ("find", 1000), ("find, default limits", 1000),
           ("find, seven", 1000)])
    first, find, variant, probes = made
    check("best peer", first.best_peer.who, "fast")
    check("times faster", first.times_faster, 0.5)
    check("behind", [row.peer_is_ahead for row in made], [True, False, False, False])
    check("limit", (first.limit.who, first.share_of_limit), ("copy", 0.25))
    check("targets", (first.target, find.target, variant.target), (2.0, 4.0, None))
    check("peers of another work", [peer.who for peer in find.peers],
          ["same again", "other", "same"])
    check("more arguments", [peer.ns for peer in probes.peers], [3.0])
    check("a faster peer with another result", find.best_peer.who, "same")
    check("the library with other settings", variant.library.ns, 9.0)
    check("without the library", rows.without_library(found, NOTES), ["lonely"])
    return made


def check_growth(found):
    grown = growth.growth_of(found, NOTES)
    check("works with two lengths", [g.work for g in grown], ["sum"])
    # A hundred times the items at twice the time each: 200 times the cost.
    check("exponent", round(grown[0].exponent, 3), 1.151)
    check("exponent of n", round(growth.exponent([(10, 3.0), (100, 30.0), (1000, 300.0)]), 9), 1.0)
    return grown


def check_table(made, grown):
    text = table.document(made, grown, [("Date", "today")], "picture.svg", ["a remark"])
    check_in("row", "| sum of values | 1e3 | 1.00 | fast 0.50 | **0.50** | copy 0.25 | 0.25 | 2.00 "
             "| floats |", text)
    check_in("row behind", "- sum of values, n = 1e3: fast takes 0.50 ns, the library 1.00 ns.", text)
    check_in("every peer", "| find | 1e3 | other | 2.00 | 0.25 | finds another |", text)
    check_in("growth", "| sum of values | 1e3: 1.00 µs, 1e5: 200 µs | 1.15 |", text)
    check_in("picture", "(picture.svg)", text)
    check_in("remark", "- a remark", text)
    check("counts", [table.count(n) for n in (7, 4096, 30000, 10000000)],
          ["7", "4096", "3e4", "1e7"])
    check("digits", [table.digits(x) for x in (None, 0.012, 0.5, 12.34, 1234.5)],
          ["", "0.012", "0.50", "12.3", "1234"])


def check_alone():
    """A work that nothing stands beside has its row all the same."""
    found, _ = measurements.parse("g", {"benchmarks": [entry("alone/qel/10", 2.0)]})
    made = rows.rows_of(found, {"alone": {"target": {"of": "limit", "ratio": [1.0]}}})
    check_in("row", "| alone | 10 | 2.00 |  |  |  |  |  |  |", table.main_tables(made))
    crowd, _ = measurements.parse("g", {"benchmarks": [
        entry("alone/qel/10", 2.0), entry("alone/qel/20", 2.0), entry("sum/qel/10", 2.0),
        entry("sum/copy/10", 1.0)]})
    check("lengths of the others", [(row.work, row.n) for row in rows.rows_of(crowd, NOTES)],
          [("sum", 10), ("alone", 10)])
    check("nothing beside", (made[0].best_peer, made[0].times_faster, made[0].target),
          (None, None, None))


def check_differs():
    """The only peer computes something else: it is shown with its mark, and never counts."""
    found, _ = measurements.parse("g", {"benchmarks": [entry("find/qel/10", 8.0),
                                                       entry("find/other/10", 2.0)]})
    row = rows.rows_of(found, NOTES)[0]
    check("only another result", (row.best_peer.who, row.peer_is_ahead), ("other", False))
    check_in("mark", "| other † 2.00 | 0.25 |", table.main_tables([row]))
    check_in("note of the mark", "† other: finds another", table.main_tables([row]))


def check_compare():
    lines = compare.comparison({("g", "w", "qel", 10): 4.0}, {("g", "w", "qel", 10): 2.0})
    check("comparison", lines, [["w (qel)", "10", "4.00", "2.00", "2.00"]])


def check_files():
    """The whole road, from files to files; the picture only where matplotlib is."""
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder)
        (path / "group.json").write_text(json.dumps(RUN), encoding="utf-8")
        (path / "torn.json").write_text('{"benchmarks": [', encoding="utf-8")
        status = report.main([folder, folder, str(path / "out.md"), str(path / "out.svg")])
        check("status", status, 0)
        check_in("group", "### Group", (path / "out.md").read_text(encoding="utf-8"))
        check_in("lonely work", "`lonely` has peers", (path / "out.md").read_text(encoding="utf-8"))
        check_in("torn file", "`all of torn`", (path / "out.md").read_text(encoding="utf-8"))
        (path / "group.json").unlink()
        check("picture of nothing", report.draw_picture([], path / "none.svg"), False)
        check("no results", report.main([folder, folder, str(path / "out.md")]), 1)


def main():
    found, unused = measurements.parse("group", RUN)
    check_measurements(found, unused)
    check_table(check_rows(found), check_growth(found))
    check_alone()
    check_differs()
    check_compare()
    check_files()
    rows.read_notes()
    print("\n".join(failures) or "the report is as it should be")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
