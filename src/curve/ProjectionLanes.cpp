#include "curve/ProjectionLanes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/MachineSpacing.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kChunk = kProjectionChunk;
constexpr double kMarker = std::numeric_limits<double>::max();

// Points, coordinate by coordinate.
struct Coordinates {
    double x[kChunk];
    double y[kChunk];
    double z[kChunk];

    QEL_KERNEL void set(std::size_t i, const Point& p) {
        x[i] = p.x;
        y[i] = p.y;
        z[i] = p.z;
    }
};

// What is known of the probes before anything is computed.
struct Chunk {
    Coordinates probe;
    Coordinates vertex;
    Coordinates before;
    Coordinates after;
    double s[kChunk];
    double sBefore[kChunk];
    double sAfter[kChunk];
};

// The foot on one edge.
struct Foot {
    double s;
    double distance; // from the probe
    bool isSettled;
};

QEL_KERNEL double squared(double x, double y, double z) {
    return x * x + y * y + z * z;
}

// Point::length, without a branch.
QEL_KERNEL double lengthOf(double x, double y, double z) {
    constexpr auto kUndefinedLength = static_cast<double>(std::numeric_limits<float>::max());
    const bool isUndefined = (x == kMarker) | (y == kMarker) | (z == kMarker);
    const double length = std::sqrt(squared(x, y, z));
    return isUndefined ? kUndefinedLength : length;
}

// The foot on the edge from the vertex to a neighbour: ParametricCurve::projectToEdge.
QEL_KERNEL Foot footTowards(const Chunk& c, const Coordinates& to, const double* sTo,
                            std::size_t i) {
    const double qx = c.probe.x[i], qy = c.probe.y[i], qz = c.probe.z[i];
    const double vx = c.vertex.x[i], vy = c.vertex.y[i], vz = c.vertex.z[i];
    const double ex = to.x[i] - vx, ey = to.y[i] - vy, ez = to.z[i] - vz;
    const double length2 = squared(ex, ey, ez);
    const double d2i = squared(vx - qx, vy - qy, vz - qz);
    const double d2j = squared(to.x[i] - qx, to.y[i] - qy, to.z[i] - qz);
    const double along = (d2i - d2j + length2) * 0.5;
    const double t = along / length2;
    const bool isInside = t > 0.0;
    const double fx = vx + ex * t, fy = vy + ey * t, fz = vz + ez * t;
    const double sFoot = c.s[i] + (sTo[i] - c.s[i]) * t;
    const double x = qx - (isInside ? fx : vx);
    const double y = qy - (isInside ? fy : vy);
    const double z = qz - (isInside ? fz : vz);
    const double tolerance = kHundredSpacings * length2;
    const bool isSettled = (length2 > kMinOfSpacings) & (tolerance < d2i) & (tolerance < d2j) &
                           (along != 0.0) & (kHundredSpacings * std::fabs(along) < length2);
    return {isInside ? sFoot : c.s[i], lengthOf(x, y, z), isSettled};
}

struct ProjectionKernel {
    QEL_KERNEL static void run(const Point* points, const double* svalues, std::size_t last,
                               const Point* probes, const std::size_t* nearest, std::size_t count,
                               double* s, std::uint64_t* settled) {
        Chunk c;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t k = std::min(std::max(nearest[i], std::size_t{1}), last - 1);
            c.probe.set(i, probes[i]);
            c.vertex.set(i, points[k]);
            c.before.set(i, points[k - 1]);
            c.after.set(i, points[k + 1]);
            c.s[i] = svalues[k];
            c.sBefore[i] = svalues[k - 1];
            c.sAfter[i] = svalues[k + 1];
        }
        for (std::size_t i = 0; i < count; ++i) {
            const Foot before = footTowards(c, c.before, c.sBefore, i);
            const Foot after = footTowards(c, c.after, c.sAfter, i);
            const double nearer = after.distance > before.distance ? before.s : after.s;
            s[i] = before.distance == after.distance ? c.s[i] : nearer;
            const bool isInner = (nearest[i] - 1) < (last - 1);
            settled[i] = (isInner & before.isSettled & after.isSettled) ? 1 : 0;
        }
    }
};

} // namespace

void projectInLanes(const Points& points, const std::vector<double>& svalues, const Point* probes,
                    const std::size_t* nearest, std::size_t count, double* s,
                    std::uint64_t* settled) {
    onVectorUnit<ProjectionKernel>(points.data(), svalues.data(), points.size() - 1, probes,
                                   nearest, count, s, settled);
}

} // namespace qel
