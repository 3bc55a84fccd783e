#ifndef QEL_SPATIAL_NEARESTSEARCH_H
#define QEL_SPATIAL_NEARESTSEARCH_H

/// @file
/// The search in NearestIndex.

#include <cstdint>

#include "spatial/NearestIndex.h"

namespace qel {

struct NearestHit {
    std::uint32_t index = 0; ///< in the caller's list
    float distance = 0.0f;
    bool isFound = false;
};

/// The winner for a finite query, on the vector unit of the machine.
NearestHit searchNearest(const NearestIndex& index, float qx, float qy);

} // namespace qel

#endif
