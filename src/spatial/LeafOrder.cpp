// Sorts points into the leaves of the bucket quadtree.

#include "spatial/LeafOrder.h"

#include <algorithm>
#include <cmath>

#include "spatial/CellSort.h"
#include "spatial/GridCells.h"

namespace qel {
namespace {

constexpr int kMaxLevels = 12;         // of the grid along one axis
constexpr double kMarginFactor = 0.1f; // single precision on purpose: 0.100000001490116...

// -- Root ----

// Comparisons pass over a NaN, but not over that of a first point, which stays.
QuadRectangle boundingBox(const std::vector<TripletBase<float>>& points) {
    const TripletBase<float>& first = points.front();
    QuadRectangle box{first.x, first.y, first.x, first.y};
    for (const TripletBase<float>& p : points) {
        box.xmin = p.x < box.xmin ? p.x : box.xmin;
        box.ymin = p.y < box.ymin ? p.y : box.ymin;
        box.xmax = p.x > box.xmax ? p.x : box.xmax;
        box.ymax = p.y > box.ymax ? p.y : box.ymax;
    }
    return box;
}

// The difference in float, the product in double, rounded.
float margin(float low, float high) {
    return static_cast<float>(static_cast<double>(high - low) * kMarginFactor);
}

QuadRectangle rootRectangle(const std::vector<TripletBase<float>>& points) {
    const QuadRectangle box = boundingBox(points);
    const float mx = margin(box.xmin, box.xmax);
    const float my = margin(box.ymin, box.ymax);
    return {box.xmin - mx, box.ymin - my, box.xmax + mx, box.ymax + my};
}

// About a cell for a point.
int gridLevels(std::size_t pointCount) {
    int levels = 1;
    while (levels < kMaxLevels && (std::size_t{1} << (2 * levels)) < pointCount) {
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
          gridDepth_(gridX.levels() + gridY.levels()) {}

    // Cuts a run whose points share the first `depth` choices by the bits of their cells.
    void cutByCells(std::size_t begin, std::size_t end, int depth) {
        while (isCut(end - begin, depth)) {
            if (depth == gridDepth_) {
                cutByCoordinates(begin, end, depth, leafAt(order_.cells[begin], depth));
                return;
            }
            const std::uint32_t bit = std::uint32_t{1} << (gridDepth_ - 1 - depth);
            ++depth;
            const std::size_t middle = firstWithBit(begin, end, bit);
            if (middle != begin && middle != end) {
                cutByCells(begin, middle, depth);
                begin = middle;
            }
        }
        finish(begin, end, depth, leafAt(order_.cells[begin], depth));
    }

private:
    bool isCut(std::size_t count, int depth) const {
        return count > capacity_ && depth != maxDepth_;
    }

    std::size_t firstWithBit(std::size_t begin, std::size_t end, std::uint32_t bit) const {
        const auto& cells = order_.cells;
        if ((cells[begin] & bit) != 0) {
            return begin;
        }
        if ((cells[end - 1] & bit) == 0) {
            return end;
        }
        const auto first = cells.begin();
        return static_cast<std::size_t>(
            std::partition_point(first + static_cast<std::ptrdiff_t>(begin),
                                 first + static_cast<std::ptrdiff_t>(end),
                                 [bit](std::uint32_t cell) { return (cell & bit) == 0; }) -
            first);
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
            const std::size_t middlePoint = partition(begin, end, acrossX, cut);
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

    std::size_t partition(std::size_t begin, std::size_t end, bool acrossX, float cut) {
        const auto first = order_.points.begin();
        return static_cast<std::size_t>(
            std::partition(first + static_cast<std::ptrdiff_t>(begin),
                           first + static_cast<std::ptrdiff_t>(end),
                           [&](const PlanePoint& p) { return !((acrossX ? p.x : p.y) >= cut); }) -
            first);
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
        const auto number = static_cast<std::uint32_t>(order_.leaves.size());
        for (std::size_t i = begin; i < end; ++i) {
            order_.points[i].cell = number;
        }
        order_.leaves.push_back(node);
        order_.maxDepthReached = std::max(order_.maxDepthReached, depth);
    }

    LeafOrder& order_;
    const GridCells& gridX_;
    const GridCells& gridY_;
    const int maxDepth_;
    const std::size_t capacity_;
    const int gridDepth_;
};

} // namespace

LeafOrder sortIntoLeaves(const std::vector<TripletBase<float>>& points, int maxDepth,
                         std::size_t capacity) {
    LeafOrder order;
    order.root = rootRectangle(points);
    const int levels = gridLevels(points.size());
    order.gridLevels = levels;
    const GridCells gridX(order.root.xmin, order.root.xmax, levels);
    const GridCells gridY(order.root.ymin, order.root.ymax, levels);
    sortByCells(points, gridX, gridY, order);
    LeafCutter(order, gridX, gridY, maxDepth, capacity).cutByCells(0, points.size(), 0);
    return order;
}

} // namespace qel
