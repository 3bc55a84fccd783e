#include "spatial/NearestIndex.h"

#include <cmath>
#include <limits>

#include "spatial/BoxTree.h"
#include "spatial/NearestSearch.h"

namespace qel {

NearestIndex::NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth,
                           std::size_t capacity) {
    LeafOrder order = sortIntoLeaves(points, maxDepth, capacity);
    root_ = order.root;
    maxDepthReached_ = order.maxDepthReached;
    nodes_ = buildBoxTree(order);
    leaves_ = std::move(order.leaves);

    const std::size_t count = order.points.size();
    coordinates_.resize(2 * (count + kLanes));
    indices_.resize(count);
    leafNumbers_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const PlanePoint& p = order.points[i];
        coordinates_[2 * i] = p.x;
        coordinates_[2 * i + 1] = p.y;
        indices_[i] = p.index;
        leafNumbers_[i] = p.cell;
    }
    for (std::size_t i = 2 * count; i < coordinates_.size(); ++i) {
        coordinates_[i] = std::numeric_limits<float>::infinity();
    }
}

NearestIndex::Nearest NearestIndex::find(float qx, float qy) const {
    if (!std::isfinite(qx) || !std::isfinite(qy)) {
        return {}; // at no finite distance of anything
    }
    const NearestHit hit = searchNearest(*this, qx, qy);
    return hit.isFound ? Nearest{true, indices_[hit.position], hit.distance} : Nearest{};
}

std::size_t NearestIndex::memoryBytes() const {
    return leaves_.capacity() * sizeof(QuadLeaf) + nodes_.capacity() * sizeof(BoxNode) +
           coordinates_.capacity() * sizeof(float) +
           (indices_.capacity() + leafNumbers_.capacity()) * sizeof(std::uint32_t);
}

bool NearestIndex::isFirst(std::uint32_t a, std::uint32_t b, float qx, float qy) const {
    const std::uint32_t leafA = leafNumbers_[a], leafB = leafNumbers_[b];
    if (leafA == leafB) {
        return indices_[a] < indices_[b];
    }
    // The search starts in the query's leaf only if this holds, which a root without extent in
    // numbers (NaN) does not.
    const bool startsInLeaf =
        (qx >= root_.xmin || root_.xmax > qx) && (qy >= root_.ymin || root_.ymax > qy);
    const QuadLeaf& first = leaves_[leafA];
    const QuadLeaf& second = leaves_[leafB];
    if (startsInLeaf && first.isReachedBy(qx, qy)) {
        return true;
    }
    if (startsInLeaf && second.isReachedBy(qx, qy)) {
        return false;
    }
    const float distanceA = squaredDistance(first.rectangle, qx, qy);
    const float distanceB = squaredDistance(second.rectangle, qx, qy);
    return distanceA != distanceB ? distanceA < distanceB : leafA < leafB;
}

} // namespace qel
