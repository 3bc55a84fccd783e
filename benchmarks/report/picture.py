"""The report as a picture: bars of ratios, for each row against the best peer and the limit."""

BAR = 0.38
PEER_COLOUR = "#3b6fb6"
BEHIND_COLOUR = "#c0504d"
LIMIT_COLOUR = "#b8b8b8"


def label(row, count):
    mark = " †" if row.differs(row.best_peer) else ""
    return f"{row.title}, {count(row.n)} ({row.best_peer.who}{mark})"


def draw_rows(axes, rows, count):
    """Two bars a row, from the line at 1: to the right of it the library is faster."""
    places = range(len(rows))
    faster = [row.times_faster for row in rows]
    colours = [BEHIND_COLOUR if row.peer_is_ahead else PEER_COLOUR for row in rows]
    axes.barh([p - BAR / 2 for p in places], [f - 1.0 for f in faster], BAR, left=1.0,
              color=colours)
    limited = [p for p in places if rows[p].limit]
    axes.barh([p + BAR / 2 for p in limited], [rows[p].share_of_limit - 1.0 for p in limited], BAR,
              left=1.0, color=LIMIT_COLOUR)
    axes.set_xscale("log")
    axes.axvline(1.0, color="black", linewidth=0.8)
    axes.set_yticks(list(places), [label(row, count) for row in rows], fontsize=7)
    axes.invert_yaxis()
    axes.grid(axis="x", which="both", linewidth=0.3)
    axes.set_axisbelow(True)


def legend(axes, pyplot):
    handles = [
        pyplot.Rectangle((0, 0), 1, 1, color=PEER_COLOUR),
        pyplot.Rectangle((0, 0), 1, 1, color=BEHIND_COLOUR),
        pyplot.Rectangle((0, 0), 1, 1, color=LIMIT_COLOUR),
    ]
    texts = ["best peer's time / library's", "the same, peer ahead", "limit's time / library's"]
    axes.legend(handles, texts, fontsize=7, loc="lower right")


def draw(rows, path, count):
    """Writes the picture in the format of the path's ending. Needs matplotlib."""
    import matplotlib

    matplotlib.use("Agg")
    matplotlib.rcParams["svg.hashsalt"] = "benchmarks"  # the same drawing for the same numbers
    from matplotlib import pyplot

    shown = [row for row in rows if row.best_peer]
    groups = sorted({row.group for row in shown})
    heights = [sum(row.group == group for row in shown) for group in groups]
    figure, all_axes = pyplot.subplots(
        len(groups), 1, figsize=(9, 0.7 * len(groups) + 0.24 * sum(heights)), squeeze=False,
        gridspec_kw={"height_ratios": heights}, layout="constrained")
    for axes, group in zip(all_axes[:, 0], groups):
        draw_rows(axes, [row for row in shown if row.group == group], count)
        axes.set_title(group, fontsize=9, loc="left")
    legend(all_axes[0, 0], pyplot)
    all_axes[-1, 0].set_xlabel("ratio of times, logarithmic; right of 1 the library is faster",
                               fontsize=8)
    figure.savefig(path, metadata={"Date": None} if str(path).endswith(".svg") else None)
    pyplot.close(figure)
