"""Checks the report on made-up rows. Run by the tests; prints what is wrong and fails."""

import json
import sys
import tempfile
from pathlib import Path

import compare
import page
import readme
import report
import rules
import table
from measurements import LIBRARY, PLAIN, Row, parse, read_folder
from works import Works, read_works

failures = []

NOTES = Works({"curve": {
    "find": {"title": "find one", "growth": "log n", "readme": True,
             "differs": {"Other": "finds another"}},
    "sum": {"readme": True, "note": "a note"},
}})


def check(what, found, expected):
    if found != expected:
        failures.append(f"{what}: {found!r} instead of {expected!r}")


def check_in(what, part, whole):
    if part not in whole:
        failures.append(f"{what}: {part!r} is missing from {whole!r}")


def row(work, shape, n, library, plain=None, unit="AVX2", items=None, **more):
    ns = {LIBRARY: library, PLAIN: plain}
    ns.update(more.pop("peers", {}))
    return Row("curve", unit, work, shape, n, n if items is None else items,
               {who: cost for who, cost in ns.items() if cost is not None}, **more)


def rules_broken(rows, steps=()):
    return [(b.rule, b.row.shape, b.row.n) for b in rules.breaks(list(rows), list(steps), NOTES)]


# -- Rows ----


def check_rows():
    r = row("sum", "line", 10, 20.0, 30.0, peers={"A": 50.0, "B": 40.0})
    check("best peer", (r.best_peer, r.times_faster("B")), ("B", 2.0))
    check("best other", (r.best_other, r.times_faster(r.best_other)), (PLAIN, 1.5))
    alone = row("sum", "line", 10, 20.0)
    check("nothing beside", (alone.best_peer, alone.best_other, alone.times_faster(None)),
          (None, None, None))
    limited = row("sum", "line", 10, 20.0, peers={"copy": 1.0})
    check("a copy is no contender", (limited.best_peer, limited.best_other), (None, None))
    line = json.dumps({"group": "g", "unit": "AVX2", "work": "w", "shape": "s", "n": 5, "items": 1,
                       "ns": {LIBRARY: 3.0}, "too_slow": ["A"], "differs": True})
    check("parsed", parse(line),
          Row("g", "AVX2", "w", "s", 5, 1, {LIBRARY: 3.0}, ("A",), True))


# -- Rules ----


def check_ratios():
    check("kept", rules_broken([row("sum", "line", 10, 130.0, 100.0, peers={"A": 90.0})]), [])
    check("above the loop", rules_broken([row("sum", "line", 10, 136.0, 100.0)]),
          [("plain", "line", 10)])
    check("within a call's cost", rules_broken([row("sum", "line", 1, 6.0, 2.0)]), [])
    check("above the best peer", rules_broken([row("sum", "line", 10, 160.0, peers={"A": 100.0,
                                                                                  "B": 200.0})]),
          [("peer", "line", 10)])
    check("other bits", rules_broken([row("sum", "line", 10, 1.0, 1.0, differs=True)]),
          [("bits", "line", 10)])


def series(work, cost, **more):
    return [row(work, "comb", n, cost(n), **more) for n in (1000, 10000, 100000)]


def check_growth():
    check("linear", rules_broken(series("sum", lambda n: 2.0 * n)), [])
    check("quadratic", rules_broken(series("sum", lambda n: 0.01 * n * n)),
          [("growth", "comb", 100000)])
    check("memory", rules_broken(series("sum", lambda n: n * (1.0 if n < 50000 else 8.0))), [])
    check("late", rules_broken(series("sum", lambda n: n * (1.0 if n < 50000 else 80.0))),
          [("growth", "comb", 100000)])
    check("a query of linear cost", rules_broken(series("find", lambda n: 1.0 * n, items=1)),
          [("growth", "comb", 100000)])
    check("a query of logarithmic cost",
          rules_broken(series("find", lambda n: 50.0 * len(str(n)), items=1)), [])
    check("left out", rules_broken([row("sum", "comb", 1000, None, 9.0, too_slow=(LIBRARY,))]),
          [("growth", "comb", 1000)])


def check_steps():
    def at(n, cost):
        return row("sum", "line", n, cost)

    check("a step up", rules_broken([], [at(15, 150.0), at(16, 320.0)]), [("step", "line", 16)])
    check("a step down", rules_broken([], [at(15, 320.0), at(16, 150.0)]), [("step", "line", 16)])
    check("no step", rules_broken([], [at(15, 150.0), at(16, 200.0)]), [])
    check("no neighbours", rules_broken([], [at(16, 100.0), at(32, 400.0)]), [])
    check("twice the work", rules_broken([], [at(1, 40.0), at(2, 80.0)]), [])
    check("a few nanoseconds", rules_broken([], [at(15, 2.0), at(16, 4.0)]), [])


def check_means():
    check("mean", rules.geometric_mean([2.0, 8.0]), 4.0)
    check("mean of nothing", rules.geometric_mean([]), None)
    check("exponent", round(rules.exponent([(10, 1.0), (100, 10.0), (1000, 100.0)]), 9), 1.0)


# -- Page ----

ROWS = [
    row("sum", "line", 1000, 2000.0, 3000.0, peers={"A": 2500.0}),
    row("sum", "comb", 1000, 4000.0, 2000.0),
    row("sum", "line", 1000, 1000.0, 3000.0, unit="AVX-512"),
    row("find", "line", 1000, 50.0, 900.0, items=1, peers={"Other": 100.0}),
    row("find", "line", 2, 7.0, 6.0, items=1),
    row("sum", "line", 10000, 6000.0, 7000.0, peers={"copy": 4000.0}),
]


def check_page():
    broken = rules.breaks(ROWS, [], NOTES)
    text = page.document(NOTES, ROWS, broken, [("Date", "today")], "p.svg", ["a remark"])
    check_in("head", "| Date | today |", text)
    check_in("usual and worst",
             "| sum | 1e3 | 1.00 | plain loop | 3.0 | line | 1.00 | plain loop | 3.0 | "
             "2.00 | A | 1.25 | comb | 4.00 | plain loop | **0.50** |", text)
    check_in("mark of another result", "| 50.0 | Other † | 2.0 |", text)
    check_in("what it is", "- find one, Other: finds another.", text)
    check_in("note", "- sum: a note.", text)
    check_in("tiny", "| find one | 2 |", text)
    check_in("limit", "| sum | 1e4 |  |  |  | 0.60 | 0.40 | 1.50 |", text)
    check_in("broken", "| above 1.3 times the plain loop | curve: sum | AVX2 | 1 |", text)
    check_in("its worst", "2.0 (comb, 1e3)", text)
    check_in("remark", "- a remark", text)
    check_in("picture", "](p.svg)", text)
    check_in("summary", "| AVX2 | 5 | 2 |", text)


def check_readme():
    content = readme.pick_table(NOTES, ROWS, "AVX2")
    check_in("README", "| sum | 1e4 | 0.60 | plain loop | 1.17 | line | 0.60 |", content)
    text = f"before\n{readme.BEGIN}\nold\n{readme.END}\nafter\n"
    check("renewed", readme.put_into(text, "new"),
          f"before\n{readme.BEGIN}\nnew\n{readme.END}\nafter\n")
    check("no marks", readme.put_into("text", "new"), "text")


def check_numbers():
    check("digits", [table.digits(x) for x in (None, 0.0123, 0.5, 12.34, 1234.5)],
          ["", "0.012", "0.50", "12.3", "1234"])
    check("factors", [table.factor(x) for x in (None, 0.5, 1.0, 2.04, 12.3)],
          ["", "**0.50**", "1.00", "2.0", "12"])
    check("counts", [table.count(n) for n in (2, 100, 1000, 4096)], ["2", "100", "1e3", "4096"])
    check("durations", [table.duration(x) for x in (None, 5.0, 1500.0, 2e6, 3e9)],
          ["", "5.00 ns", "1.50 µs", "2.00 ms", "3.00 s"])


# -- Files ----


def as_line(r):
    return json.dumps({"group": r.group, "unit": r.unit, "work": r.work, "shape": r.shape,
                       "n": r.n, "items": r.items, "ns": r.ns, "too_slow": r.too_slow,
                       "differs": r.differs}) + "\n"


def check_files():
    """From files to files; the picture only where matplotlib is."""
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder)
        (path / "curve.rows").write_text("".join(map(as_line, ROWS)) + '{"group": "cu')
        check("read", read_folder(folder), (ROWS, ["curve.rows: 1 torn line(s)"]))
        (path / "README.md").write_text(f"{readme.BEGIN}\n{readme.END}\n", encoding="utf-8")
        status = report.main([folder, folder, str(path / "out.md"), str(path / "out.svg"),
                              str(path / "README.md")])
        check("status", status, 0)
        text = (path / "out.md").read_text(encoding="utf-8")
        check_in("torn", "- curve.rows: 1 torn line(s)", text)
        check_in("breaks", "| plain | curve | sum | AVX2 | comb | 1e3 | 4000 | 2000 |",
                 (path / "broken.md").read_text(encoding="utf-8"))
        check_in("README", "| Work | n |", (path / "README.md").read_text(encoding="utf-8"))
        check("picture of nothing", report.draw_picture(NOTES, [], path / "none.svg"), False)
        (path / "curve.rows").unlink()
        check("no results", report.main([folder, folder, str(path / "out.md")]), 1)


def check_compare():
    before = compare.library_times([row("sum", "line", 10, 40.0), row("sum", "comb", 10, 10.0)])
    after = compare.library_times([row("sum", "line", 10, 20.0), row("sum", "comb", 10, 10.0)])
    check("means", compare.means(before, after),
          [["AVX2", "curve", "sum", "2", "1.41", "1.00", "2.00"]])
    check("changed", compare.changed(before, after),
          [["AVX2", "curve", "sum", "line", "10", "40.0", "20.0", "2.00"]])


def main():
    check_rows()
    check_ratios()
    check_growth()
    check_steps()
    check_means()
    check_page()
    check_readme()
    check_numbers()
    check_files()
    check_compare()
    read_works()
    print("\n".join(failures) or "the report is as it should be")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
