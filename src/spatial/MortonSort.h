#ifndef QEL_SPATIAL_MORTONSORT_H
#define QEL_SPATIAL_MORTONSORT_H

/// @file
/// Sorts points by the Morton codes of the grid cells in which they lie, as one pass of a radix
/// sort whose digit is the whole code.
///
/// Counting the codes tells where the points of each cell begin; a second pass moves the points
/// there (D. E. Knuth, "The Art of Computer Programming", vol. 3, section 5.2, algorithm D).
/// O(n + cells). Points of one cell keep their order.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/TripletBase.h>

#include "spatial/PlanePoint.h"
#include "spatial/QuadGrid.h"

namespace qel {

/// Where the points of each cell begin among the sorted ones, and behind the last cell their
/// number.
using CellStarts = std::vector<std::uint32_t>;

/// Sorts the caller's list.
/// @param codes   memory for the code of each point
/// @param sorted  memory for the points
CellStarts mortonSort(const std::vector<TripletBase<float>>& points, const QuadGrid& grid,
                      std::uint16_t* codes, PlanePoint* sorted);

/// Sorts points in place.
/// @param scratch  memory for as many points
CellStarts mortonSort(PlanePoint* points, std::size_t count, const QuadGrid& grid,
                      std::uint16_t* codes, PlanePoint* scratch);

} // namespace qel

#endif
