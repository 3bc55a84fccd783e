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

/// Up to 16 points. Lanes without a point are at infinity; what else they hold means nothing.
struct alignas(64) PointBlock {
    float x[kLanes];
    float y[kLanes];
    std::uint32_t index[kLanes]; ///< position in the caller's list
    std::uint32_t leaf[kLanes];  ///< number of the point's leaf
};

/// Nodes and blocks, each behind its parent: a step down mostly stays within a page of memory.
/// The root is the first.
///
/// The tree is built in the memory of what it is built of, its source. Memory that was not touched
/// before is dear, and a tree takes little more than its source: it begins so far ahead of the
/// source that it ends where the source does, and overwrites what has been read. Should it catch
/// up with what has not, it moves to memory of its own.
class BoxTree {
public:
    /// Bound on the height of the tree, and more than it can reach. A child holds at most half of
    /// its parent's blocks, of which there are less than 2^31; or it is what 15 splits left, each
    /// of which used up one of the 56 bits of the blocks' keys.
    static constexpr int kMaxHeight = 40;

    const BoxNode& node(std::uint32_t line) const {
        return *std::launder(reinterpret_cast<const BoxNode*>(&begin_[line]));
    }
    const PointBlock& block(std::uint32_t line) const {
        return *std::launder(reinterpret_cast<const PointBlock*>(&begin_[line]));
    }

    // -- Building ----

    BoxTree() = default;
    BoxTree(const BoxTree&) = delete;
    BoxTree& operator=(const BoxTree&) = delete;

    /// Memory for the source, aligned to 4 bytes. To be called first, and once.
    void* makeSourceRoom(std::size_t bytes);
    /// Decides where the tree begins. It may come to hold more nodes and blocks than these.
    void reserve(std::size_t nodes, std::size_t blocks);
    /// Gives up what lies before a place in the source.
    void keepSourceFrom(const void* place);
    /// Gives up the source, when the tree is built.
    void dropSource() { source_ = Buffer<Line>(); }

    /// Sets aside a node or a block, without values; returns its line.
    std::uint32_t addNode() { return append<BoxNode>(); }
    std::uint32_t addBlock() { return append<PointBlock>(); }
    /// Valid until something is added.
    BoxNode& node(std::uint32_t line) {
        return *std::launder(reinterpret_cast<BoxNode*>(&begin_[line]));
    }
    PointBlock& block(std::uint32_t line) {
        return *std::launder(reinterpret_cast<PointBlock*>(&begin_[line]));
    }

    /// True if the tree lies where its source did.
    bool isInPlaceOfSource() const { return begin_ != lines_.data(); }

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
        const std::size_t size = line + sizeof(T) / sizeof(Line);
        if (size > room_) {
            makeRoom(size + size / 2);
        }
        size_ = size;
        new (&begin_[line]) T;
        return static_cast<std::uint32_t>(line);
    }
    void makeRoom(std::size_t lineCount);

    Buffer<Line> lines_;
    Buffer<Line> source_;   // where the source lies after the tree has moved
    Line* begin_ = nullptr; // of the tree, in lines_
    std::size_t size_ = 0;
    std::size_t expected_ = 0;
    std::size_t room_ = 0; // from the beginning; what lies behind is the source's or nobody's
};

} // namespace qel

#endif
