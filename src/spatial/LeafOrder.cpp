// Sorts points into the leaves of the bucket quadtree.

#include "spatial/LeafOrder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "spatial/CellSort.h"
#include "spatial/GridCells.h"
#include "spatial/KeyRuns.h"

namespace qel {
namespace {

constexpr int kMaxLevels = 12;         // of the grid along one axis
constexpr double kMarginFactor = 0.1f; // single precision on purpose: 0.100000001490116...

// -- Root ----

struct Extent {
    QuadRectangle box;
    float zero = 0.0f; // a NaN if a coordinate is not finite

    void takeIn(const QuadRectangle& other, float zeroOfOther) {
        extend(box, other);
        zero += zeroOfOther;
    }
};

// Comparisons pass over a NaN, but not over that of a first point, which stays. Eight points are
// taken at once: the chain of comparisons of a single one would take longer than reading the
// points. Which of several equal extremes is met first does not matter.
Extent extentOf(const std::vector<TripletBase<float>>& points) {
    constexpr std::size_t kAtOnce = 8, kFloats = 3 * kAtOnce;
    float low[kFloats], high[kFloats], zero[kFloats];
    for (std::size_t k = 0; k < kFloats; k += 3) {
        std::memcpy(low + k, &points.front(), sizeof(points.front()));
        std::memcpy(high + k, &points.front(), sizeof(points.front()));
    }
    std::fill(zero, zero + kFloats, 0.0f);
    const std::size_t whole = points.size() / kAtOnce * kAtOnce;
    for (std::size_t i = 0; i < whole; i += kAtOnce) {
        float values[kFloats];
        std::memcpy(values, points.data() + i, sizeof(values));
        for (std::size_t k = 0; k < kFloats; ++k) {
            low[k] = values[k] < low[k] ? values[k] : low[k];
            high[k] = values[k] > high[k] ? values[k] : high[k];
            zero[k] += values[k] * 0.0f;
        }
    }
    Extent extent = {{low[0], low[1], high[0], high[1]}};
    for (std::size_t k = 0; k < kFloats; k += 3) {
        extent.takeIn({low[k], low[k + 1], high[k], high[k + 1]}, zero[k] + zero[k + 1]);
    }
    for (std::size_t i = whole; i < points.size(); ++i) {
        const TripletBase<float>& p = points[i];
        extent.takeIn({p.x, p.y, p.x, p.y}, p.x * 0.0f + p.y * 0.0f);
    }
    return extent;
}

// The difference in float, the product in double, rounded.
float margin(float low, float high) {
    return static_cast<float>(static_cast<double>(high - low) * kMarginFactor);
}

QuadRectangle rootRectangle(const QuadRectangle& box) {
    const float mx = margin(box.xmin, box.xmax);
    const float my = margin(box.ymin, box.ymax);
    return {box.xmin - mx, box.ymin - my, box.xmax + mx, box.ymax + my};
}

// A cell for up to two points that are spread evenly: few cells need more cuts than theirs.
int gridLevels(std::size_t pointCount) {
    int levels = 1;
    while (levels < kMaxLevels && (std::size_t{2} << (2 * levels)) < pointCount) {
        ++levels;
    }
    return levels;
}

// -- Leaves ----

bool isSame(float a, float b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

class LeafCutter {
public:
    LeafCutter(LeafOrder& order, const GridCells& gridX, const GridCells& gridY, int maxDepth,
               std::size_t capacity)
        : order_(order),
          gridX_(gridX),
          gridY_(gridY),
          maxDepth_(maxDepth),
          capacity_(capacity),
          gridDepth_(gridX.levels() + gridY.levels()) {
        // Leaves are more than half full on average. What is set aside beyond is never touched.
        order.leaves.reserve(
            std::min(order.count, 2 * order.count / std::max<std::size_t>(capacity, 1) + 1));
    }

    // Leaf after leaf, by the bits of the cells.
    void cut() {
        const int leastBits = maxDepth_ < 0 ? 0 : std::max(gridDepth_ - maxDepth_, 0);
        KeyRuns runs(order_.cells, order_.count, capacity_, leastBits, gridDepth_);
        while (runs.next()) {
            const int depth = gridDepth_ - runs.freeBits();
            const QuadLeaf node = leafAt(order_.cells[runs.begin()], depth);
            if (runs.isTooLong() && depth == gridDepth_) {
                cutByCoordinates(runs.begin(), runs.end(), depth, node);
            } else {
                finish(runs.begin(), runs.end(), depth, node);
            }
        }
    }

private:
    bool isCut(std::size_t count, int depth) const {
        return count > capacity_ && depth != maxDepth_;
    }

    // The node at a depth of the grid in which a cell lies.
    QuadLeaf leafAt(std::uint32_t cell, int depth) const {
        const std::uint32_t choices = cell >> (gridDepth_ - depth);
        const bool endsInX = depth % 2 != 0;
        const std::uint32_t x = everyOtherBit(endsInX ? choices : choices >> 1);
        const std::uint32_t y = everyOtherBit(endsInX ? choices >> 1 : choices);
        const int levelsX = (depth + 1) / 2, levelsY = depth / 2;
        const int finerX = gridX_.levels() - levelsX, finerY = gridY_.levels() - levelsY;
        const std::uint32_t lastX = (1u << levelsX) - 1, lastY = (1u << levelsY) - 1;
        return {{gridX_.edge(x << finerX), gridY_.edge(y << finerY), gridX_.edge((x + 1) << finerX),
                 gridY_.edge((y + 1) << finerY)},
                x != 0,
                y != 0,
                x != lastX,
                y != lastY};
    }

    // Beyond the grid. Ends also where two cuts in turn neither separate the points nor shrink
    // the rectangle: no further cut ever would.
    void cutByCoordinates(std::size_t begin, std::size_t end, int depth, QuadLeaf node) {
        int idleCuts = 0;
        while (isCut(end - begin, depth)) {
            if (idleCuts == 2) {
                depth = std::max(depth, maxDepth_);
                break;
            }
            const bool acrossX = depth % 2 == 0;
            const QuadRectangle r = node.rectangle;
            const float cut = acrossX ? middle(r.xmin, r.xmax) : middle(r.ymin, r.ymax);
            const std::size_t middlePoint = partition(order_.points, begin, end, acrossX, cut);
            ++depth;
            if (middlePoint == begin) {
                idleCuts = isSame(cut, acrossX ? r.xmin : r.ymin) ? idleCuts + 1 : 0;
                keepHigh(node, acrossX, cut);
            } else if (middlePoint == end) {
                idleCuts = isSame(cut, acrossX ? r.xmax : r.ymax) ? idleCuts + 1 : 0;
                keepLow(node, acrossX, cut);
            } else {
                QuadLeaf low = node;
                keepLow(low, acrossX, cut);
                cutByCoordinates(begin, middlePoint, depth, low);
                keepHigh(node, acrossX, cut);
                begin = middlePoint;
                idleCuts = 0;
            }
        }
        finish(begin, end, depth, node);
    }

    static void keepLow(QuadLeaf& node, bool acrossX, float cut) {
        (acrossX ? node.rectangle.xmax : node.rectangle.ymax) = cut;
        (acrossX ? node.cutRight : node.cutAbove) = true;
    }
    static void keepHigh(QuadLeaf& node, bool acrossX, float cut) {
        (acrossX ? node.rectangle.xmin : node.rectangle.ymin) = cut;
        (acrossX ? node.cutLeft : node.cutBelow) = true;
    }

    void finish(std::size_t begin, std::size_t end, int depth, const QuadLeaf& node) {
        numberPoints(begin, end, static_cast<std::uint32_t>(order_.leaves.size()));
        order_.leaves.push_back(node);
        order_.maxDepthReached = std::max(order_.maxDepthReached, depth);
    }

    // May number points beyond the leaf, whose turn is still to come: always the same count takes
    // no branch that could not be foreseen.
    void numberPoints(std::size_t begin, std::size_t end, std::uint32_t number) {
        constexpr std::size_t kAtOnce = 16;
        PlanePoint* const points = order_.points;
        std::size_t i = begin;
        for (; i < end && i + kAtOnce <= order_.count; i += kAtOnce) {
            for (std::size_t k = i; k < i + kAtOnce; ++k) {
                points[k].group = number;
            }
        }
        for (; i < end; ++i) {
            points[i].group = number;
        }
    }

    LeafOrder& order_;
    const GridCells& gridX_;
    const GridCells& gridY_;
    const int maxDepth_;
    const std::size_t capacity_;
    const int gridDepth_;
};

// Puts every point to both sides and counts it on its own: no branch to be foreseen.
std::size_t partitionFew(PlanePoint* points, std::size_t begin, std::size_t end, bool acrossX,
                         float cut, PlanePoint* scratch) {
    std::size_t low = begin, high = 0;
    for (std::size_t i = begin; i < end; ++i) {
        const std::size_t isHigh = (acrossX ? points[i].x : points[i].y) >= cut ? 1 : 0;
        scratch[high] = points[i];
        points[low] = points[i];
        low += 1 - isHigh;
        high += isHigh;
    }
    std::copy(scratch, scratch + high, points + low);
    return low;
}

} // namespace

std::size_t partition(PlanePoint* points, std::size_t begin, std::size_t end, bool acrossX,
                      float cut) {
    constexpr std::size_t kFew = 256;
    if (end - begin <= kFew) {
        PlanePoint scratch[kFew];
        return partitionFew(points, begin, end, acrossX, cut, scratch);
    }
    return static_cast<std::size_t>(
        std::partition(points + begin, points + end,
                       [&](const PlanePoint& p) { return !((acrossX ? p.x : p.y) >= cut); }) -
        points);
}

LeafOrder sortIntoLeaves(const std::vector<TripletBase<float>>& points, int maxDepth,
                         std::size_t capacity, void* memory) {
    LeafOrder order;
    order.count = points.size();
    order.cells = new (memory) std::uint32_t[points.size()];
    order.points = new (order.cells + points.size()) PlanePoint[points.size()];
    const Extent extent = extentOf(points);
    order.isFinite = extent.zero == 0.0f;
    order.root = rootRectangle(extent.box);
    const int levels = gridLevels(points.size());
    order.gridLevels = levels;
    const GridCells gridX(order.root.xmin, order.root.xmax, levels);
    const GridCells gridY(order.root.ymin, order.root.ymax, levels);
    sortByCells(points, gridX, gridY, order);
    LeafCutter(order, gridX, gridY, maxDepth, capacity).cut();
    return order;
}

} // namespace qel
