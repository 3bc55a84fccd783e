#ifndef QEL_SPATIAL_POINTBVH_H
#define QEL_SPATIAL_POINTBVH_H

/// @file
/// A bounding volume hierarchy over points in the plane: boxes that fit the points, 16 to a node.

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <vector>

#include "spatial/InPlaceStorage.h"
#include "spatial/QuadNode.h"

namespace qel {

class EntryGrid;
struct LinearQuadtree;
struct PlanePoint;

/// Points or boxes that one step of the search measures together.
constexpr int kLanes = 16;

/// Boxes, coordinate by coordinate.
struct Boxes {
    float xmin[kLanes];
    float ymin[kLanes];
    float xmax[kLanes];
    float ymax[kLanes];

    void set(int lane, const QuadRectangle& box) {
        xmin[lane] = box.xmin;
        ymin[lane] = box.ymin;
        xmax[lane] = box.xmax;
        ymax[lane] = box.ymax;
    }
};

/// In which leaves of the quadtree the points of blocks lie, as in BlockRun.
struct BlockLeaves {
    std::uint32_t first[kLanes];
    std::uint16_t begins[kLanes];
};

/// A node over up to 16 children. The boxes of other lanes are empty: infinitely far away.
struct alignas(64) BvhNode {
    /// Marks a child that is a block of points.
    static constexpr std::uint32_t kBlock = std::uint32_t{1} << 31;

    Boxes boxes;
    std::uint32_t child[kLanes]; ///< where the child lies, plus kBlock for a block
    // Read where distances tie:
    BlockLeaves leaves;       ///< of the children that are blocks
    QuadNode quad;            ///< holds all points below; if they lie in one leaf, the leaf
    std::uint32_t firstLeaf;  ///< the lowest number of a leaf with points below
    std::uint32_t firstIndex; ///< the lowest position in the caller's list
};

/// Up to 16 points. Lanes without a point are at infinity, and so are points of which a coordinate
/// is not finite: no search finds them.
struct alignas(64) PointBlock {
    float x[kLanes];
    float y[kLanes];
    std::uint32_t index[kLanes]; ///< position in the caller's list
};

/// Nodes and blocks, each behind its parent: a step down mostly stays within a page of memory. A
/// place is the number of a cache line; the root lies at place 0.
class PointBvh {
public:
    /// More than the height can be. A child holds at most half of its parent's blocks, of which
    /// there are less than 2^31; or it is what 15 splits left, each of which used up one of the 64
    /// bits of the blocks' paths.
    static constexpr int kMaxHeight = 40;

    const BvhNode& node(std::uint32_t place) const { return *at<const BvhNode>(place); }
    const PointBlock& block(std::uint32_t place) const { return *at<const PointBlock>(place); }

    // -- Building ----

    /// The hierarchy is built over the sorted points.
    InPlaceStorage& storage() { return storage_; }
    /// Decides where the hierarchy begins. It may come to hold more than this.
    void expect(std::size_t nodes, std::size_t blocks) {
        storage_.expect(nodes * kLines<BvhNode> + blocks * kLines<PointBlock>);
    }
    /// Appends a node or a block without values. Others may move.
    std::uint32_t addNode() { return append<BvhNode>(); }
    std::uint32_t addBlock() { return append<PointBlock>(); }
    BvhNode& node(std::uint32_t place) { return *at<BvhNode>(place); }
    PointBlock& block(std::uint32_t place) { return *at<PointBlock>(place); }

private:
    template <typename T>
    static constexpr std::size_t kLines = sizeof(T) / sizeof(InPlaceStorage::CacheLine);

    template <typename T>
    T* at(std::uint32_t place) const {
        return std::launder(reinterpret_cast<T*>(storage_.line(place)));
    }
    template <typename T>
    std::uint32_t append() {
        static_assert(std::is_trivially_copyable<T>::value, "may be moved with its storage");
        const std::size_t place = storage_.append(kLines<T>);
        new (storage_.line(place)) T;
        return static_cast<std::uint32_t>(place);
    }

    InPlaceStorage storage_;
};

/// Builds the hierarchy over the blocks of a quadtree.
/// @param points       sorted; they are the source in the storage of the hierarchy
/// @param root         of the quadtree
/// @param[in,out] bvh  empty; what is expected of it is yet to be said
/// @param[in,out] entryGrids  without entries
void buildPointBvh(const PlanePoint* points, const QuadNode& root, const LinearQuadtree& quadtree,
                   PointBvh& bvh, std::vector<EntryGrid>& entryGrids);

} // namespace qel

#endif
