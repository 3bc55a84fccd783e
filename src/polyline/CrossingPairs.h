#ifndef QEL_POLYLINE_CROSSINGPAIRS_H
#define QEL_POLYLINE_CROSSINGPAIRS_H

/// @file
/// Search of the pairs of edges in the plane whose boxes overlap.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "polyline/EdgeBvh.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// Runs of edges of two paths. Bit 8 i + j stands for edge i behind the first of the one and edge j
/// behind the first of the other.
struct RunPair {
    std::size_t first;
    std::size_t firstOther;
    std::uint64_t pairs;
};

/// Finds pairs for the edges from a first one on, a multiple of eight, until there are many or no
/// edges are left.
/// @param[out] found  what was in it is dropped
/// @return the edge to go on with
std::size_t findCrossingPairs(const VertexArrays<2>& path, std::size_t first,
                              const VertexArrays<2>& other, const EdgeBvh<2>& otherBvh,
                              std::vector<RunPair>& found);

} // namespace qel

#endif
