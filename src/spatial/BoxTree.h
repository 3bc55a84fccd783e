#ifndef QEL_SPATIAL_BOXTREE_H
#define QEL_SPATIAL_BOXTREE_H

/// @file
/// The nodes and blocks of NearestIndex, in one piece of memory.

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "platform/Buffer.h"

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
    /// Bound on the height of the tree, and more than it can reach. A child holds at most half of
    /// its parent's blocks, of which there are less than 2^31; or it is what 15 splits left, each
    /// of which used up one of the 56 bits of the blocks' keys.
    static constexpr int kMaxHeight = 40;

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

} // namespace qel

#endif
