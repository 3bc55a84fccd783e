#ifndef QEL_CURVE_NEARESTVERTEX_H
#define QEL_CURVE_NEARESTVERTEX_H

/// @file
/// The vertex of a polyline nearest to a point.

#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

inline double squaredDistance(const Point& a, const Point& b) {
    const Point d = a - b;
    return d.dot(d);
}

/// Index of the first of the vertices at the smallest squared distance. A NaN distance is never
/// the smallest, unless it is the first vertex's: nothing is less than it then.
std::size_t nearestVertex(const Points& points, const Point& q);

} // namespace qel

#endif
