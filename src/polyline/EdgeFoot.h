#ifndef QEL_POLYLINE_EDGEFOOT_H
#define QEL_POLYLINE_EDGEFOOT_H

/// @file
/// The foot of a probe on one edge: the definition of what CurveLocator finds the least of.

#include <cstddef>

#include "platform/VectorUnit.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// A probe, in the coordinates of the vertices.
struct Probe {
    double x;
    double y;
    double z;
};

struct EdgeFoot {
    double t; ///< along the edge, from 0 to 1
    double x;
    double y;
    double z;
    double d2; ///< squared distance from the probe
};

QEL_KERNEL double squaredLength(double x, double y, double z) {
    return x * x + y * y + z * z;
}

/// The foot on edge i. Without branches, so that lanes compute the same.
QEL_KERNEL EdgeFoot footOnEdge(const VertexPointers& v, std::size_t i, const Probe& q) {
    const double ax = v.x[i], ay = v.y[i], az = v.z[i];
    const double bx = v.x[i + 1], by = v.y[i + 1], bz = v.z[i + 1];
    const double ex = bx - ax, ey = by - ay, ez = bz - az;
    const double length2 = squaredLength(ex, ey, ez);
    const double quotient = ((q.x - ax) * ex + (q.y - ay) * ey + (q.z - az) * ez) / length2;
    const bool isBehindA = (length2 > 0.0) & (quotient > 0.0); // false for 0 / 0, too
    const bool isBehindB = isBehindA & (quotient >= 1.0);
    const double x = isBehindB ? bx : ax + ex * quotient;
    const double y = isBehindB ? by : ay + ey * quotient;
    const double z = isBehindB ? bz : az + ez * quotient;
    EdgeFoot foot;
    foot.t = isBehindA ? (isBehindB ? 1.0 : quotient) : 0.0;
    foot.x = isBehindA ? x : ax;
    foot.y = isBehindA ? y : ay;
    foot.z = isBehindA ? z : az;
    foot.d2 = squaredLength(q.x - foot.x, q.y - foot.y, q.z - foot.z);
    return foot;
}

} // namespace qel

#endif
