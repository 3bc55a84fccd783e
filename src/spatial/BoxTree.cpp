// Builds the boxes of NearestIndex over sorted points.
//
// A run of points is split where the highest bit of the cells changes, which keeps parts
// square without looking at a point; within one cell, at the median of the longer side.

#include "spatial/BoxTree.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Run {
    std::size_t begin, end;
    bool isOnePlace; // all points at the same place: a block of any size

    std::size_t count() const { return end - begin; }
    bool isBlock() const { return isOnePlace || count() <= static_cast<std::size_t>(kLanes); }
};

constexpr QuadRectangle kEmptyBox = {kInfinity, kInfinity, -kInfinity, -kInfinity};

void extend(QuadRectangle& box, const QuadRectangle& other) {
    box.xmin = std::min(box.xmin, other.xmin);
    box.ymin = std::min(box.ymin, other.ymin);
    box.xmax = std::max(box.xmax, other.xmax);
    box.ymax = std::max(box.ymax, other.ymax);
}

class BoxTreeBuilder {
public:
    explicit BoxTreeBuilder(LeafOrder& order) : order_(order) {}

    std::vector<BoxNode> build() {
        nodes_.reserve(order_.points.size() / 128 + 1);
        addNode({0, order_.points.size(), false});
        return std::move(nodes_);
    }

private:
    // Adds the node over a run and all below it; returns the box of its points.
    QuadRectangle addNode(const Run& whole) {
        Run runs[kLanes];
        const int count = splitIntoRuns(whole, runs);
        const std::size_t number = nodes_.size();
        nodes_.emplace_back();
        QuadRectangle box = kEmptyBox;
        for (int lane = 0; lane < kLanes; ++lane) {
            std::uint32_t child = 0;
            QuadRectangle childBox = kEmptyBox;
            if (lane < count && runs[lane].isBlock()) {
                child = NearestIndex::kBlock + static_cast<std::uint32_t>(runs[lane].begin);
                childBox = boxOf(runs[lane]);
            } else if (lane < count) {
                child = static_cast<std::uint32_t>(nodes_.size());
                childBox = addNode(runs[lane]);
            }
            setLane(nodes_[number], lane, childBox, child);
            extend(box, childBox);
        }
        return box;
    }

    static void setLane(BoxNode& node, int lane, const QuadRectangle& box, std::uint32_t child) {
        node.xmin[lane] = box.xmin;
        node.ymin[lane] = box.ymin;
        node.xmax[lane] = box.xmax;
        node.ymax[lane] = box.ymax;
        node.child[lane] = child;
    }

    // Splits the longest run until there are 16 or all are blocks.
    int splitIntoRuns(const Run& whole, Run* runs) {
        int count = 0;
        if (whole.count() > 0) {
            runs[count++] = whole;
        }
        while (count > 0 && count < kLanes) {
            Run* const longest =
                std::max_element(runs, runs + count, [](const Run& a, const Run& b) {
                    return (a.isBlock() ? 0 : a.count()) < (b.isBlock() ? 0 : b.count());
                });
            if (longest->isBlock()) {
                break;
            }
            const std::size_t middle = split(*longest);
            if (!longest->isBlock()) {
                runs[count++] = {middle, longest->end, false};
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
        std::uint32_t bit = first ^ last; // down to its highest bit:
        while ((bit & (bit - 1)) != 0) {
            bit &= bit - 1;
        }
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
            // The first in the list wins wherever any of them would; the others are not needed.
            std::iter_swap(begin, std::min_element(begin, end, isListedBefore));
            run.isOnePlace = true;
            return run.end;
        }
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
    std::vector<BoxNode> nodes_;
};

bool isFinite(const PlanePoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// They are at no finite distance of anything.
void dropNonFinitePoints(LeafOrder& order) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < order.points.size(); ++i) {
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

std::vector<BoxNode> buildBoxTree(LeafOrder& order) {
    dropNonFinitePoints(order);
    return BoxTreeBuilder(order).build();
}

} // namespace qel
