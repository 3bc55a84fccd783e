#include "spatial/NearestIndex.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "spatial/BoxTreeBuilder.h"
#include "spatial/NearestSearch.h"

namespace qel {

NearestIndex::NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth,
                           std::size_t capacity, void* memory) {
    LeafOrder order = sortIntoLeaves(points, maxDepth, capacity, memory);
    root_ = order.root;
    maxDepthReached_ = order.maxDepthReached;
    tree_ = buildBoxTree(order, starts_);
    leaves_ = std::move(order.leaves);
}

void BoxTree::reserve(std::size_t nodes, std::size_t blocks) {
    lines_ = Buffer<Line>((nodes * sizeof(BoxNode) + blocks * sizeof(PointBlock)) / sizeof(Line));
    size_ = 0;
}

void BoxTree::grow() {
    Buffer<Line> wider(size_ + size_ / 2);
    std::copy(lines_.begin(), lines_.end(), wider.begin());
    lines_ = std::move(wider);
}

NearestIndex::Nearest NearestIndex::find(float qx, float qy) const {
    if (!std::isfinite(qx) || !std::isfinite(qy)) {
        return {}; // at no finite distance of anything
    }
    const NearestHit hit = searchNearest(*this, qx, qy);
    return hit.isFound ? Nearest{true, hit.index, hit.distance} : Nearest{};
}

std::uint64_t NearestIndex::rankOfLeaf(std::uint32_t leaf, float qx, float qy) const {
    // The search starts in the query's leaf only if this holds, which a root without extent in
    // numbers (NaN) does not.
    const bool startsInLeaf =
        (qx >= root_.xmin || root_.xmax > qx) && (qy >= root_.ymin || root_.ymax > qy);
    if (startsInLeaf && leaves_[leaf].isReachedBy(qx, qy)) {
        return 0; // of a single leaf
    }
    // The bits of a float that is not negative ascend with it.
    const float distance = squaredDistance(leaves_[leaf].rectangle, qx, qy);
    std::uint32_t bits = 0;
    std::memcpy(&bits, &distance, sizeof(bits));
    return ((std::uint64_t{bits} << 32) | leaf) + 1;
}

} // namespace qel
