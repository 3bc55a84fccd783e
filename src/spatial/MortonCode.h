#ifndef QEL_SPATIAL_MORTONCODE_H
#define QEL_SPATIAL_MORTONCODE_H

/// @file
/// Morton codes of the cells of a square grid: the bits of column and row, interleaved.
///
/// Cells in the order of their codes follow the Z-order curve, and the cells of each node of a
/// quadtree over the grid are consecutive. G. M. Morton, "A computer oriented geodetic data base",
/// IBM, 1966. The bits are spread and gathered by masks of doubled width: H. S. Warren, "Hacker's
/// Delight", 2nd ed., section 7-2.

#include <cstdint>

#include "platform/VectorUnit.h"

namespace qel {

/// Moves bit i to bit 2i; 16 bits at most.
QEL_KERNEL std::uint32_t spreadBits(std::uint32_t bits) {
    bits = (bits | (bits << 8)) & 0x00ff00ffu;
    bits = (bits | (bits << 4)) & 0x0f0f0f0fu;
    bits = (bits | (bits << 2)) & 0x33333333u;
    return (bits | (bits << 1)) & 0x55555555u;
}

/// The inverse of spreadBits: bit 2i to bit i. Odd bits are passed over.
inline std::uint32_t gatherBits(std::uint32_t bits) {
    bits &= 0x55555555u;
    bits = (bits | (bits >> 1)) & 0x33333333u;
    bits = (bits | (bits >> 2)) & 0x0f0f0f0fu;
    bits = (bits | (bits >> 4)) & 0x00ff00ffu;
    return (bits | (bits >> 8)) & 0x0000ffffu;
}

/// The code of the cell in a column and a row below 2^16. The column has the higher bit of each
/// pair: a quadtree cuts across x first.
QEL_KERNEL std::uint32_t mortonCode(std::uint32_t column, std::uint32_t row) {
    return 2 * spreadBits(column) + spreadBits(row);
}

inline std::uint32_t columnOf(std::uint32_t code) {
    return gatherBits(code >> 1);
}

inline std::uint32_t rowOf(std::uint32_t code) {
    return gatherBits(code);
}

/// How many bits it takes to write a value: 0 for 0.
inline int bitWidth(std::uint64_t value) {
#if defined(QEL_VECTOR_UNITS)
    return value == 0 ? 0 : 64 - __builtin_clzll(value);
#else
    int width = 0;
    for (; value != 0; value >>= 1) {
        ++width;
    }
    return width;
#endif
}

} // namespace qel

#endif
