"""The published page: the usual and the worst shape of every work, and what breaks the rules."""

from collections import defaultdict

from rules import (GRACE_NS, MEMORY_NS, MOST_EXPONENT, RULES, excess_exponent, geometric_mean,
                   series_of, times_faster_than_all, times_faster_than_peers)
from measurements import COPY
from table import count, digits, duration, factor, table

SMALL_SHOWN = 1000 # beside the largest size that was measured
SMALL_LIMITED = 10000
UNITS = ("AVX-512", "AVX2", "portable")

LEGEND = """\
All works are measured on all shapes of `tests/support/Shapes.h`, at n = 1 (or 2), 10, 100, … {largest},
through public calls. Beside the library stand a *plain loop*, a readable scalar loop of the same
operations, and the *peers*: libraries that users would pick instead, each used at its best. The
contenders of a row are measured in turns; times are medians for an item: a point, a value, a vertex
or a query. *Times faster* is the best contender's time over the library's, in bold where it is below
1. The *usual* shape of a work is the one that most people have; the *worst* is the one where *times
faster* is least. A peer marked † computes something else, as listed at the end. The columns of a
vector unit hold the library on that unit beside loops and peers compiled for it; the library itself
is compiled for any x86-64 and chooses the unit when it runs."""

RULES_TEXT = f"""\
A row breaks a rule if its call is above the ratio by more than {GRACE_NS:.0f} ns, about what a call
into a shared library costs. Growth is judged from n = 1e3 on, by the exponent of n that the cost has
beyond the growth allowed: more than {MOST_EXPONENT} is a break, unless it adds no more than memory
may, {MEMORY_NS['n log n']:.0f} ns an item or {MEMORY_NS['log n']:.0f} ns a query."""


def units_of(rows):
    present = {row.unit for row in rows}
    return [unit for unit in UNITS if unit in present]


def largest_size(rows):
    return max(row.n for row in rows)


def shapes_in_order(rows):
    """Shapes of each group in the order of measuring; the first is the usual one."""
    order = defaultdict(list)
    for row in rows:
        if row.shape not in order[row.group]:
            order[row.group].append(row.shape)
    return order


def badness(row):
    faster = row.times_faster(row.best_other)
    return faster if faster is not None else float("inf")


def pick(rows, usual):
    """(usual row, worst row) of one work and n on one unit; either may be None."""
    measured = [row for row in rows if row.library is not None]
    at_usual = next((row for row in measured if row.shape == usual), None)
    return at_usual, min(measured, key=badness, default=None)


# -- Side by side ----


def per_item(row):
    return row.library / row.items


def contender_cell(works, row):
    other = row.best_other
    return works.mark(row, other) if other else ""


def cells_of(works, row):
    """Library's time, best contender and times faster; blanks without a row."""
    if row is None:
        return ["", "", ""]
    return [digits(per_item(row)), contender_cell(works, row),
            factor(row.times_faster(row.best_other))]


def side_by_side(works, rows, sizes, units):
    """Lines of the table: a work at a size, usual and worst shape on each unit."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    by_key = defaultdict(list)
    for row in rows:
        if row.n in sizes:
            by_key[(row.group, row.work, row.n, row.unit)].append(row)
    lines = defaultdict(list)
    for group, work, n in dict.fromkeys(key[:3] for key in by_key):
        line = []
        for unit in units:
            at_usual, worst = pick(by_key.get((group, work, n, unit), []), usual[group])
            line += cells_of(works, at_usual)
            line += [worst.shape.replace("_", " ") if worst else ""] + cells_of(works, worst)
        lines[group].append([works.title_of(group, work), count(n)] + line)
    return lines, usual


def head(units):
    columns = ["work", "n"]
    for unit in units:
        columns += [f"{unit}: usual, ns", "best other", "times faster",
                    "worst shape", "ns", "best other", "times faster"]
    return columns


def side_by_side_tables(works, rows, sizes, units):
    lines, usual = side_by_side(works, rows, sizes, units)
    parts = []
    for group in sorted(lines):
        note = f"The usual shape is {usual[group].replace('_', ' ')}."
        parts.append(f"### {group.capitalize()}\n\n{note}\n\n" + table(head(units), lines[group]))
    return "\n\n".join(parts)


def tiny_table(works, rows, units):
    """Calls on the smallest input of each work, on the usual shape."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    at_usual = [row for row in rows if row.shape == usual[row.group]]
    smallest = {}
    for row in at_usual:
        key = row.group, row.work
        smallest[key] = min(row.n, smallest.get(key, row.n))
    calls = {(row.group, row.work, row.unit): row for row in at_usual
             if row.n == smallest[(row.group, row.work)]}
    lines = []
    for (group, work), n in sorted(smallest.items()):
        cells = []
        for unit in units:
            row = calls.get((group, work, unit))
            cells += ([duration(row.library), duration(row.ns.get(row.best_other)),
                       contender_cell(works, row)] if row else ["", "", ""])
        lines.append([works.title_of(group, work), count(n)] + cells)
    columns = ["work", "n"]
    for unit in units:
        columns += [f"{unit}: library", "best other", ""]
    return table(columns, lines)


def limit_table(rows, works, units):
    """The works that memory may limit beside a copy, on the usual shape."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    largest = largest_size(rows)
    found = {(row.group, row.work, row.n, row.unit): row for row in rows
             if COPY in row.ns and row.library and row.n in (SMALL_LIMITED, largest)
             and row.shape == usual[row.group]}
    lines = []
    for group, work, n in dict.fromkeys(key[:3] for key in found):
        cells = []
        for unit in units:
            row = found.get((group, work, n, unit))
            cells += ([digits(per_item(row)), digits(row.ns[COPY] / row.items),
                       digits(row.library / row.ns[COPY])] if row else ["", "", ""])
        lines.append([works.title_of(group, work), count(n)] + cells)
    columns = ["work", "n"]
    for unit in units:
        columns += [f"{unit}: library, ns", "copy, ns", "ratio"]
    return table(columns, lines)


# -- Summary, growth, rules ----


def summary(rows, broken, units):
    lines = []
    for unit in units:
        mine = [row for row in rows if row.unit == unit]
        peers, others = times_faster_than_peers(mine), times_faster_than_all(mine)
        ahead = sum(value > 1.0 for value in peers)
        lines.append([unit, str(len(mine)), str(len(peers)), factor(geometric_mean(peers)),
                      f"{100 * ahead // len(peers)} %" if peers else "",
                      factor(geometric_mean(others)),
                      str(len({b.row for b in broken if b.row.unit == unit}))])
    return table(["unit", "rows", "with a peer", "times faster than the best peer, mean",
                  "ahead of it", "times faster than the best of peers and plain loop, mean",
                  "rows that break a rule"], lines)


def growth_table(works, rows):
    """The usual and the fastest growing shape of each work."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    found = defaultdict(dict)
    for (_, group, work, shape), series in series_of(rows).items():
        excess = excess_exponent(series, works.growth(series[0]))
        if excess is not None:
            known = found[(group, work)].get(shape)
            if known is None or excess > known[0]:
                found[(group, work)][shape] = excess, series
    lines = []
    for (group, work), shapes in sorted(found.items()):
        worst = max(shapes, key=lambda shape: shapes[shape][0])
        series = shapes[worst][1]
        at_usual = shapes.get(usual[group])
        lines.append([works.title(series[0]), works.growth(series[0]),
                      f"{at_usual[0]:.2f}" if at_usual else "", worst.replace("_", " "),
                      f"{shapes[worst][0]:.2f}",
                      ", ".join(f"{count(row.n)}: {duration(row.library)}" for row in series
                                if row.n >= 1000)])
    return table(["work", "allowed", "usual shape", "worst shape", "exponent", "cost of a call"],
                 lines, left=2)


def broken_lines(works, broken):
    """One line for each rule, work and unit, with its shapes and sizes, the worst first."""
    grouped = defaultdict(list)
    for b in broken:
        grouped[(b.rule, b.row.group, b.row.work, b.row.unit)].append(b)
    lines = []
    for (rule, group, work, unit), members in grouped.items():
        worst = max(members, key=lambda b: b.factor)
        shapes = sorted({b.row.shape.replace("_", " ") for b in members})
        sizes = sorted({b.row.n for b in members})
        lines.append([RULES[rule], f"{group}: {works.title_of(group, work)}", unit,
                      str(len(members)), f"{count(sizes[0])} to {count(sizes[-1])}",
                      f"{factor(worst.factor).strip('*')} ({worst.row.shape.replace('_', ' ')}, "
                      f"{count(worst.row.n)})",
                      ", ".join(shapes) if len(shapes) < 8 else f"{len(shapes)} shapes"])
    return lines


def broken_table(works, broken):
    if not broken:
        return "None in this run."
    return table(["rule", "work", "unit", "rows", "n", "worst", "shapes"],
                 broken_lines(works, broken), left=3)


def other_results(works, rows):
    found = {}
    for row in rows:
        for peer in row.peers:
            if works.differs(row, peer):
                found[(works.title(row), peer)] = works.differs(row, peer)
    notes = {works.title(row): works.of(row)["note"] for row in rows if "note" in works.of(row)}
    lines = [f"- {title}, {peer}: {text}." for (title, peer), text in sorted(found.items())]
    return "\n".join(lines + [f"- {title}: {text}." for title, text in sorted(notes.items())])


def document(works, rows, broken, machine, picture, remarks):
    """The whole page. picture is the name of the picture's file, or empty."""
    units = units_of(rows)
    largest = largest_size(rows)
    parts = [
        "# Benchmarks",
        "Written by `scripts/bench`.",
        table(["", ""], [[name, value] for name, value in machine], left=2),
        LEGEND.format(largest=count(largest)),
        "## In short",
        summary(rows, broken, units),
        f"![times faster than the best other, from worst to best shape]({picture})" if picture
        else "",
        "## Usual and worst shape side by side",
        side_by_side_tables(works, rows, (SMALL_SHOWN, largest), units),
        "## Tiny sizes",
        "A whole call on the smallest input, on the usual shape.",
        tiny_table(works, rows, units),
        "## What memory allows",
        "Beside a copy of as many bytes as a work reads and writes, on the usual shape.",
        limit_table(rows, works, units),
        "## Growth with n",
        "The exponent of n by which the cost of a call outgrows what is allowed, fitted from 1e3 on.",
        growth_table(works, rows),
        "## Rows that break a rule",
        RULES_TEXT,
        broken_table(works, broken),
        "## What peers compute instead",
        other_results(works, rows),
        "\n".join(f"- {remark}" for remark in remarks),
    ]
    return "\n\n".join(part for part in parts if part) + "\n"
