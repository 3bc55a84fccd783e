#ifndef QEL_SPATIAL_CELLSORT_H
#define QEL_SPATIAL_CELLSORT_H

/// @file
/// Sorts points by the Z-order numbers of their grid cells.

#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/GridCells.h"
#include "spatial/LeafOrder.h"

namespace qel {

/// Fills in the points of the order, by ascending cell, and their cells, whose memory is there. In
/// the number of a cell, the choices along both axes follow each other from the root down, x first.
/// Both grids have the same number of levels.
void sortByCells(const std::vector<TripletBase<float>>& points, const GridCells& gridX,
                 const GridCells& gridY, LeafOrder& order);

/// Moves bit i to bit 2i; 16 bits at most.
inline std::uint32_t spread(std::uint32_t bits) {
    bits = (bits | (bits << 8)) & 0x00ff00ffu;
    bits = (bits | (bits << 4)) & 0x0f0f0f0fu;
    bits = (bits | (bits << 2)) & 0x33333333u;
    return (bits | (bits << 1)) & 0x55555555u;
}

/// The number of the cell in column x and row y, both below 256: spreads both at once.
inline std::uint32_t cellNumber(std::uint32_t x, std::uint32_t y) {
    std::uint32_t bits = (x << 16) | y;
    bits = (bits | (bits << 4)) & 0x0f0f0f0fu;
    bits = (bits | (bits << 2)) & 0x33333333u;
    bits = (bits | (bits << 1)) & 0x55555555u;
    return (bits >> 15) | (bits & 0xffffu);
}

/// The number of the cell in which a point lies.
inline std::uint32_t cellNumber(const GridCells& gridX, const GridCells& gridY, float x, float y) {
    return 2 * spread(gridX.cellOf(x)) + spread(gridY.cellOf(y));
}

/// The inverse of a cell's number: every other bit, from the lowest on.
inline std::uint32_t everyOtherBit(std::uint32_t bits) {
    bits &= 0x55555555u;
    bits = (bits | (bits >> 1)) & 0x33333333u;
    bits = (bits | (bits >> 2)) & 0x0f0f0f0fu;
    bits = (bits | (bits >> 4)) & 0x00ff00ffu;
    return (bits | (bits >> 8)) & 0x0000ffffu;
}

} // namespace qel

#endif
