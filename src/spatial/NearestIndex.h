#ifndef QEL_SPATIAL_NEARESTINDEX_H
#define QEL_SPATIAL_NEARESTINDEX_H

/// @file
/// The index behind QuadtreeBucket.
///
/// The best-first search over the bucket quadtree visits leaves in the order of (distance of the
/// leaf's rectangle, number of the leaf), after the leaf in which the query lies. This is so
/// because no node is farther than the nodes inside it, and because nodes at equal distance are
/// taken in the order of the tree: all ancestors of a leaf are expanded before any node that
/// stands after the leaf in this order. A node is passed over only if it cannot hold a nearer
/// point. So the result is the least point in the order of
///
///     (squared distance, outside the query's leaf, distance of the leaf, number of the leaf,
///      position in the list)
///
/// and any structure may find it. This one searches a bounding volume hierarchy whose boxes fit the
/// points, so that the caller's limits cost nothing. Of the quadtree it keeps the leaves, which are
/// looked at only to choose among points at exactly the same distance.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/EntryGrid.h"
#include "spatial/LinearQuadtree.h"
#include "spatial/PointBvh.h"

namespace qel {

class NearestIndex {
public:
    struct Nearest {
        bool isFound = false;
        std::uint32_t index = 0; ///< in the list given
        float x = 0.0f, y = 0.0f;
        float distance = 0.0f; ///< squared
    };

    /// @param points  not empty, and fewer than 2^31
    NearestIndex(const std::vector<TripletBase<float>>& points, const QuadtreeLimits& limits);

    /// The point that the best-first search finds. Nothing if none is at a squared distance below
    /// the largest float. See NearestSearch.cpp.
    Nearest find(float qx, float qy) const;

    int maxDepthReached() const { return maxDepthReached_; }

    // -- For the search ----

    const PointBvh& bvh() const { return bvh_; }
    /// From small cells to large ones.
    const std::vector<EntryGrid>& entryGrids() const { return entryGrids_; }
    /// Of points at the same distance of the query, that in the leaf of the least rank wins: the
    /// query's leaf first, then by distance, then by number. Of points in one leaf, the first in
    /// the list wins.
    std::uint64_t rankOfLeaf(std::uint32_t leaf, float qx, float qy) const {
        return leastRank(leaves_[leaf], leaf, qx, qy);
    }
    /// No leaf in a node has a lower rank, if none has a lower number than the first.
    std::uint64_t leastRank(const QuadNode& node, std::uint32_t firstLeaf, float qx,
                            float qy) const;

private:
    QuadRectangle root_;
    std::vector<QuadNode> leaves_;
    PointBvh bvh_;
    std::vector<EntryGrid> entryGrids_;
    int maxDepthReached_;
};

} // namespace qel

#endif
