"""How the cost of a work grows with n: the exponent of the power law through the medians."""

import math
from dataclasses import dataclass

from measurements import LIBRARY
from rows import title_of

SMALLEST = 1_000
LARGEST = 10_000_000


@dataclass(frozen=True)
class Growth:
    group: str
    work: str
    title: str
    points: tuple  # (n, ns for the whole work), by n
    exponent: float


def exponent(points):
    """Slope of log(cost) over log(n), by least squares."""
    xs = [math.log(n) for n, _ in points]
    ys = [math.log(cost) for _, cost in points]
    mean_x, mean_y = sum(xs) / len(xs), sum(ys) / len(ys)
    spread = sum((x - mean_x) ** 2 for x in xs)
    return sum((x - mean_x) * (y - mean_y) for x, y in zip(xs, ys)) / spread


def growth_of(measurements, notes):
    """Growth of every work that the library was measured at for two lengths or more.

    The cost of a call: of all n items, or of a single one where the items are queries to n points.
    """
    costs, titles = {}, {}
    for m in measurements:
        more = notes.get(m.work, {})
        if m.who == LIBRARY and SMALLEST <= m.n <= LARGEST and more.get("growth", True):
            key = m.group, m.work, m.variant
            items = 1 if more.get("items") == "queries" else m.n
            costs.setdefault(key, {})[m.n] = m.ns * items
            titles[key] = title_of(m, more)
    return [
        Growth(*key[:2], titles[key], points, exponent(points))
        for key, cost in costs.items()
        if len(points := tuple(sorted(cost.items()))) > 1
    ]
