#ifndef QEL_POLYLINE_EDGEBVH_H
#define QEL_POLYLINE_EDGEBVH_H

/// @file
/// A bounding volume hierarchy (BVH) over the edges of a polyline.
///
/// Its leaves are runs of eight consecutive edges, which hang together: the extent of a run's box
/// is at most the sum of its edges' extents, whatever the shape. Above the runs nothing relies on
/// the order along the curve: the tree is packed from the top (overlap-minimising top-down
/// loading; Lee and Lee 2003). A set of runs is halved by the median of the box centres along the
/// axis on which these spread most, at a multiple of a full subtree's size; so all nodes but the
/// last of each level have eight children, and the children of node i of a level are the nodes
/// 8 i, 8 i + 1, ... of the level below. O(n log n) time, 7 words a node child.

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/Buffer.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// Boxes of up to eight children. A lane without a child has an empty box, from +infinity to
/// -infinity, which is infinitely far from everything and overlaps nothing.
template <int kDimensions>
struct alignas(64) EdgeBvhNode {
    double low[kDimensions][kEdgeLanes];
    double high[kDimensions][kEdgeLanes];
};

/// The boxes hold the edges as they are computed with, too: a + (b - a) * t with each operation
/// rounded lies in the box for every t from 0 to 1, as rounding keeps the order of numbers and the
/// value at t = 1 is in it.
template <int kDimensions>
class EdgeBvh {
public:
    using Node = EdgeBvhNode<kDimensions>;

    EdgeBvh() = default;
    /// @param vertices  finite, two at least; their differences must not overflow
    explicit EdgeBvh(const VertexArrays<kDimensions>& vertices);

    /// Levels of nodes. The root is the one node of the last level; level 0 holds runs.
    int levels() const { return levels_; }
    std::size_t nodes(int level) const { return sizeOf(level); }
    const Node& node(int level, std::size_t i) const { return nodes_[start(level) + i]; }
    const Node& root() const { return node(levels_ - 1, 0); }

    /// The first edge of the run in a lane of a node of level 0.
    std::size_t firstEdge(std::size_t i, std::size_t lane) const {
        return runs_[i * kEdgeLanes + lane] * kEdgeLanes;
    }

    /// The most levels that runs numbered by 32 bits can need.
    static constexpr int kMaxLevels = 11;

private:
    std::size_t start(int level) const { return starts_[static_cast<std::size_t>(level)]; }
    std::size_t sizeOf(int level) const { return start(level + 1) - start(level); }
    void layOutLevels(std::size_t runs);
    void fillParents(int level);

    std::array<std::size_t, kMaxLevels + 1> starts_{}; // of each level in the nodes
    int levels_ = 0;
    Buffer<Node> nodes_;         // level 0 first
    Buffer<std::uint32_t> runs_; // in the order of the tree
};

extern template class EdgeBvh<2>;
extern template class EdgeBvh<3>;

} // namespace qel

#endif
