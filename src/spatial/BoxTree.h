#ifndef QEL_SPATIAL_BOXTREE_H
#define QEL_SPATIAL_BOXTREE_H

/// @file
/// Builds the boxes of NearestIndex over sorted points.

#include <vector>

#include "spatial/LeafOrder.h"
#include "spatial/NearestIndex.h"

namespace qel {

/// Nodes with the root first. Points without finite coordinates are dropped from the order, and
/// those that share a block's place are reordered.
std::vector<BoxNode> buildBoxTree(LeafOrder& order);

} // namespace qel

#endif
