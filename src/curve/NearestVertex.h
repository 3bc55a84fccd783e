#ifndef QEL_CURVE_NEARESTVERTEX_H
#define QEL_CURVE_NEARESTVERTEX_H

/// @file
/// The vertex of a polyline nearest to a point, by looking at all of them.

#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

inline double squaredDistance(const Point& a, const Point& b) {
    const Point d = a - b;
    return d.dot(d);
}

/// Index of the first of the points at the smallest squared distance. A NaN distance is never the
/// smallest, unless it is the first point's: nothing is less than it then. O(n), no scratch memory.
///
/// @param count  at least one
std::size_t nearestVertex(const Point* points, std::size_t count, const Point& q);

inline std::size_t nearestVertex(const Points& points, const Point& q) {
    return nearestVertex(points.data(), points.size(), q);
}

/// The same for many probes on few points: points are read once for several probes.
void nearestVertices(const Point* points, std::size_t count, const Point* probes,
                     std::size_t probeCount, std::size_t* nearest);

} // namespace qel

#endif
