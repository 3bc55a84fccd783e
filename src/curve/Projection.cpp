// Projection of a point onto the curve.
//
// Vertex first: one pass finds the nearest vertex, then only the two edges that meet there are
// tried. O(n) time, no allocation.

#include "curve/Projection.h"

#include <cmath>

#include <qel/ParametricCurve.h>

#include "curve/NearestVertex.h"
#include "foundation/MachineSpacing.h"

namespace qel {
namespace {

constexpr double kHitFactor = 100.0;        // spacings of the squared edge length
constexpr double kDegenerateFactor = 100.0; // spacings of the projection on the edge

// True where x is surely more than a hundred spacings of another number; spares the search for
// that number's decade.
bool surelyExceedsSpacings(double x, double other) {
    const double magnitude = std::abs(other);
    return magnitude > kMinOfSpacings && x > kHundredSpacings * magnitude;
}

// True if a probe at a squared distance from a vertex lies on it, within the tolerance.
bool isHit(double d2, double length2) {
    return !surelyExceedsSpacings(d2, length2) && !(kHitFactor * spacingAt(length2) < d2);
}

bool isDegenerate(double length2, double along) {
    return !surelyExceedsSpacings(length2, along) && length2 < kDegenerateFactor * spacingAt(along);
}

// The place at t on the edge from vertex i to j; not before i.
Foot footAt(const Point& pi, const Point& pj, double si, double sj, double t) {
    const bool isInside = t > 0.0; // chosen number by number, without a branch
    const Point p = pi + (pj - pi) * t;
    const double s = si + (sj - si) * t;
    return {{isInside ? p.x : pi.x, isInside ? p.y : pi.y, isInside ? p.z : pi.z},
            isInside ? s : si};
}

} // namespace

// -- Beside a vertex ----

Foot projectToEdge(const Points& points, const std::vector<double>& svalues, std::size_t i,
                   std::size_t j, double d2i, double d2j) {
    const Point edge = points[j] - points[i];
    const double length2 = edge.dot(edge);
    if (isHit(d2j, length2)) {
        return {points[j], svalues[j]};
    }
    if (isHit(d2i, length2)) {
        return {points[i], svalues[i]};
    }
    // The projection on the edge, times the length of that: law of cosines.
    const double along = (d2i - d2j + length2) * 0.5;
    // Measured against the projection here, against the squared length above; on purpose.
    if (isDegenerate(length2, along)) {
        return {(points[j] + points[i]) * 0.5, (svalues[j] + svalues[i]) * 0.5};
    }
    return footAt(points[i], points[j], svalues[i], svalues[j], along / length2);
}

Foot projectBesideVertex(const Points& points, const std::vector<double>& svalues,
                         std::size_t nearest, const Point& probe) {
    const double d2 = squaredDistance(points[nearest], probe);
    const auto footTowards = [&](std::size_t neighbour) {
        return projectToEdge(points, svalues, nearest, neighbour, d2,
                             squaredDistance(points[neighbour], probe));
    };
    if (nearest == 0) {
        return footTowards(1);
    }
    if (nearest == points.size() - 1) {
        return footTowards(nearest - 1);
    }
    const Foot before = footTowards(nearest - 1);
    const Foot after = footTowards(nearest + 1);
    const double distanceBefore = (probe - before.point).length();
    const double distanceAfter = (probe - after.point).length();
    if (distanceBefore == distanceAfter) {
        return {points[nearest], svalues[nearest]};
    }
    return distanceAfter > distanceBefore ? before : after;
}

// -- The curve ----

Point ParametricCurve::projectPoint(const Point& q, double& s) const {
    if (isOnePoint(points_)) {
        s = 0.0;
        return points_[0];
    }
    const Foot foot = projectBesideVertex(points_, svalues_, nearestVertex(points_, q), q);
    s = foot.s;
    return foot.point;
}

int ParametricCurve::getClosestPoint(const Point& q) const {
    return static_cast<int>(nearestVertex(points_, q));
}

// -- Other forms ----

Point ParametricCurve::projectPoint(const Point& q) const {
    double s = 0.0;
    return projectPoint(q, s);
}

FloatPoint ParametricCurve::projectPoint(const FloatPoint& q, float& s) const {
    double wideS = 0.0;
    const FloatPoint foot = projectPoint(q, wideS);
    s = static_cast<float>(wideS);
    return foot;
}

FloatPoint ParametricCurve::projectPoint(const FloatPoint& q, double& s) const {
    return FloatPoint(projectPoint(Point(q), s));
}

FloatPoint ParametricCurve::projectPoint(const FloatPoint& q) const {
    return FloatPoint(projectPoint(Point(q)));
}

int ParametricCurve::getClosestPoint(const FloatPoint& q) const {
    return getClosestPoint(Point(q));
}

} // namespace qel
