#ifndef QEL_CURVE_PROJECTION_H
#define QEL_CURVE_PROJECTION_H

/// @file
/// The foot of a probe on a polyline, beside the vertex nearest to the probe.

#include <cstddef>
#include <vector>

#include "curve/Conversions.h"

namespace qel {

/// A place on a polyline.
struct Foot {
    Point point;
    double s = 0.0;
};

/// Foot of a probe on the edge from vertex i, the nearer one, towards its neighbour j, from the
/// squared distances of the probe to both; the probe itself is not needed.
Foot projectToEdge(const Points& points, const std::vector<double>& svalues, std::size_t i,
                   std::size_t j, double d2i, double d2j);

/// The nearer of a probe's feet on the edges that meet at its nearest vertex; the vertex if they
/// are equally near.
Foot projectBesideVertex(const Points& points, const std::vector<double>& svalues,
                         std::size_t nearest, const Point& probe);

/// True for a curve of two equal points: every probe's foot is there, at s = 0.
inline bool isOnePoint(const Points& points) {
    return points.size() == 2 && points[0] == points[1];
}

} // namespace qel

#endif
