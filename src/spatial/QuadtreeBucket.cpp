// Nearest-point search in the plane: the checks, and the state that callers see. The search itself
// is NearestIndex's.

#include <qel/QuadtreeBucket.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>

#include <qel/QELException.h>

#include "platform/LargePages.h"
#include "spatial/NearestIndex.h"

namespace qel {
namespace {

constexpr const char* kClassName = "Quadtree"; // as messages have always called it
constexpr float kNoDistance = std::numeric_limits<float>::max();
constexpr std::size_t kMostPoints = std::size_t{1} << 31;

// Makes stored points of a list. An insertion of many knows its room beforehand, which an appended
// point has to ask for.
class ObjectIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = QuadtreeObject;
    using difference_type = std::ptrdiff_t;
    using pointer = const QuadtreeObject*;
    using reference = QuadtreeObject;

    ObjectIterator(const std::vector<TripletBase<float>>& points, std::size_t index)
        : points_(points.data()), index_(index) {}

    QuadtreeObject operator*() const { return {points_[index_], index_}; }
    ObjectIterator& operator++() {
        ++index_;
        return *this;
    }
    bool operator==(const ObjectIterator& other) const { return index_ == other.index_; }
    bool operator!=(const ObjectIterator& other) const { return index_ != other.index_; }

private:
    const TripletBase<float>* points_;
    std::size_t index_;
};

} // namespace

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
    std::swap(bestObject_, other.bestObject_);
    std::swap(queryX_, other.queryX_);
    std::swap(queryY_, other.queryY_);
    std::swap(maxDepth_, other.maxDepth_);
    std::swap(bucketCapacity_, other.bucketCapacity_);
    std::swap(maxDepthReached_, other.maxDepthReached_);
    index_.swap(other.index_);
    objects_.swap(other.objects_);
}

void QuadtreeBucket::construct(const std::vector<TripletBase<float>>& points) {
    if (points.empty()) {
        throw internal::error(kClassName, "construct", "Vector of verticies empty.", argumentError);
    }
    if (points.size() >= kMostPoints) {
        throw internal::error(kClassName, "construct", "Too many verticies.", argumentError);
    }
    QELVector<QuadtreeObject> objects;
    objects.reserve(points.size());
    adviseLargePages(objects.data(), points.size() * sizeof(QuadtreeObject));
    // Sorting is done in the memory of the points to be stored: memory not touched before is dear.
    static_assert(sizeof(QuadtreeObject) >= kSortingBytes &&
                      alignof(QuadtreeObject) >= alignof(PlanePoint),
                  "there is room for it");
    const auto capacity = static_cast<std::size_t>(std::max(bucketCapacity_, 0));
    index_ = std::make_unique<const NearestIndex>(points, maxDepth_, capacity, objects.data());
    objects.insert(objects.end(), ObjectIterator(points, 0), ObjectIterator(points, points.size()));
    objects_.swap(objects);
    maxDepthReached_ = index_->maxDepthReached();
    bestObject_ = nullptr;
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
    bestDistance_ = nearest.isFound ? nearest.distance : kNoDistance;
    bestObject_ = nearest.isFound ? &objects_[nearest.index] : nullptr;
    if (!nearest.isFound) {
        throw data::invalid(kClassName, "findNearestPoint", "No point at a finite distance.",
                            argumentError);
    }
    return nearest.index;
}

} // namespace qel
