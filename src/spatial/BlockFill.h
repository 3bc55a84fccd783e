#ifndef QEL_SPATIAL_BLOCKFILL_H
#define QEL_SPATIAL_BLOCKFILL_H

/// @file
/// Fills a block of NearestIndex, from point after point to coordinate after coordinate, and takes
/// the box of points.

#include <cstddef>

#include "spatial/BoxTree.h"
#include "spatial/LeafOrder.h"

namespace qel {

/// Writes the whole block; returns the box of the points.
/// @param count  1 to 16 points, all of them with finite coordinates
QuadRectangle fillBlock(PointBlock& block, const PlanePoint* points, int count);

/// The box of one point or more, all of them with finite coordinates.
QuadRectangle boxOf(const PlanePoint* points, std::size_t count);

} // namespace qel

#endif
