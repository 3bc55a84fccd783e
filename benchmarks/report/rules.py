"""The rules that every row must keep, and the rows that break them."""

import math
from collections import defaultdict
from dataclasses import dataclass

MOST_OVER_PLAIN = 1.3
MOST_OVER_PEER = 1.5
MOST_STEP = 1.5  # between neighbouring sizes, beyond what the size itself asks for
GRACE_NS = 5.0  # of a call: about what calling into a shared library costs, and a measurement is off
MOST_EXPONENT = 0.25  # of n, beyond the growth allowed
MOST_GROWTH = 4.0  # from one decade of n to the next, beyond the growth allowed
# What memory may add to an item, or to a query, when n outgrows the caches: fresh pages and reads
# in order, or a search of some twenty reads far apart. Growth by less is no break.
MEMORY_NS = {"n": 5.0, "n log n": 30.0, "log n": 400.0}
SMALLEST_FOR_GROWTH = 1000
NEIGHBOURS = 1.34  # sizes within this ratio are neighbours

RULES = {
    "growth": "cost grows faster than n log n (a query's: than log n)",
    "step": f"cost changes by more than {MOST_STEP} times between neighbouring sizes",
    "plain": f"above {MOST_OVER_PLAIN} times the plain loop",
    "peer": f"above {MOST_OVER_PEER} times the best peer",
    "bits": "the library's result is not that of the plain loop",
}


@dataclass(frozen=True)
class Break:
    rule: str
    row: object
    factor: float  # by how much the library is above what it is compared with
    text: str


def allowed(growth, n):
    if growth == "n":
        return float(n)
    return math.log2(max(n, 2)) * (n if growth == "n log n" else 1.0)


def exponent(points):
    """Slope of log(cost) over log(n), by least squares."""
    xs = [math.log(n) for n, _ in points]
    ys = [math.log(cost) for _, cost in points]
    mean_x, mean_y = sum(xs) / len(xs), sum(ys) / len(ys)
    spread = sum((x - mean_x) ** 2 for x in xs)
    return sum((x - mean_x) * (y - mean_y) for x, y in zip(xs, ys)) / spread


def series_of(rows):
    """Rows of each work on each shape and unit, by size."""
    series = defaultdict(list)
    for row in rows:
        series[(row.unit, row.group, row.work, row.shape)].append(row)
    for found in series.values():
        found.sort(key=lambda row: row.n)
    return series


def excess_exponent(rows, growth):
    """The exponent of n by which the cost outgrows what is allowed; None of fewer than 3 sizes."""
    points = [(row.n, row.library / allowed(growth, row.n)) for row in rows
              if row.library and row.n >= SMALLEST_FOR_GROWTH]
    return exponent(points) if len(points) > 2 else None


def added(a, b, growth):
    """What a call of the larger size costs beyond the growth allowed, per item or query."""
    beyond = b.library - a.library * allowed(growth, b.n) / allowed(growth, a.n)
    return beyond if growth == "log n" else beyond / b.n


def growth_break(rows, growth):
    for row in rows:
        if "library" in row.too_slow:
            return Break("growth", row, math.inf, "a call takes too long to be measured")
    large = [row for row in rows if row.library and row.n >= SMALLEST_FOR_GROWTH]
    if len(large) < 2 or added(large[0], large[-1], growth) < MEMORY_NS[growth]:
        return None
    excess = excess_exponent(rows, growth)
    if excess is not None and excess > MOST_EXPONENT:
        return Break("growth", large[-1], excess, f"n^{excess:.2f} beyond {growth}")
    for a, b in zip(large, large[1:]):
        factor = b.library / a.library * allowed(growth, a.n) / allowed(growth, b.n)
        if factor > MOST_GROWTH:
            return Break("growth", b, factor, f"{factor:.1f} times beyond {growth} since {a.n}")
    return None


def step_breaks(rows, growth):
    for a, b in zip(rows, rows[1:]):
        if not (a.library and b.library and b.n <= max(a.n + 1, NEIGHBOURS * a.n)):
            continue
        up = b.library / a.library * allowed(growth, a.n) / allowed(growth, b.n)
        down = a.library / b.library
        factor = max(up, down)
        if factor > MOST_STEP and abs(a.library - b.library) > GRACE_NS:
            yield Break("step", b, factor,
                        f"{a.library:.0f} ns at {a.n}, {b.library:.0f} ns at {b.n}")


def is_above(row, who, most):
    faster = row.times_faster(who)
    return faster is not None and row.library > most * row.ns[who] + GRACE_NS


def row_breaks(row):
    if is_above(row, "plain loop", MOST_OVER_PLAIN):
        yield Break("plain", row, row.library / row.plain, "")
    peer = row.best_peer
    if is_above(row, peer, MOST_OVER_PEER):
        yield Break("peer", row, row.library / row.ns[peer], peer)
    if row.differs:
        yield Break("bits", row, math.inf, "")


def breaks(rows, steps, works):
    """All breaks, the rules in their order. steps are rows at neighbouring sizes."""
    found = []
    for series in series_of(rows).values():
        broken = growth_break(series, works.growth(series[0]))
        found += [broken] if broken else []
        for row in series:
            found += row_breaks(row)
    for series in series_of(steps).values():
        found += step_breaks(series, works.growth(series[0]))
    order = list(RULES)
    return sorted(found, key=lambda b: (order.index(b.rule), b.row.group, b.row.work, b.row.unit,
                                        b.row.shape, b.row.n))


# -- Means ----


def geometric_mean(values):
    return math.exp(sum(math.log(v) for v in values) / len(values)) if values else None


def times_faster_than_peers(rows):
    return [row.times_faster(row.best_peer) for row in rows if row.times_faster(row.best_peer)]


def times_faster_than_all(rows):
    """Against the best of the plain loop and the peers."""
    return [row.times_faster(row.best_other) for row in rows if row.times_faster(row.best_other)]
