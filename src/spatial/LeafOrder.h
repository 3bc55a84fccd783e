#ifndef QEL_SPATIAL_LEAFORDER_H
#define QEL_SPATIAL_LEAFORDER_H

/// @file
/// Sorts points into the leaves of the bucket quadtree.
///
/// The tree is the one that grows when the points are inserted one after the other: a node is an
/// inner node exactly if it holds more points than the capacity and is not at the depth limit.
/// So it needs no insertion: sorting by the cells of a grid of the tree's own cuts brings the
/// points into the order of its leaves, and the bits of the sorted cells tell where leaves end.
/// Nothing but the leaves with points is kept.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/QuadRectangle.h"

namespace qel {

/// A point on its way into the index.
struct PlanePoint {
    float x, y;
    std::uint32_t index; ///< position in the caller's list
    std::uint32_t group; ///< what it is sorted by: number of its grid cell, then of its leaf
};

/// Puts the points below a cut first; returns where the others begin.
std::size_t partition(PlanePoint* points, std::size_t begin, std::size_t end, bool acrossX,
                      float cut);

/// A leaf with points. Leaves are numbered in the order of the tree, low halves first.
struct QuadLeaf {
    QuadRectangle rectangle;
    /// Sides that stem from a cut. A query reaches the leaf if it lies on the leaf's side of all
    /// of them; the other sides are the root's, and queries beyond them are let in.
    bool cutLeft, cutBelow, cutRight, cutAbove;

    // Without branches: a processor could not foresee them.
    bool isReachedBy(float qx, float qy) const {
        return (!cutLeft | (qx >= rectangle.xmin)) & (!cutRight | !(qx >= rectangle.xmax)) &
               (!cutBelow | (qy >= rectangle.ymin)) & (!cutAbove | !(qy >= rectangle.ymax));
    }
};

struct LeafOrder {
    QuadRectangle root;
    std::size_t count;    ///< of the points
    std::uint32_t* cells; ///< the grid cells of the points, ascending
    PlanePoint* points;   ///< leaf after leaf; their groups are the leaves
    std::vector<QuadLeaf> leaves;
    bool isFinite = true; ///< all coordinates of all points are
    int gridLevels = 0;   ///< a cell has twice as many bits
    int maxDepthReached = 0;
};

/// Memory that sorting takes, for a point. The order lives in it, cells first.
constexpr std::size_t kSortingBytes = sizeof(std::uint32_t) + sizeof(PlanePoint);

/// @param points    not empty, and fewer than 2^31
/// @param maxDepth  negative: no limit
/// @param capacity  not negative
/// @param memory    kSortingBytes for every point, aligned as a PlanePoint is
LeafOrder sortIntoLeaves(const std::vector<TripletBase<float>>& points, int maxDepth,
                         std::size_t capacity, void* memory);

} // namespace qel

#endif
