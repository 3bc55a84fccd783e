#ifndef QEL_SPATIAL_BOXTREEBUILDER_H
#define QEL_SPATIAL_BOXTREEBUILDER_H

/// @file
/// Builds the boxes of NearestIndex over sorted points.

#include "spatial/BoxTree.h"
#include "spatial/LeafOrder.h"
#include "spatial/StartTable.h"

namespace qel {

/// The tree of all points with finite coordinates. Drops the others from the order, and reorders
/// those that share a cell.
/// @param[out] starts  where the search may start
BoxTree buildBoxTree(LeafOrder& order, StartTables& starts);

} // namespace qel

#endif
