#ifndef QEL_SPATIAL_QUADGRID_H
#define QEL_SPATIAL_QUADGRID_H

/// @file
/// The descendants of a quadtree node down to a fixed level, as the cells of a grid.

#include <cstddef>
#include <cstdint>

#include "spatial/GridCells.h"
#include "spatial/MortonCode.h"
#include "spatial/QuadNode.h"

namespace qel {

/// The levels below a node for cells of about as many points each, if these are spread evenly.
inline int gridLevels(std::size_t pointCount, std::size_t cellSize, int maxLevels) {
    int levels = 1;
    while (levels < maxLevels && (cellSize << (2 * levels)) < pointCount) {
        ++levels;
    }
    return levels;
}

class QuadGrid {
public:
    /// 2^levels cells along each axis of a node that is cut across x first.
    QuadGrid(const QuadNode& node, int levels)
        : x_(node.rectangle.xmin, node.rectangle.xmax, levels),
          y_(node.rectangle.ymin, node.rectangle.ymax, levels),
          node_(node) {}

    const GridCells& x() const { return x_; }
    const GridCells& y() const { return y_; }
    /// The number of bits of a code, and of cuts from the node to a cell.
    int bits() const { return 2 * x_.levels(); }

    /// The node of the quadtree that holds the cells whose codes agree with `code` but for the
    /// lowest bits.
    QuadNode nodeAt(std::uint32_t code, int lowestBits) const {
        // The cells along each axis: below a cut across x, there are more along y.
        const std::uint32_t columns = std::uint32_t{1} << (lowestBits / 2);
        const std::uint32_t rows = std::uint32_t{1} << ((lowestBits + 1) / 2);
        const std::uint32_t left = columnOf(code) & ~(columns - 1), right = left + columns;
        const std::uint32_t bottom = rowOf(code) & ~(rows - 1), top = bottom + rows;
        return {{x_.edge(left), y_.edge(bottom), x_.edge(right), y_.edge(top)},
                left > 0 || node_.cutLeft,
                bottom > 0 || node_.cutBelow,
                right < x_.count() || node_.cutRight,
                top < y_.count() || node_.cutAbove};
    }

private:
    GridCells x_, y_;
    QuadNode node_;
};

} // namespace qel

#endif
