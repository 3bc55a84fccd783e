#ifndef QEL_SPATIAL_STARTTABLE_H
#define QEL_SPATIAL_STARTTABLE_H

/// @file
/// Where the search may start below the root.
///
/// For each cell of a coarse grid, the lowest node that holds all points of a region around the
/// cell. If the nearest of them is nearer than the border of the region, no other point matters,
/// and the upper levels of the tree are not visited at all. Else the search goes on in a larger
/// region or from the root, with what it has found.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
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

    /// Cells of about `cellSize` points, at the most as fine as the grid that sorted the points.
    StartTable(const QuadRectangle& root, std::size_t pointCount, std::size_t cellSize,
               int gridLevels)
        : gridX_(root.xmin, root.xmax, levelsFor(pointCount, cellSize, gridLevels)),
          gridY_(root.ymin, root.ymax, gridX_.levels()),
          cellBits_(2 * gridLevels),
          starts_(gridX_.levels() > 0 ? std::size_t{1} << (2 * gridX_.levels()) : 0) {}

    /// Lets the search start at a node that holds all points whose cells agree with `cell` but for
    /// the lowest bits. Nodes are given before those below them.
    void add(std::uint32_t line, std::uint32_t cell, int freeBits) {
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
        if (starts_.empty()) {
            return nullptr;
        }
        return &starts_[2 * spread(gridX_.guessOf(qx)) + spread(gridY_.guessOf(qy))];
    }

private:
    static int levelsFor(std::size_t pointCount, std::size_t cellSize, int gridLevels) {
        int levels = 0;
        while (levels < gridLevels && (cellSize << (2 * levels)) < pointCount) {
            ++levels;
        }
        return levels;
    }

    // From the lowest to the highest corner of a run of cells that is a rectangle. Cells at the
    // rim of the grid take in all that lies beyond it.
    QuadRectangle regionOf(std::uint32_t first, std::uint32_t last) const {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        const std::uint32_t left = everyOtherBit(first >> 1), bottom = everyOtherBit(first);
        const std::uint32_t right = everyOtherBit(last >> 1) + 1, top = everyOtherBit(last) + 1;
        return {left == 0 ? -kInfinity : gridX_.edge(left),
                bottom == 0 ? -kInfinity : gridY_.edge(bottom),
                right == gridX_.cellCount() ? kInfinity : gridX_.edge(right),
                top == gridY_.cellCount() ? kInfinity : gridY_.edge(top)};
    }

    GridCells gridX_{0.0f, 0.0f, 0};
    GridCells gridY_{0.0f, 0.0f, 0};
    int cellBits_ = 0; // of the cells that sorted the points
    std::vector<Start> starts_;
};

/// From small regions to large ones: those of the lowest nodes, and of nodes of 16 such.
using StartTables = std::array<StartTable, 2>;

} // namespace qel

#endif
