// Nearest-point search in the plane: the checks, and the state that callers see. The search itself
// is NearestIndex's.

#include <qel/QuadtreeBucket.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include <qel/QELException.h>
#include <qel/QuadtreeQuad.h>

#include "platform/FloatBits.h"
#include "spatial/NearestIndex.h"

namespace qel {
namespace {

constexpr const char* kClassName = "Quadtree"; // as messages have always called it
constexpr float kNoDistance = std::numeric_limits<float>::max();
constexpr std::size_t kMaxPoints = std::size_t{1} << 31;

// The z of every point, or one where they are the same: most clouds lie in a plane.
std::vector<float> zValuesOf(const std::vector<TripletBase<float>>& points) {
    const std::int32_t first = bitsOf(points.front().z);
    std::int32_t differing = 0;
    for (const TripletBase<float>& p : points) {
        differing |= bitsOf(p.z) ^ first;
    }
    const std::size_t count = differing == 0 ? 1 : points.size();
    std::vector<float> zValues(count);
    std::transform(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count),
                   zValues.begin(), [](const TripletBase<float>& p) { return p.z; });
    return zValues;
}

} // namespace

QuadtreeObject::QuadtreeObject() = default;

QuadtreeQuad::QuadtreeQuad() = default;

QuadtreeBucket::QuadtreeBucket() : QuadtreeBucket(10, 10) {}

QuadtreeBucket::QuadtreeBucket(int maxDepth, int bucketCapacity)
    : bestDistance_(kNoDistance), maxDepth_(maxDepth), bucketCapacity_(bucketCapacity) {}

QuadtreeBucket::~QuadtreeBucket() = default;

QuadtreeBucket::QuadtreeBucket(QuadtreeBucket&& other) noexcept
    : QuadtreeBucket(other.maxDepth_, other.bucketCapacity_) {
    swap(other);
}

QuadtreeBucket& QuadtreeBucket::operator=(QuadtreeBucket&& other) noexcept {
    QuadtreeBucket taken(std::move(other));
    swap(taken);
    return *this;
}

void QuadtreeBucket::swap(QuadtreeBucket& other) noexcept {
    std::swap(bestDistance_, other.bestDistance_);
    std::swap(hasBest_, other.hasBest_);
    std::swap(best_, other.best_);
    std::swap(queryX_, other.queryX_);
    std::swap(queryY_, other.queryY_);
    std::swap(maxDepth_, other.maxDepth_);
    std::swap(bucketCapacity_, other.bucketCapacity_);
    std::swap(maxDepthReached_, other.maxDepthReached_);
    index_.swap(other.index_);
    zValues_.swap(other.zValues_);
}

void QuadtreeBucket::construct(const std::vector<TripletBase<float>>& points) {
    if (points.empty()) {
        throw internal::error(kClassName, "construct", "Vector of verticies empty.", argumentError);
    }
    if (points.size() >= kMaxPoints) {
        throw internal::error(kClassName, "construct", "Too many verticies.", argumentError);
    }
    const auto capacity = static_cast<std::size_t>(std::max(bucketCapacity_, 0));
    auto index = std::make_unique<const NearestIndex>(points, QuadtreeLimits{maxDepth_, capacity});
    zValues_ = zValuesOf(points);
    index_ = std::move(index);
    maxDepthReached_ = index_->maxDepthReached();
    forgetBest();
}

void QuadtreeBucket::forgetBest() {
    hasBest_ = false;
    bestDistance_ = kNoDistance;
}

std::size_t QuadtreeBucket::findNearestPoint(const TripletBase<float>& p) {
    if (!index_) {
        throw internal::error(kClassName, "findNearestPoint", "No points to search.",
                              argumentError);
    }
    queryX_ = p.x;
    queryY_ = p.y;
    const NearestIndex::Nearest nearest = index_->find(queryX_, queryY_);
    if (!nearest.isFound) {
        forgetBest();
        throw data::invalid(kClassName, "findNearestPoint", "No point at a finite distance.",
                            argumentError);
    }
    const float z = zValues_[zValues_.size() == 1 ? 0 : nearest.index];
    bestDistance_ = nearest.distance;
    best_ = {{nearest.x, nearest.y, z}, nearest.index};
    hasBest_ = true;
    return nearest.index;
}

} // namespace qel
