#ifndef QEL_SPATIAL_ENTRYGRID_H
#define QEL_SPATIAL_ENTRYGRID_H

/// @file
/// A coarse grid of nodes at which the search may enter the hierarchy below its root.
///
/// For each cell, the lowest node that holds all points of a region around the cell. If the nearest
/// of them is nearer than the border of the region, no other point matters, and the upper levels of
/// the hierarchy are not visited at all. Else the search goes on in a larger region or from the
/// root, with what it has found. O(cells) memory.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "spatial/QuadGrid.h"

namespace qel {

class EntryGrid {
public:
    struct Entry {
        QuadRectangle region;
        std::uint32_t node; ///< its place in the PointBvh
    };

    /// @param cellSize  about how many points a cell has
    EntryGrid(const QuadNode& root, std::size_t pointCount, std::size_t cellSize)
        : cells_(root, gridLevels(pointCount, cellSize, kMaxLevels)),
          entries_(std::size_t{1} << cells_.bits()) {}

    /// Lets the search enter at a node that holds all points of a node of the quadtree, which
    /// `path` leads to. Nodes are given before those below them.
    void add(std::uint32_t node, const QuadNode& quad, std::uint64_t path, int depth) {
        const int lowestBits = cells_.bits() - depth;
        if (lowestBits >= 0) {
            const std::uint64_t first = depth > 0 ? path >> (64 - depth) << lowestBits : 0;
            std::fill_n(entries_.begin() + static_cast<std::ptrdiff_t>(first),
                        std::size_t{1} << lowestBits, Entry{regionOf(quad), node});
        }
    }

    /// Where a query may enter.
    const Entry& find(float qx, float qy) const {
        return entries_[mortonCode(cells_.x().evenCells().guessOf(qx),
                                   cells_.y().evenCells().guessOf(qy))];
    }

private:
    static constexpr int kMaxLevels = 12;

    // The rectangle, and beyond a side of the root all that lies there.
    static QuadRectangle regionOf(const QuadNode& quad) {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        const QuadRectangle& r = quad.rectangle;
        return {quad.cutLeft ? r.xmin : -kInfinity, quad.cutBelow ? r.ymin : -kInfinity,
                quad.cutRight ? r.xmax : kInfinity, quad.cutAbove ? r.ymax : kInfinity};
    }

    QuadGrid cells_;
    std::vector<Entry> entries_;
};

} // namespace qel

#endif
