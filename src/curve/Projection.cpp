// Projection of a point onto the curve.
//
// Vertex first: one pass finds the nearest vertex, then only the two edges that meet there are
// tried. O(n) time, no allocation.

#include <qel/ParametricCurve.h>

#include "curve/Conversions.h"
#include "curve/NearestVertex.h"
#include "foundation/MachineSpacing.h"

namespace qel {
namespace {

constexpr double kHitFactor = 100.0;        // spacings of the squared edge length
constexpr double kDegenerateFactor = 100.0; // spacings of the projection on the edge

} // namespace

// -- One edge ----

// Foot of a probe on the edge from its nearest vertex i towards the neighbour j, from the squared
// distances of the probe to both; the probe itself is not needed.
Point ParametricCurve::projectToEdge(int i, int j, double d2i, double d2j, double& s) const {
    const auto from = static_cast<std::size_t>(i);
    const auto to = static_cast<std::size_t>(j);
    const Point edge = points_[to] - points_[from];
    const double length2 = edge.dot(edge);
    const double tolerance = kHitFactor * spacingAt(length2);
    if (!(tolerance < d2j)) {
        s = svalues_[to];
        return points_[to];
    }
    if (!(tolerance < d2i)) {
        s = svalues_[from];
        return points_[from];
    }
    // Law of cosines: the projection of the probe on the edge, times the edge's length.
    const double along = (d2i - d2j + length2) * 0.5;
    // Measured against the projection here, against the squared length above; on purpose.
    if (length2 < kDegenerateFactor * spacingAt(along)) {
        s = (svalues_[to] + svalues_[from]) * 0.5;
        return (points_[to] + points_[from]) * 0.5;
    }
    const double t = along / length2;
    if (t > 0.0) {
        s = svalues_[from] + (svalues_[to] - svalues_[from]) * t;
        return points_[from] + (points_[to] - points_[from]) * t;
    }
    s = svalues_[from];
    return points_[from];
}

// -- The curve ----

Point ParametricCurve::projectPoint(const Point& q, double& s) const {
    if (points_.size() == 2 && points_[0] == points_[1]) {
        s = 0.0;
        return points_[0];
    }
    return projectBesideVertex(nearestVertex(points_, q), q, s);
}

// Foot of a probe on the edges that meet at its nearest vertex.
Point ParametricCurve::projectBesideVertex(std::size_t nearest, const Point& q, double& s) const {
    const auto d2 = [&](std::size_t i) { return squaredDistance(points_[i], q); };
    const auto footTowards = [&](std::size_t neighbour, double& sFoot) {
        return projectToEdge(static_cast<int>(nearest), static_cast<int>(neighbour), d2(nearest),
                             d2(neighbour), sFoot);
    };
    if (nearest == 0) {
        return footTowards(1, s);
    }
    if (nearest == points_.size() - 1) {
        return footTowards(nearest - 1, s);
    }
    double sBefore = 0.0;
    double sAfter = 0.0;
    const Point before = footTowards(nearest - 1, sBefore);
    const Point after = footTowards(nearest + 1, sAfter);
    const double distanceBefore = (q - before).length();
    const double distanceAfter = (q - after).length();
    if (distanceBefore == distanceAfter) {
        s = svalues_[nearest];
        return points_[nearest];
    }
    const bool takeBefore = distanceAfter > distanceBefore;
    s = takeBefore ? sBefore : sAfter;
    return takeBefore ? before : after;
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
