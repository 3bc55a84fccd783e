#ifndef QEL_SPATIAL_BLOCKCUTTER_H
#define QEL_SPATIAL_BLOCKCUTTER_H

/// @file
/// Cuts sorted points into the blocks of NearestIndex.

#include <cstdint>
#include <vector>

#include "spatial/LeafOrder.h"

namespace qel {

/// Points that follow each other in the order and become a block.
struct BlockRun {
    /// Blocks lie in the order of their keys, and those whose keys agree in their highest bits lie
    /// close together. The cell of the points is in the upper half, cells within it below.
    std::uint64_t key;
    std::uint32_t begin;
    std::uint32_t count;
};

/// The bits of a key below those of the cell.
constexpr int kBitsInCell = 32;

/// The blocks of all points; the order must hold points with finite coordinates alone. Points are
/// cut where their cells are. Within a cell of too many points, they are reordered by the cells of
/// a finer grid around them, and so on. Of points at one place, a single one is taken.
std::vector<BlockRun> cutIntoBlocks(LeafOrder& order);

} // namespace qel

#endif
