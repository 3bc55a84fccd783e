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
#include <new>
#include <type_traits>
#include <vector>

#include <qel/TripletBase.h>

#include "platform/Buffer.h"
#include "spatial/LeafOrder.h"
#include "spatial/StartTable.h"

namespace qel {

/// Points or boxes that one step of the search measures together.
constexpr int kLanes = 16;

/// Boxes of up to 16 children, coordinate by coordinate. A lane without a child has an empty box,
/// from +infinity to -infinity, which is infinitely far from everything.
struct alignas(64) BoxNode {
    /// Marks a child that is a block of points.
    static constexpr std::uint32_t kBlock = std::uint32_t{1} << 31;

    float xmin[kLanes];
    float ymin[kLanes];
    float xmax[kLanes];
    float ymax[kLanes];
    std::uint32_t child[kLanes]; ///< line of the child in the BoxTree, plus kBlock for a block
};

/// Up to 16 points. Lanes without a point are at infinity.
struct alignas(64) PointBlock {
    float x[kLanes];
    float y[kLanes];
    std::uint32_t index[kLanes]; ///< position in the caller's list
    std::uint32_t leaf[kLanes];  ///< number of the point's leaf
};

/// Nodes and blocks, each behind its parent: a step down mostly stays within a page of memory.
/// The root is the first.
class BoxTree {
public:
    const BoxNode& node(std::uint32_t line) const {
        return *std::launder(reinterpret_cast<const BoxNode*>(&lines_[line]));
    }
    const PointBlock& block(std::uint32_t line) const {
        return *std::launder(reinterpret_cast<const PointBlock*>(&lines_[line]));
    }

    // -- Building ----

    void reserve(std::size_t nodes, std::size_t blocks);
    /// Sets aside a node or a block, without values; returns its line.
    std::uint32_t addNode() { return append<BoxNode>(); }
    std::uint32_t addBlock() { return append<PointBlock>(); }
    /// Valid until something is added.
    BoxNode& node(std::uint32_t line) {
        return *std::launder(reinterpret_cast<BoxNode*>(&lines_[line]));
    }
    PointBlock& block(std::uint32_t line) {
        return *std::launder(reinterpret_cast<PointBlock*>(&lines_[line]));
    }

private:
    // A cache line of storage.
    struct alignas(64) Line {
        unsigned char bytes[64];
    };

    template <typename T>
    std::uint32_t append() {
        static_assert(std::is_trivially_copyable<T>::value && sizeof(T) % sizeof(Line) == 0,
                      "objects fill whole lines and may be moved with them");
        const std::size_t line = size_;
        size_ += sizeof(T) / sizeof(Line);
        if (size_ > lines_.size()) {
            grow();
        }
        new (&lines_[line]) T;
        return static_cast<std::uint32_t>(line);
    }
    void grow();

    Buffer<Line> lines_;
    std::size_t size_ = 0;
};

class NearestIndex {
public:
    /// Bound on the height of the tree, and more than it can reach: a split halves the blocks or
    /// uses up one of the 56 bits of their keys.
    static constexpr int kMaxHeight = 60;

    struct Nearest {
        bool isFound = false;
        std::size_t index = 0; ///< in the list given
        float distance = 0.0f; ///< squared
    };

    /// @param points  not empty, and fewer than 2^31
    /// @param memory  kSortingBytes for every point, for use until the index is built
    NearestIndex(const std::vector<TripletBase<float>>& points, int maxDepth, std::size_t capacity,
                 void* memory);

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
