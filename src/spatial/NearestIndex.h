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

#include "spatial/LeafOrder.h"

namespace qel {

/// Points or boxes that one step of the search measures together.
constexpr int kLanes = 16;

/// Boxes of up to 16 children, coordinate by coordinate. A lane without a child has an empty box,
/// from +infinity to -infinity, which is infinitely far from everything.
struct alignas(64) BoxNode {
    float xmin[kLanes];
    float ymin[kLanes];
    float xmax[kLanes];
    float ymax[kLanes];
    /// Number of a node, or kBlock + position of the first point of a block.
    std::uint32_t child[kLanes];
};

class NearestIndex {
public:
    /// Marks a child that is a block of points. A block has 16 points at most; those behind it are
    /// measured with it, which does no harm.
    static constexpr std::uint32_t kBlock = std::uint32_t{1} << 31;
    /// Bound on the height of the tree, and more than it can reach: a split halves the points or
    /// uses up one of the 24 bits of their cells.
    static constexpr int kMaxHeight = 60;

    struct Nearest {
        bool isFound = false;
        std::size_t index = 0; ///< in the list given
        float distance = 0.0f; ///< squared
    };

    /// @param points  not empty, and fewer than 2^31
    NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth, std::size_t capacity);

    /// The point that the stated search finds. Nothing if none is at a squared distance below the
    /// largest float.
    Nearest find(float qx, float qy) const;

    int maxDepthReached() const { return maxDepthReached_; }
    std::size_t memoryBytes() const;

    // -- For the search ----

    const BoxNode* nodes() const { return nodes_.data(); }
    /// x and y of each point in turn, and 16 points at infinity behind the last one.
    const float* coordinates() const { return coordinates_.data(); }
    /// True if, of two points at the same distance of the query, the first one wins.
    bool isFirst(std::uint32_t a, std::uint32_t b, float qx, float qy) const;

private:
    QuadRectangle root_;
    std::vector<QuadLeaf> leaves_;
    std::vector<BoxNode> nodes_;
    std::vector<float> coordinates_;
    std::vector<std::uint32_t> indices_; // position in the caller's list
    std::vector<std::uint32_t> leafNumbers_;
    int maxDepthReached_;
};

} // namespace qel

#endif
