#ifndef QEL_POLYLINE_SEGMENTDISTANCE_H
#define QEL_POLYLINE_SEGMENTDISTANCE_H

/// @file
/// The distance of a point from a segment: the definition of the error of a simplified polyline.

#include <cstddef>

#include "platform/VectorUnit.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// A segment from a to b.
struct Segment {
    double ax, ay, az;
    double bx, by, bz;
    double ex, ey, ez;     // b - a
    double inverseLength2; // 0 where a equals b

    Segment(const VertexPointers& v, std::size_t from, std::size_t to)
        : ax(v.x[from]),
          ay(v.y[from]),
          az(v.z[from]),
          bx(v.x[to]),
          by(v.y[to]),
          bz(v.z[to]),
          ex(bx - ax),
          ey(by - ay),
          ez(bz - az) {
        const double length2 = ex * ex + ey * ey + ez * ez;
        inverseLength2 = length2 > 0.0 ? 1.0 / length2 : 0.0;
    }
};

/// Squared distance of (x, y, z), to an error of a few machine epsilons of the squared distances
/// of the ends. Without branches, so that lanes compute the same.
QEL_KERNEL double squaredDistance(const Segment& s, double x, double y, double z) {
    const double fromAx = x - s.ax, fromAy = y - s.ay, fromAz = z - s.az;
    const double fromBx = x - s.bx, fromBy = y - s.by, fromBz = z - s.bz;
    const double t = (fromAx * s.ex + fromAy * s.ey + fromAz * s.ez) * s.inverseLength2;
    const double inside = t > 0.0 ? t : 0.0;
    const double footX = fromAx - s.ex * inside;
    const double footY = fromAy - s.ey * inside;
    const double footZ = fromAz - s.ez * inside;
    const bool isBehindB = t >= 1.0;
    const double dx = isBehindB ? fromBx : footX;
    const double dy = isBehindB ? fromBy : footY;
    const double dz = isBehindB ? fromBz : footZ;
    return dx * dx + dy * dy + dz * dz;
}

} // namespace qel

#endif
