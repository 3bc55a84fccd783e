#include "curve/SimdProjection.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "curve/NearestVertex.h"
#include "curve/Projection.h"
#include "foundation/MachineSpacing.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kChunk = kProjectionChunk;
constexpr double kMarker = std::numeric_limits<double>::max();

// Point::length, without a branch.
QEL_KERNEL double lengthOf(const Point& v) {
    constexpr auto kUndefinedLength = static_cast<double>(std::numeric_limits<float>::max());
    const bool isUndefined = (v.x == kMarker) | (v.y == kMarker) | (v.z == kMarker);
    const double length = std::sqrt(v.dot(v));
    return isUndefined ? kUndefinedLength : length;
}

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
    QEL_KERNEL Point at(std::size_t i) const { return {x[i], y[i], z[i]}; }
};

// Vertices, with their s.
struct Vertices {
    Coordinates points;
    double s[kChunk];

    QEL_KERNEL void set(std::size_t i, const Point& p, double svalue) {
        points.set(i, p);
        s[i] = svalue;
    }
};

// The foot on one edge.
struct EdgeFoot {
    double s;
    double distance; // from the probe
    bool isResolved;
};

// The foot on the edge from the vertex to a neighbour: projectToEdge.
QEL_KERNEL EdgeFoot footTowards(const Point& q, const Vertices& from, const Vertices& to,
                                std::size_t i) {
    const Point p = from.points.at(i);
    const Point neighbour = to.points.at(i);
    const Point edge = neighbour - p;
    const double length2 = edge.dot(edge);
    const double d2i = squaredDistance(p, q);
    const double d2j = squaredDistance(neighbour, q);
    const double along = projectionOnEdge(d2i, d2j, length2);
    const Foot foot = footAt(p, neighbour, from.s[i], to.s[i], along / length2);
    const double tolerance = kHundredSpacings * length2;
    const bool isResolved = (length2 > kMinOfSpacings) & (tolerance < d2i) & (tolerance < d2j) &
                            (along != 0.0) & (kHundredSpacings * std::fabs(along) < length2);
    return {foot.s, lengthOf(q - foot.point), isResolved};
}

struct ProjectionKernel {
    QEL_KERNEL static void run(const Point* points, const double* svalues, std::size_t last,
                               const Point* probes, const std::size_t* nearest, std::size_t count,
                               double* s, std::uint64_t* isResolved) {
        Coordinates q;
        Vertices vertex;
        Vertices before;
        Vertices after;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t k = std::min(std::max(nearest[i], std::size_t{1}), last - 1);
            q.set(i, probes[i]);
            vertex.set(i, points[k], svalues[k]);
            before.set(i, points[k - 1], svalues[k - 1]);
            after.set(i, points[k + 1], svalues[k + 1]);
        }
        for (std::size_t i = 0; i < count; ++i) {
            const EdgeFoot b = footTowards(q.at(i), vertex, before, i);
            const EdgeFoot a = footTowards(q.at(i), vertex, after, i);
            const double nearer = a.distance > b.distance ? b.s : a.s;
            s[i] = b.distance == a.distance ? vertex.s[i] : nearer;
            const bool isInner = (nearest[i] - 1) < (last - 1);
            isResolved[i] = (isInner & b.isResolved & a.isResolved) ? 1 : 0;
        }
    }
};

} // namespace

void projectInLanes(const Points& points, const std::vector<double>& svalues, const Point* probes,
                    const std::size_t* nearest, std::size_t count, double* s,
                    std::uint64_t* isResolved) {
    onVectorUnit<ProjectionKernel>(points.data(), svalues.data(), points.size() - 1, probes,
                                   nearest, count, s, isResolved);
}

} // namespace qel
