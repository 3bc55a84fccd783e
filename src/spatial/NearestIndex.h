#ifndef QEL_SPATIAL_NEARESTINDEX_H
#define QEL_SPATIAL_NEARESTINDEX_H

/// @file
/// The index behind QuadtreeBucket: a tree of boxes that fit the points closely, 16 to a node.
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
/// and any structure may find it. This one keeps nothing of the quadtree but each point's leaf,
/// which is looked at only to choose among points at exactly the same distance. Its own boxes
/// split where points are, so that the caller's limits cost nothing.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/BoxTree.h"
#include "spatial/LeafOrder.h"
#include "spatial/StartTable.h"

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
    NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth, std::size_t capacity);

    /// The point that the stated search finds. Nothing if none is at a squared distance below the
    /// largest float.
    Nearest find(float qx, float qy) const;

    int maxDepthReached() const { return maxDepthReached_; }

    // -- For the search ----

    const BoxTree& tree() const { return tree_; }
    const StartTables& starts() const { return starts_; }
    /// Of points at the same distance of the query, that in the leaf of the least rank wins: the
    /// query's leaf first, then by distance, then by number. Of points in one leaf, the first in
    /// the list wins.
    std::uint64_t rankOfLeaf(std::uint32_t leaf, float qx, float qy) const;

private:
    QuadRectangle root_;
    std::vector<QuadLeaf> leaves_;
    BoxTree tree_;
    StartTables starts_;
    int maxDepthReached_;
};

} // namespace qel

#endif
