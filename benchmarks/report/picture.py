"""The report as a picture: for each work a bar from its worst to its best shape, on each unit."""

from collections import defaultdict

from page import shapes_in_order

SIZE = 100000
COLOURS = {"AVX-512": "#3b6fb6", "AVX2": "#c08a3b", "portable": "#808080"}


def spans_of(works, rows):
    """{group: {title: {unit: (worst, usual, best)}}}, at SIZE or the largest size below it."""
    usual = {group: shapes[0] for group, shapes in shapes_in_order(rows).items()}
    by_work = defaultdict(list)
    for row in rows:
        if row.n <= SIZE and row.times_faster(row.best_other):
            by_work[(row.group, row.work, row.unit)].append(row)
    spans = defaultdict(lambda: defaultdict(dict))
    for (group, _, unit), found in by_work.items():
        n = max(row.n for row in found)
        ratios = {row.shape: row.times_faster(row.best_other) for row in found if row.n == n}
        spans[group][works.title(found[0])][unit] = (
            min(ratios.values()), ratios.get(usual[group]), max(ratios.values()))
    return spans


def draw_group(axes, works_of_group):
    units = sorted({unit for spans in works_of_group.values() for unit in spans})
    height = 0.8 / max(len(units), 1)
    for place, spans in enumerate(works_of_group.values()):
        for k, unit in enumerate(units):
            if unit in spans:
                worst, usual, best = spans[unit]
                y = place - 0.4 + (k + 0.5) * height
                axes.barh(y, best - worst, 0.8 * height, left=worst, color=COLOURS[unit],
                          alpha=0.45)
                if usual:
                    axes.plot([usual], [y], "o", markersize=3, color=COLOURS[unit])
    axes.set_xscale("log")
    axes.axvline(1.0, color="black", linewidth=0.8)
    axes.set_yticks(range(len(works_of_group)), list(works_of_group), fontsize=7)
    axes.set_ylim(len(works_of_group) - 0.4, -0.6)
    axes.grid(axis="x", which="major", linewidth=0.3)
    axes.set_axisbelow(True)


def legend(axes, pyplot, units):
    handles = [pyplot.Rectangle((0, 0), 1, 1, color=COLOURS[unit], alpha=0.45) for unit in units]
    handles.append(pyplot.Line2D([], [], marker="o", color="black", linestyle="", markersize=3))
    axes.legend(handles, [*units, "usual shape"], fontsize=7, ncol=len(handles), frameon=False,
                loc="lower right", bbox_to_anchor=(1.0, 1.0))


def draw(works, rows, path):
    """Writes the picture in the format of the path's ending. Needs matplotlib."""
    import matplotlib

    matplotlib.use("Agg")
    matplotlib.rcParams["svg.hashsalt"] = "benchmarks"  # the same drawing for the same numbers
    from matplotlib import pyplot
    from matplotlib.ticker import FormatStrFormatter

    spans = spans_of(works, rows)
    groups = sorted(spans)
    heights = [len(spans[group]) for group in groups]
    figure, all_axes = pyplot.subplots(
        len(groups), 1, figsize=(9, 0.5 * len(groups) + 0.2 * sum(heights)), squeeze=False,
        sharex=True, gridspec_kw={"height_ratios": heights}, layout="constrained")
    for axes, group in zip(all_axes[:, 0], groups):
        draw_group(axes, spans[group])
        axes.set_title(group, fontsize=9, loc="left")
    legend(all_axes[0, 0], pyplot, sorted({row.unit for row in rows}))
    all_axes[-1, 0].xaxis.set_major_formatter(FormatStrFormatter("%g"))
    all_axes[-1, 0].tick_params(axis="x", labelsize=8)
    all_axes[-1, 0].set_xlabel(
        "best of peers and plain loop over the library, from worst to best shape, n = 1e5; "
        "right of 1 the library is faster", fontsize=8)
    figure.savefig(path, metadata={"Date": None} if str(path).endswith(".svg") else None)
    pyplot.close(figure)
