#include "spatial/NearestIndex.h"

#include <cmath>
#include <utility>

#include "platform/FloatBits.h"
#include "spatial/BoxTreeBuilder.h"
#include "spatial/NearestSearch.h"

namespace qel {

NearestIndex::NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth,
                           std::size_t capacity) {
    LeafOrder order = sortIntoLeaves(points, maxDepth, capacity,
                                     tree_.makeSourceRoom(points.size() * kSortingBytes));
    root_ = order.root;
    maxDepthReached_ = order.maxDepthReached;
    buildBoxTree(order, tree_, starts_);
    leaves_ = std::move(order.leaves);
}

NearestIndex::Nearest NearestIndex::find(float qx, float qy) const {
    if (!std::isfinite(qx) || !std::isfinite(qy)) {
        return {}; // at no finite distance of anything
    }
    return searchNearest(*this, qx, qy);
}

std::uint64_t NearestIndex::rankOfLeaf(std::uint32_t leaf, float qx, float qy) const {
    // The search starts in the query's leaf only if this holds, which a root without extent in
    // numbers (NaN) does not.
    const bool startsInLeaf =
        (qx >= root_.xmin || root_.xmax > qx) && (qy >= root_.ymin || root_.ymax > qy);
    if (startsInLeaf && leaves_[leaf].isReachedBy(qx, qy)) {
        return 0; // of a single leaf
    }
    const float distance = squaredDistance(leaves_[leaf].rectangle, qx, qy);
    return ((static_cast<std::uint64_t>(bitsOf(distance)) << 32) | leaf) + 1; // the bits ascend
}

} // namespace qel
