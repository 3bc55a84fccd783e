#ifndef QEL_CURVE_PROJECTION_H
#define QEL_CURVE_PROJECTION_H

/// @file
/// The foot of a probe on a polyline, beside the vertex nearest to the probe.

#include <cstddef>
#include <vector>

#include "curve/Conversions.h"
#include "platform/VectorUnit.h"

namespace qel {

/// A place on a polyline.
struct Foot {
    Point point;
    double s = 0.0;
};

/// The projection of a probe on an edge, times the length of that: law of cosines, from the squared
/// distances of the probe to both ends.
QEL_KERNEL double projectionOnEdge(double d2i, double d2j, double length2) {
    return (d2i - d2j + length2) * 0.5;
}

/// The place at t on the edge from vertex i to j; not before i.
QEL_KERNEL Foot footAt(const Point& pi, const Point& pj, double si, double sj, double t) {
    const bool isInside = t > 0.0; // chosen number by number, without a branch
    const Point p = pi + (pj - pi) * t;
    const double s = si + (sj - si) * t;
    return {{isInside ? p.x : pi.x, isInside ? p.y : pi.y, isInside ? p.z : pi.z},
            isInside ? s : si};
}

/// Foot of a probe on the edge from vertex i, the nearer one, towards its neighbour j, from the
/// squared distances of the probe to both; the probe itself is not needed.
Foot projectToEdge(const Points& points, const std::vector<double>& svalues, std::size_t i,
                   std::size_t j, double d2i, double d2j);

/// The nearer of a probe's feet on the edges that meet at its nearest vertex; the vertex if they
/// are equally near.
Foot projectBesideVertex(const Points& points, const std::vector<double>& svalues,
                         std::size_t nearest, const Point& probe);

} // namespace qel

#endif
