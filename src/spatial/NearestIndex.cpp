// The way of a point into the index:
//
// 1. The box of the points, with margins, is the root of the quadtree (here).
// 2. The point is sorted into a cell of a grid of the quadtree's cuts (MortonSort, GridCells).
// 3. The counts of the cells tell its leaf and its block (LinearQuadtree).
// 4. The point is written to its block, and boxes are built over the blocks, in the memory where
//    the points are (PointBvhBuilder, InPlaceStorage).
// 5. Boxes of some size are entered into grids at which the search may begin (EntryGrid).

#include "spatial/NearestIndex.h"

#include <new>
#include <utility>

#include "platform/FloatBits.h"

namespace qel {
namespace {

constexpr double kMarginFactor = 0.1f; // single precision on purpose: 0.100000001490116...

// Cells of the entry grids: what a node of blocks alone holds on average, and one of such nodes.
// Splits in the middle fill nodes, and blocks, to two thirds.
constexpr std::size_t kEntryCellSizes[] = {128, 2048};
// Fewer cells save no steps.
constexpr std::size_t kMinEntryCells = 16;

struct Extent {
    QuadRectangle box;
    bool isFinite;
};

// Comparisons pass over a NaN, but not over that of the first point, which stays.
Extent extentOf(const std::vector<TripletBase<float>>& points) {
    const TripletBase<float>& first = points.front();
    QuadRectangle box = {first.x, first.y, first.x, first.y};
    float zero = 0.0f; // a NaN if a coordinate is not finite
    for (const TripletBase<float>& p : points) {
        extend(box, {p.x, p.y, p.x, p.y});
        zero += (p.x - p.x) + (p.y - p.y);
    }
    return {box, zero == 0.0f};
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

// Memory in which points are sorted, the points themselves at its end.
SortedPoints makeSortedPoints(InPlaceStorage& storage, std::size_t count) {
    const std::size_t codeBytes = (count + 1) / 2 * 2 * sizeof(std::uint16_t);
    auto* const memory =
        static_cast<char*>(storage.makeSource(codeBytes + count * sizeof(PlanePoint)));
    return {new (memory + codeBytes) PlanePoint[count], new (memory) std::uint16_t[count]};
}

} // namespace

NearestIndex::NearestIndex(const std::vector<TripletBase<float>>& points,
                           const QuadtreeLimits& limits) {
    const Extent extent = extentOf(points);
    root_ = rootRectangle(extent.box);
    const QuadNode root = {root_};
    const SortedPoints sorted = makeSortedPoints(bvh_.storage(), points.size());
    LinearQuadtree quadtree =
        buildLinearQuadtree(points, root, extent.box, extent.isFinite, limits, sorted);
    for (const std::size_t size : kEntryCellSizes) {
        if (points.size() > kMinEntryCells * size) {
            entryGrids_.emplace_back(root, points.size(), size);
        }
    }
    buildPointBvh(sorted.points, root, quadtree, bvh_, entryGrids_);
    leaves_ = std::move(quadtree.leaves);
    maxDepthReached_ = quadtree.maxDepthReached;
}

std::uint64_t NearestIndex::leastRank(const QuadNode& node, std::uint32_t firstLeaf, float qx,
                                      float qy) const {
    // The search starts in the query's leaf only if this holds, which a root without extent in
    // numbers (NaN) does not.
    const bool startsInLeaf =
        (qx >= root_.xmin || root_.xmax > qx) && (qy >= root_.ymin || root_.ymax > qy);
    if (startsInLeaf && node.contains(qx, qy)) {
        return 0; // of a single leaf
    }
    const float distance = squaredDistance(node.rectangle, qx, qy);
    return ((static_cast<std::uint64_t>(bitsOf(distance)) << 32) | firstLeaf) + 1; // bits ascend
}

} // namespace qel
