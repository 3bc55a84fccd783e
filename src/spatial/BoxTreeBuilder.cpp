// Builds the boxes of NearestIndex over sorted points.
//
// A run of points is split where the highest bit of the cells changes, which keeps parts
// square without looking at a point; within one cell, at the median of the longer side.

#include "spatial/BoxTreeBuilder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// What a node of 16 blocks holds on average: splits in the middle fill blocks to two thirds.
constexpr std::size_t kPointsOfLowNode = 128;

struct Run {
    std::size_t begin, end;
    int freeBits;            // its cells agree but for these lowest bits, and no others do
    bool isOnePlace = false; // all points at the same place: a block of any size

    std::size_t count() const { return end - begin; }
    bool isBlock() const { return isOnePlace || count() <= static_cast<std::size_t>(kLanes); }
};

constexpr int kNoRegion = -1; // for freeBits: a part of a cell

constexpr QuadRectangle kEmptyBox = {kInfinity, kInfinity, -kInfinity, -kInfinity};

void extend(QuadRectangle& box, const QuadRectangle& other) {
    box.xmin = std::min(box.xmin, other.xmin);
    box.ymin = std::min(box.ymin, other.ymin);
    box.xmax = std::max(box.xmax, other.xmax);
    box.ymax = std::max(box.ymax, other.ymax);
}

class BoxTreeBuilder {
public:
    BoxTreeBuilder(LeafOrder& order, StartTables& starts) : order_(order), starts_(starts) {}

    BoxTree build() {
        const std::size_t count = order_.points.size();
        tree_.reserve(count / 60 + 1, count / 8 + 1); // half full: growing would copy all
        QuadRectangle box;
        addNode({0, count, 2 * order_.gridLevels}, box);
        return std::move(tree_);
    }

private:
    // Adds the node over a run and all below it, blocks first; returns the line of the node and
    // the box of its points.
    std::uint32_t addNode(const Run& whole, QuadRectangle& box) {
        Run runs[kLanes];
        const int count = splitIntoRuns(whole, runs);
        BoxNode node = {};
        const std::uint32_t line = tree_.add(node);
        if (whole.freeBits >= 0 && whole.count() > 0) {
            for (StartTable& table : starts_) {
                table.name(line, order_.cells[whole.begin], whole.freeBits);
            }
        }
        box = kEmptyBox;
        for (int lane = 0; lane < kLanes; ++lane) {
            QuadRectangle childBox = kEmptyBox;
            node.child[lane] = 0;
            if (lane < count && runs[lane].isBlock()) {
                node.child[lane] = BoxNode::kBlock + addBlock(runs[lane], childBox);
            }
            setBox(node, lane, childBox);
            extend(box, childBox);
        }
        for (int lane = 0; lane < count; ++lane) {
            if (!runs[lane].isBlock()) {
                QuadRectangle childBox;
                node.child[lane] = addNode(runs[lane], childBox);
                setBox(node, lane, childBox);
                extend(box, childBox);
            }
        }
        tree_.replace(line, node);
        return line;
    }

    std::uint32_t addBlock(const Run& run, QuadRectangle& box) {
        PointBlock block = {};
        std::fill(block.x, block.x + kLanes, kInfinity);
        std::fill(block.y, block.y + kLanes, kInfinity);
        // Of points at one place, the first in the list wins wherever any of them would.
        const std::size_t count = run.isOnePlace ? 1 : run.count();
        for (std::size_t i = 0; i < count; ++i) {
            const PlanePoint& p = order_.points[run.begin + i];
            block.x[i] = p.x;
            block.y[i] = p.y;
            block.index[i] = p.index;
            block.leaf[i] = p.cell;
            extend(box, {p.x, p.y, p.x, p.y});
        }
        return tree_.add(block);
    }

    static void setBox(BoxNode& node, int lane, const QuadRectangle& box) {
        node.xmin[lane] = box.xmin;
        node.ymin[lane] = box.ymin;
        node.xmax[lane] = box.xmax;
        node.ymax[lane] = box.ymax;
    }

    // The most points that a child of a node over `count` points should hold: the least of 16,
    // 128, 2048, ... that lets 16 of them do. Nodes just above the points are thereby well filled.
    static std::size_t childSize(std::size_t count) {
        std::size_t size = kLanes;
        for (std::size_t node = kPointsOfLowNode; node < count; node *= kLanes) {
            size = node;
        }
        return size;
    }

    // Splits the longest run until none is too long or there are 16.
    int splitIntoRuns(const Run& whole, Run* runs) {
        const std::size_t longEnough = childSize(whole.count());
        int count = 0;
        if (whole.count() > 0) {
            runs[count++] = whole;
        }
        while (count > 0 && count < kLanes) {
            Run* const longest =
                std::max_element(runs, runs + count, [](const Run& a, const Run& b) {
                    return (a.isBlock() ? 0 : a.count()) < (b.isBlock() ? 0 : b.count());
                });
            if (longest->isBlock() || longest->count() <= longEnough) {
                break;
            }
            const std::size_t middle = split(*longest);
            if (!longest->isBlock()) {
                runs[count++] = {middle, longest->end, longest->freeBits};
                longest->end = middle;
            }
        }
        return count;
    }

    // Where to cut a run; or finds that it is one place.
    std::size_t split(Run& run) {
        const std::uint32_t first = order_.cells[run.begin];
        const std::uint32_t last = order_.cells[run.end - 1];
        if (first == last) {
            return splitAtMedian(run);
        }
        while (((first ^ last) >> (run.freeBits - 1)) == 0) {
            --run.freeBits; // the points leave one half of the region empty
        }
        const std::uint32_t bit = std::uint32_t{1} << --run.freeBits;
        const auto cells = order_.cells.begin();
        return static_cast<std::size_t>(
            std::partition_point(cells + static_cast<std::ptrdiff_t>(run.begin),
                                 cells + static_cast<std::ptrdiff_t>(run.end),
                                 [bit](std::uint32_t cell) { return (cell & bit) == 0; }) -
            cells);
    }

    std::size_t splitAtMedian(Run& run) {
        const QuadRectangle box = boxOf(run);
        const auto begin = order_.points.begin() + static_cast<std::ptrdiff_t>(run.begin);
        const auto end = order_.points.begin() + static_cast<std::ptrdiff_t>(run.end);
        if (box.xmin == box.xmax && box.ymin == box.ymax) {
            std::iter_swap(begin, std::min_element(begin, end, isListedBefore));
            run.isOnePlace = true;
            return run.end;
        }
        run.freeBits = kNoRegion;
        // Whole blocks on the left.
        const std::size_t half =
            (run.count() / 2 + kLanes - 1) / static_cast<std::size_t>(kLanes) * kLanes;
        const auto middle = begin + static_cast<std::ptrdiff_t>(half);
        if (box.xmax - box.xmin > box.ymax - box.ymin) {
            std::nth_element(begin, middle, end,
                             [](const PlanePoint& a, const PlanePoint& b) { return a.x < b.x; });
        } else {
            std::nth_element(begin, middle, end,
                             [](const PlanePoint& a, const PlanePoint& b) { return a.y < b.y; });
        }
        return run.begin + half;
    }

    static bool isListedBefore(const PlanePoint& a, const PlanePoint& b) {
        return a.index < b.index;
    }

    QuadRectangle boxOf(const Run& run) const {
        QuadRectangle box = kEmptyBox;
        for (std::size_t i = run.begin; i < run.end; ++i) {
            const PlanePoint& p = order_.points[i];
            extend(box, {p.x, p.y, p.x, p.y});
        }
        return box;
    }

    LeafOrder& order_;
    StartTables& starts_;
    BoxTree tree_;
};

bool isFinite(const PlanePoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// They are at no finite distance of anything.
void dropNonFinitePoints(LeafOrder& order) {
    const auto firstBad = std::find_if_not(order.points.begin(), order.points.end(), isFinite);
    auto kept = static_cast<std::size_t>(firstBad - order.points.begin());
    for (std::size_t i = kept; i < order.points.size(); ++i) {
        if (isFinite(order.points[i])) {
            order.points[kept] = order.points[i];
            order.cells[kept] = order.cells[i];
            ++kept;
        }
    }
    order.points.resize(kept);
    order.cells.resize(kept);
}

} // namespace

BoxTree buildBoxTree(LeafOrder& order, StartTables& starts) {
    dropNonFinitePoints(order);
    std::size_t cellSize = kPointsOfLowNode;
    for (StartTable& table : starts) {
        table = StartTable(order.root, order.points.size(), cellSize, order.gridLevels);
        cellSize *= kLanes;
    }
    return BoxTreeBuilder(order, starts).build();
}

} // namespace qel
