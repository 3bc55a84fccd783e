"""Tables and numbers as Markdown."""


def digits(value):
    """Three significant digits, without an exponent."""
    if value is None:
        return ""
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}" if value >= 0.1 else f"{value:.3f}"


def factor(value):
    """A ratio, in bold where it is against the library; two digits do."""
    if value is None:
        return ""
    text = f"{value:.0f}" if value >= 9.95 else f"{value:.1f}" if value >= 1.95 else f"{value:.2f}"
    return f"**{text}**" if value < 1.0 else text


def count(n):
    """1000 as 1e3, others as they are."""
    text = str(n)
    zeros = len(text) - len(text.rstrip("0"))
    return f"{text[0]}e{zeros}" if zeros >= 3 and len(text) == zeros + 1 else text


def duration(ns):
    if ns is None:
        return ""
    for unit_ns, unit in ((1e9, "s"), (1e6, "ms"), (1e3, "µs")):
        if ns >= unit_ns:
            return f"{digits(ns / unit_ns)} {unit}"
    return f"{digits(ns)} ns"


def line(cells):
    return "| " + " | ".join(cells) + " |"


def table(head, lines, left=1):
    """A Markdown table whose first columns are set left, the others right."""
    rule = ["---"] * left + ["---:"] * (len(head) - left)
    return "\n".join([line(head), line(rule)] + [line(cells) for cells in lines])
