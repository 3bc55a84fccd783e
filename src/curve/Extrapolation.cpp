// Extrapolation: straight on beyond the ends, along the last segment that is longer than the
// tolerance, by a fraction of the curve's length.

#include <qel/ParametricCurve.h>

#include <utility>

#include "curve/ArcLength.h"
#include "curve/Cleaning.h"
#include "curve/Conversions.h"
#include "curve/Validation.h"

namespace qel {
namespace {

constexpr int kCoincident = 2; // decimal exponent of the spacings within which points coincide

// A straight line beyond an end of a polyline: its start, and a unit vector along it, or zero.
struct Ray {
    Point from;
    Point direction;

    Ray(const Point& end, const Point& before) : from(end), direction(end - before) {
        direction.normalize(); // of no length: the new point coincides with the end
    }
    Point at(double distance) const { return from + direction * distance; }
};

// Both ends of a polyline, along its first and its last segment that are longer than the tolerance.
struct Extension {
    Ray begin;
    Ray end;
    double length; // of the polyline
};

Extension extensionOf(const Points& points) {
    std::vector<double> svalues;
    double length = 0.0;
    calculateArcValue(points, svalues, length);
    if (length == 0.0) {
        throw argumentFault("expandCurve", "Curve definition insignificant for extrapolation.");
    }
    // The neighbours of the ends among the points that do not coincide; the ends always stay.
    std::size_t second = 0;
    std::size_t lastButOne = 0;
    std::size_t last = 0;
    forEachDistinct(svalues, coincidenceTolerance(kCoincident, ParametricCurve::doublePrecision),
                    [&](std::size_t i) {
                        second = second == 0 ? i : second;
                        lastButOne = last;
                        last = i;
                    });
    return {Ray(points.front(), points[second]), Ray(points.back(), points[lastButOne]), length};
}

} // namespace

// -- Moving the ends ----

void ParametricCurve::expandCurve(bool atBegin, double fractionBegin, bool atEnd,
                                  double fractionEnd) {
    const Extension extension = extensionOf(points_);
    svalues_.reserve(points_.size()); // nothing can fail any more
    if (atBegin) {
        points_.front() = extension.begin.at(extension.length * fractionBegin);
    }
    if (atEnd) {
        points_.back() = extension.end.at(extension.length * fractionEnd);
    }
    computeSvalues();
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
    const Extension extension = extensionOf(points_);
    Points points;
    points.reserve(points_.size() + 2);
    if (atBegin) {
        points.push_back(extension.begin.at(extension.length * fractionBegin));
    }
    points.insert(points.end(), points_.begin(), points_.end()); // with those that coincide
    if (atEnd) {
        points.push_back(extension.end.at(extension.length * fractionEnd));
    }
    setPoints(std::move(points), dimension_); // as double points from now on
}

void ParametricCurve::expandCurveBothEndsExtraPoints(double fraction) {
    expandCurveExtraPoints(true, fraction, true, fraction);
}

} // namespace qel
