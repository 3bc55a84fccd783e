#ifndef QEL_SPATIAL_STARTTABLE_H
#define QEL_SPATIAL_STARTTABLE_H

/// @file
/// Where the search may start below the root.
///
/// For each cell of a coarse grid, the lowest node that holds all points of a region around the
/// cell. If the nearest of them is nearer than the border of the region, no other point matters,
/// and the upper levels of the tree are not visited at all. Else the search starts again from the
/// root, with what it has found.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "spatial/CellSort.h"
#include "spatial/GridCells.h"
#include "spatial/QuadRectangle.h"

namespace qel {

class StartTable {
public:
    struct Start {
        QuadRectangle region;
        std::uint32_t line; ///< of the node in the BoxTree
    };

    /// No cells: the search starts at the root.
    StartTable() = default;

    /// A cell for some thousand points, at the most as fine as the grid that sorted the points.
    StartTable(const QuadRectangle& root, std::size_t pointCount, int gridLevels)
        : gridX_(root.xmin, root.xmax, levelsFor(pointCount, gridLevels)),
          gridY_(root.ymin, root.ymax, gridX_.levels()),
          cellBits_(2 * gridLevels),
          starts_(gridX_.levels() > 0 ? std::size_t{1} << (2 * gridX_.levels()) : 0) {}

    /// Names a node that holds all points whose cells agree with `cell` but for the lowest bits.
    /// Nodes are named before those below them.
    void name(std::uint32_t line, std::uint32_t cell, int freeBits) {
        const int coarseBits = cellBits_ - 2 * gridX_.levels();
        if (starts_.empty() || freeBits < coarseBits) {
            return;
        }
        const std::size_t first = static_cast<std::size_t>(cell >> freeBits)
                                  << (freeBits - coarseBits);
        const std::size_t last = first + (std::size_t{1} << (freeBits - coarseBits)) - 1;
        const Start start = {
            regionOf(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last)), line};
        std::fill(starts_.begin() + static_cast<std::ptrdiff_t>(first),
                  starts_.begin() + static_cast<std::ptrdiff_t>(last) + 1, start);
    }

    /// Null where there is nothing below the root to start at.
    const Start* find(float qx, float qy) const {
        return starts_.empty() ? nullptr : &starts_[cellNumber(gridX_, gridY_, qx, qy)];
    }

    std::size_t memoryBytes() const { return starts_.capacity() * sizeof(Start); }

private:
    static constexpr std::size_t kPointsOfRegion = 2048; // nodes of 16 lowest nodes

    static int levelsFor(std::size_t pointCount, int gridLevels) {
        int levels = 0;
        while (levels < gridLevels && (kPointsOfRegion << (2 * levels)) < pointCount) {
            ++levels;
        }
        return levels;
    }

    // From the lowest to the highest corner of a run of cells that is a rectangle.
    QuadRectangle regionOf(std::uint32_t first, std::uint32_t last) const {
        return {gridX_.edge(everyOtherBit(first >> 1)), gridY_.edge(everyOtherBit(first)),
                gridX_.edge(everyOtherBit(last >> 1) + 1), gridY_.edge(everyOtherBit(last) + 1)};
    }

    GridCells gridX_{0.0f, 0.0f, 0};
    GridCells gridY_{0.0f, 0.0f, 0};
    int cellBits_ = 0; // of the cells that sorted the points
    std::vector<Start> starts_;
};

} // namespace qel

#endif
