"""How the cost of a work grows with n: the exponent of the power law through the medians."""

import math
from dataclasses import dataclass

from measurements import LIBRARY

SMALLEST = 1_000
LARGEST = 10_000_000


@dataclass(frozen=True)
class Growth:
    group: str
    work: str
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
    costs = {}
    for m in measurements:
        if m.who == LIBRARY and SMALLEST <= m.n <= LARGEST:
            items = 1 if notes.get(m.work, {}).get("items") == "queries" else m.n
            costs.setdefault((m.group, m.work), {})[m.n] = m.ns * items
    return [
        Growth(group, work, points, exponent(points))
        for (group, work), cost in costs.items()
        if len(points := tuple(sorted(cost.items()))) > 1
    ]
