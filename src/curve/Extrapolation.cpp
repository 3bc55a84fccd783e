// Extrapolation: straight on beyond the ends, along the last segment that is longer than the
// tolerance, by a fraction of the curve's length.

#include <qel/ParametricCurve.h>

#include "curve/Conversions.h"

namespace qel {
namespace {

constexpr int kCoincident = 2; // decimal exponent of the spacings within which points coincide

Point beyond(const Point& end, const Point& before, double distance) {
    Point direction = end - before;
    direction.normalize(); // of no length: the new point coincides with the end
    return end + direction * distance;
}

// New ends of a curve through the points, as far beyond the old ones as fractions of its length.
struct Ends {
    Point begin;
    Point end;
};

Ends extrapolated(const Points& points, double fractionBegin, double fractionEnd) {
    ParametricCurve clean(points, ParametricCurve::dim3D);
    const double length = clean.getLength(); // of all points, before any are dropped
    if (length == 0.0) {
        throw internal::error("ParametricCurve", "expandCurve",
                              "Curve definition insignificant for extrapolation.", argumentError);
    }
    clean.eliminateDoublePoints(kCoincident);
    const Points& q = clean.getCurve();
    const std::size_t m = q.size(); // at least two: the ends always stay
    return {beyond(q[0], q[1], length * fractionBegin),
            beyond(q[m - 1], q[m - 2], length * fractionEnd)};
}

} // namespace

// -- Moving the ends ----

void ParametricCurve::expandCurve(bool atBegin, double fractionBegin, bool atEnd,
                                  double fractionEnd) {
    const Ends ends = extrapolated(points_, fractionBegin, fractionEnd);
    Points points(points_);
    if (atBegin) {
        points.front() = ends.begin;
    }
    if (atEnd) {
        points.back() = ends.end;
    }
    exchangeAndCalculateArcValue(points);
    setParametrization(parametrizationComputed);
}

void ParametricCurve::expandCurveBothEnds(double fraction) {
    expandCurve(true, fraction, true, fraction);
}

void ParametricCurve::expandCurveBegin(double fraction) {
    expandCurve(true, fraction, false, fraction);
}

void ParametricCurve::expandCurveEnd(double fraction) {
    expandCurve(false, fraction, true, fraction);
}

// -- Adding points ----

void ParametricCurve::expandCurveExtraPoints(bool atBegin, double fractionBegin, bool atEnd,
                                             double fractionEnd) {
    const Ends ends = extrapolated(points_, fractionBegin, fractionEnd);
    Points points;
    points.reserve(points_.size() + 2);
    if (atBegin) {
        points.push_back(ends.begin);
    }
    points.insert(points.end(), points_.begin(), points_.end()); // with those that coincide
    if (atEnd) {
        points.push_back(ends.end);
    }
    setPoints(points, dimension_); // as double points from now on
}

void ParametricCurve::expandCurveBothEndsExtraPoints(double fraction) {
    expandCurveExtraPoints(true, fraction, true, fraction);
}

} // namespace qel
