#ifndef QEL_SPATIAL_CELLSORT_H
#define QEL_SPATIAL_CELLSORT_H

/// @file
/// Sorts points by the Z-order numbers of their grid cells.

#include <vector>

#include <qel/TripletBase.h>

#include "spatial/GridCells.h"
#include "spatial/LeafOrder.h"

namespace qel {

/// The points in the order of their cells. In the number of a cell, the choices along both axes
/// follow each other from the root down, x first. Both grids have the same number of levels.
std::vector<PlanePoint> sortByCells(const std::vector<TripletBase<float>>& points,
                                    const GridCells& gridX, const GridCells& gridY);

} // namespace qel

#endif
