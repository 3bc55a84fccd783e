"""The README's table: a pick of works, usual and worst shape side by side."""

from page import cells_of, pick, shapes_in_order
from table import count, table

BEGIN = "<!-- benchmarks: written by scripts/bench --publish -->"
END = "<!-- end of benchmarks -->"
SIZE = 100000


def pick_table(works, rows, unit):
    """At 1e5, or at the largest size below that a work was measured at."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    shown = [row for row in rows
             if row.unit == unit and row.n <= SIZE and works.of(row).get("readme")]
    lines = []
    for group, work in dict.fromkeys((row.group, row.work) for row in shown):
        mine = [row for row in shown if (row.group, row.work) == (group, work)]
        n = max(row.n for row in mine)
        at_usual, worst = pick([row for row in mine if row.n == n], usual[group])
        if worst is None:
            continue
        lines.append([works.title(mine[0]), count(n)] + cells_of(works, at_usual)
                     + [worst.shape.replace("_", " ")] + cells_of(works, worst))
    return table(["Work", "n", "usual, ns", "best other", "times faster",
                  "worst shape", "ns", "best other", "times faster"], lines)


def put_into(text, content):
    """The README's text with new content between the marks; as it is without them."""
    begin, end = text.find(BEGIN), text.find(END)
    if begin < 0 or end < begin:
        return text
    return text[: begin + len(BEGIN)] + "\n" + content + "\n" + text[end:]
