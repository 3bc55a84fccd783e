#ifndef QEL_POLYLINE_NEARESTEDGE_H
#define QEL_POLYLINE_NEARESTEDGE_H

/// @file
/// Search of the edge nearest to a probe.

#include <cstddef>

#include "polyline/EdgeBvh.h"
#include "polyline/EdgeFoot.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// The edge whose foot has the least squared distance, the lowest of equal ones, and that foot.
struct NearestEdge {
    std::size_t edge;
    EdgeFoot foot;
};

/// The reference implementation: one edge after the other.
inline NearestEdge scanEdges(const VertexPointers& v, std::size_t edges, const Probe& q) {
    EdgeFoot best = footOnEdge(v, 0, q);
    std::size_t edge = 0;
    for (std::size_t i = 1; i < edges; ++i) {
        const EdgeFoot foot = footOnEdge(v, i, q);
        if (foot.d2 < best.d2) {
            best = foot;
            edge = i;
        }
    }
    return {edge, best};
}

/// As many probes as there are lanes, each compared with all edges: for few edges.
void findNearestOfFew(const VertexArrays<3>& vertices, const Probe* probes, NearestEdge* nearest);

/// @param q  such that squared distances do not overflow
NearestEdge findNearestEdge(const VertexArrays<3>& vertices, const EdgeBvh<3>& bvh, const Probe& q);

} // namespace qel

#endif
