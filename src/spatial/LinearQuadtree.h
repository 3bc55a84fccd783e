#ifndef QEL_SPATIAL_LINEARQUADTREE_H
#define QEL_SPATIAL_LINEARQUADTREE_H

/// @file
/// The bucket quadtree as the list of its leaves, and the blocks of the index.
///
/// A linear quadtree (I. Gargantini, "An effective way to represent quadtrees", Comm. ACM 25, 1982)
/// holds the leaves in the order of their Morton codes and no inner nodes. This one has the leaves
/// of the tree that grows when the points are inserted one after the other: there, a node is an
/// inner node exactly if it holds more points than the capacity and is not at the depth limit. So
/// nothing is inserted. The points are sorted into the cells of a grid of the tree's own cuts, and
/// how many of them a node holds is the difference of two cell starts. A cell of many points is
/// sorted by a grid of its own; few points are partitioned cut by cut.
///
/// The blocks of the index are nodes of the same tree, which for them has limits of its own: up to
/// kLanes points to a node, at any depth.
///
/// O(n log n), close to O(n) for points that are spread evenly. Scratch memory: 2 bytes a point,
/// and a copy of the points of the most crowded cell.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/PlanePoint.h"
#include "spatial/QuadNode.h"

namespace qel {

struct QuadtreeLimits {
    int maxDepth;         ///< negative: no limit
    std::size_t capacity; ///< of a leaf
};

/// The bits of a path.
constexpr int kPathBits = 64;

/// Consecutive points that become a block.
struct BlockRun {
    /// The way from the root to the block's node: a bit for each cut from the highest on, set where
    /// it takes the high half. Cuts beyond the bits are left out.
    std::uint64_t path;
    std::uint32_t begin;
    std::uint32_t firstLeaf;  ///< number of the leaf of its first point
    std::uint16_t leafBegins; ///< bit i is set where point i, but the first, begins another leaf
    std::uint8_t count;       ///< of the points
};

struct LinearQuadtree {
    std::vector<QuadNode> leaves; ///< those with points, low halves first
    std::vector<BlockRun> blocks; ///< in the same order; of points at one place, there may be one
    int maxDepthReached = 0;
};

/// Memory for sorting: the points, behind their codes.
struct SortedPoints {
    PlanePoint* points;
    std::uint16_t* codes;
};

/// @param points  not empty, and fewer than 2^31
/// @param root    the node of all points
/// @param box     of the points
/// @param isFinite  whether all x and y are
/// @param[out] sorted  the points in the order of the leaves
LinearQuadtree buildLinearQuadtree(const std::vector<TripletBase<float>>& points,
                                   const QuadNode& root, const QuadRectangle& box, bool isFinite,
                                   const QuadtreeLimits& limits, const SortedPoints& sorted);

} // namespace qel

#endif
