"""The report as Markdown."""

from rows import Row

HEAD = [
    "work",
    "n",
    "library, ns",
    "best peer, ns",
    "times faster",
    "limit, ns",
    "share of limit",
    "target, ns",
    "note",
]

LEGEND = """\
Times are medians for one item: a point, a value or a query. *Times faster* is the time of the best
peer over the library's; below 1 the peer is ahead, in bold. *Limit* is the time for a copy or a
read of the bytes of the work, and *share of limit* that time over the library's; a limit inside
the caches holds for data that the work finds there. *Target* is the time aimed at, from its ratio
to the limit or to a peer. A peer marked † computes something else, as the note says; it stands
here only where no peer computes the same. The peers are built for this very machine
(`-march=native`), the library for any x86-64, with its vector unit chosen at run time."""


def digits(value):
    """Three significant digits, without an exponent."""
    if value is None:
        return ""
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}" if value >= 0.1 else f"{value:.3f}"


def count(n):
    """1000 as 1e3, 30000 as 3e4, others as they are."""
    text = str(n)
    zeros = len(text) - len(text.rstrip("0"))
    return f"{text[0]}e{zeros}" if zeros >= 3 and len(text) == zeros + 1 else text


def line(cells):
    return "| " + " | ".join(cells) + " |"


def table(head, lines, left=1):
    """A Markdown table whose first columns are set left, the others right."""
    rule = ["---"] * left + ["---:"] * (len(head) - left)
    return "\n".join([line(head), line(rule)] + [line(cells) for cells in lines])


def times_faster(row: Row):
    if row.best_peer is None:
        return ""
    text = digits(row.times_faster)
    return f"**{text}**" if row.peer_is_ahead else text


def peer_cell(row: Row):
    peer = row.best_peer
    if peer is None:
        return ""
    mark = " †" if row.differs(peer) else ""
    return f"{peer.who}{mark} {digits(peer.ns)}"


def note_cell(row: Row):
    parts = [row.notes.get("note", "")]
    peer = row.best_peer
    if peer is not None and row.differs(peer):
        parts.append(f"† {peer.who}: {row.differs(peer)}")
    return "; ".join(part for part in parts if part)


def cells(row: Row):
    limit = f"{row.limit.who} {digits(row.limit.ns)}" if row.limit else ""
    return [
        row.title,
        count(row.n),
        digits(row.library.ns),
        peer_cell(row),
        times_faster(row),
        limit,
        digits(row.share_of_limit),
        digits(row.target),
        note_cell(row),
    ]


def main_tables(rows):
    parts = []
    for group in sorted({row.group for row in rows}):
        lines = [cells(row) for row in rows if row.group == group]
        parts.append(f"### {group.capitalize()}\n\n" + table(HEAD, lines))
    return "\n\n".join(parts)


def behind(rows):
    """The rows in which a peer with the same result is ahead."""
    lines = [
        f"- {row.title}, n = {count(row.n)}: {row.best_peer.who} takes {digits(row.best_peer.ns)} "
        f"ns, the library {digits(row.library.ns)} ns."
        for row in rows
        if row.peer_is_ahead
    ]
    return "\n".join(lines) or "In no row of this run."


def growth_table(growths):
    lines = [
        [
            growth.title,
            ", ".join(f"{count(n)}: {duration(cost)}" for n, cost in growth.points),
            f"{growth.exponent:.2f}",
        ]
        for growth in growths
    ]
    return table(["work", "cost at each n", "exponent"], lines, left=2)


def duration(ns):
    for factor, unit in ((1e9, "s"), (1e6, "ms"), (1e3, "µs")):
        if ns >= factor:
            return f"{digits(ns / factor)} {unit}"
    return f"{digits(ns)} ns"


def every_peer(rows):
    """All peers of each row, those that compute something else with what that is."""
    lines = []
    for row in rows:
        for peer in row.peers:
            lines.append([row.title, count(row.n), peer.who, digits(peer.ns),
                          digits(peer.ns / row.library.ns), row.differs(peer) or "the same"])
    return table(["work", "n", "peer", "ns", "over the library", "its result"], lines)


def document(rows, growths, machine, picture, remarks):
    """The whole report. picture is the name of the picture's file, or empty."""
    parts = [
        "# Benchmarks",
        "Written by `scripts/bench`.",
        table(["", ""], [[name, value] for name, value in machine], left=2),
        LEGEND,
        f"![library against best peer and limit]({picture})" if picture else "",
        "## Side by side",
        main_tables(rows),
        "## Where a peer is ahead",
        behind(rows),
        "## Growth with n",
        "The cost of one call (of one query, for the searches) and the exponent of the power law\n"
        "fitted through it: 1 is proportional to n, 0 independent of it.",
        growth_table(growths),
        "## Every peer",
        every_peer(rows),
        "\n".join(f"- {remark}" for remark in remarks),
    ]
    return "\n\n".join(part for part in parts if part) + "\n"
