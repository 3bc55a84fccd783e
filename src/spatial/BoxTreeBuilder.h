#ifndef QEL_SPATIAL_BOXTREEBUILDER_H
#define QEL_SPATIAL_BOXTREEBUILDER_H

/// @file
/// Builds the boxes of NearestIndex over sorted points.

#include "spatial/BoxTree.h"
#include "spatial/LeafOrder.h"
#include "spatial/StartTable.h"

namespace qel {

/// Builds the tree of all points with finite coordinates. Drops the others from the order, reorders
/// those that share a cell, and overwrites them all.
/// @param[in,out] tree  without nodes; its source is the memory of the order
/// @param[out] starts   where the search may start
void buildBoxTree(LeafOrder& order, BoxTree& tree, StartTables& starts);

} // namespace qel

#endif
