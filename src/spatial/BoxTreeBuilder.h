#ifndef QEL_SPATIAL_BOXTREEBUILDER_H
#define QEL_SPATIAL_BOXTREEBUILDER_H

/// @file
/// Builds the boxes of NearestIndex over sorted points.

#include "spatial/LeafOrder.h"
#include "spatial/NearestIndex.h"

namespace qel {

/// The tree of all points with finite coordinates. Drops the others from the order, and reorders
/// those that share a cell.
BoxTree buildBoxTree(LeafOrder& order);

} // namespace qel

#endif
