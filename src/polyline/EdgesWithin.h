#ifndef QEL_POLYLINE_EDGESWITHIN_H
#define QEL_POLYLINE_EDGESWITHIN_H

/// @file
/// Search of the edges within a distance of a probe.

#include <cstddef>
#include <vector>

#include "polyline/EdgeBvh.h"
#include "polyline/EdgeFoot.h"

namespace qel {

/// The first edges of all runs that may hold a foot within a squared distance, in increasing order.
/// @param d2  finite
std::vector<std::size_t> findRunsWithin(const EdgeBvh<3>& bvh, const Probe& q, double d2);

} // namespace qel

#endif
