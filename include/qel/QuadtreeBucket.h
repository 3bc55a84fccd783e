#ifndef QEL_QUADTREEBUCKET_H
#define QEL_QUADTREEBUCKET_H

/// @file
/// Nearest-point search in the plane.

#include <cstddef>
#include <memory>
#include <vector>

#include <qel/Export.h>
#include <qel/QuadtreeObject.h>
#include <qel/TripletBase.h>

namespace qel {

class NearestIndex;

/// Finds the nearest of a fixed cloud of points in the x-y plane; z is carried and never used.
///
///     QuadtreeBucket bucket(24, 16);
///     bucket.construct(points);
///     const std::size_t nearest = bucket.findNearestPoint(probe); // a position in `points`
///
/// Distances are squares in float. Points at exactly the same distance are told apart by the
/// bucket quadtree that the two limits define. Its nodes are cut in two halves, across x at the
/// root and then in turn, as long as they hold more than `bucketCapacity` points and are less than
/// `maxDepth` deep. First comes the leaf where the probe lies, then the leaf whose rectangle is
/// nearer to the probe, then the leaf that comes first in the tree (low halves before high ones),
/// and within a leaf the point that comes first in the list. The limits decide nothing else: the
/// search does not slow down where leaves are over-full.
///
/// Can be moved, not copied. A query is not const, as it writes what was found: one bucket serves
/// one thread at a time. The const members may be called from many threads between queries.
class QEL_API QuadtreeBucket {
public:
    // -- Building ----

    /// Limits 10 and 10.
    QuadtreeBucket();
    /// Any limits are taken. A negative maxDepth is no limit; a bucketCapacity below 0 counts
    /// as 0.
    QuadtreeBucket(int maxDepth, int bucketCapacity);
    ~QuadtreeBucket();

    QuadtreeBucket(const QuadtreeBucket&) = delete;
    QuadtreeBucket& operator=(const QuadtreeBucket&) = delete;
    /// The source is left without points, its limits kept.
    QuadtreeBucket(QuadtreeBucket&& other) noexcept;
    QuadtreeBucket& operator=(QuadtreeBucket&& other) noexcept;

    /// Takes the points, in place of those it may have had. O(n log n), close to O(n) for points
    /// that are spread evenly. Usually keeps 25 bytes a point, and z where it differs, and needs
    /// little more meanwhile. Points that are not finite are taken and never found.
    /// @throws internal::error  "Vector of verticies empty." if there are no points, "Too many
    ///                          verticies." for 2^31 or more; the bucket is unchanged then
    void construct(const std::vector<TripletBase<float>>& points);

    // -- Queries ----

    /// Position of the nearest point in the list given to construct(). Usually O(log n), however
    /// many points lie at exactly the least distance; O(n) at worst, where distances hardly differ,
    /// as from the centre of a circle of points. Allocates nothing.
    /// @throws internal::error  if there are no points, before construct()
    /// @throws data::invalid    if no point has a squared distance below the largest float: for a
    ///                          query that is NaN, infinite or too far away
    std::size_t findNearestPoint(const TripletBase<float>& p);

    /// Squared distance of the point that the last query found; the largest float if none.
    float getBestDistance() const { return bestDistance_; }
    /// The point that the last query found, null if none. The next query overwrites it.
    const QuadtreeObject* getBestObject() const { return hasBest_ ? &best_ : nullptr; }

    // -- State ----

    int getMaxDepth() const { return maxDepth_; }
    int getBucketCapacity() const { return bucketCapacity_; }
    /// Depth of the deepest node that the points need. Where the limits ask for more depth than
    /// could ever separate them (equal points), the limit itself.
    int getMaxDepthReached() const { return maxDepthReached_; }

private:
    void forgetBest();
    void swap(QuadtreeBucket& other) noexcept;

    float bestDistance_;
    bool hasBest_ = false;
    QuadtreeObject best_;
    float queryX_ = 0.0f;
    float queryY_ = 0.0f;
    int maxDepth_ = 10;
    int bucketCapacity_ = 10;
    int maxDepthReached_ = 0;
    std::unique_ptr<const NearestIndex> index_; // of x and y; null before construct
    std::vector<float> zValues_;                // z of each point, or a single one of them all
};

} // namespace qel

#endif
