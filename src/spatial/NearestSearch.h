#ifndef QEL_SPATIAL_NEARESTSEARCH_H
#define QEL_SPATIAL_NEARESTSEARCH_H

/// @file
/// The search in NearestIndex.

#include "spatial/NearestIndex.h"

namespace qel {

/// The winner for a finite query, on the vector unit of the machine.
NearestIndex::Nearest searchNearest(const NearestIndex& index, float qx, float qy);

} // namespace qel

#endif
