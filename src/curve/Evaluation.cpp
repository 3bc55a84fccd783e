// Evaluation: the point at an s, the point nearest in s, components and bounds.
//
// The two evaluators find the same bracket but combine it in different orders of operations, and
// only interpolateOnS rounds s to float first. Both differences are deliberate.

#include <qel/ParametricCurve.h>

#include <cmath>

#include "curve/Bracket.h"
#include "curve/Conversions.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

template <typename T>
void copyComponent(const Points& points, double Point::*component, std::vector<T>& values) {
    values.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        values[i] = static_cast<T>(points[i].*component);
    }
}

template <typename T>
void copyComponent(const Points& points, double Point::*component, T TripletBase<T>::*target,
                   std::vector<TripletBase<T>>& values) {
    values.assign(points.size(), TripletBase<T>());
    for (std::size_t i = 0; i < points.size(); ++i) {
        values[i].*target = static_cast<T>(points[i].*component);
    }
}

// Strict comparisons: a NaN never enters after the first point.
void minMax(const Points& points, double Point::*component, double& min, double& max) {
    min = max = points[0].*component;
    for (const Point& point : points) {
        const double value = point.*component;
        min = min > value ? value : min;
        max = value > max ? value : max;
    }
}

// Index of the first point whose component no other precedes.
template <typename Precedes>
std::size_t extremeId(const Points& points, double Point::*component, Precedes precedes) {
    std::size_t id = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (precedes(points[i].*component, points[id].*component)) {
            id = i;
        }
    }
    return id;
}

std::size_t minId(const Points& points, double Point::*component) {
    return extremeId(points, component, [](double a, double b) { return a < b; });
}

std::size_t maxId(const Points& points, double Point::*component) {
    return extremeId(points, component, [](double a, double b) { return a > b; });
}

} // namespace

// -- At s ----

Point ParametricCurve::interpolateOnS(double s, std::size_t& lo, std::size_t& hi) const {
    // Rounded to float on purpose; getPointAtParameter is not, so the two may bracket differently
    // beside an s-value (EvaluationTest, InterpolateOnSRoundsSToFloatFirst).
    s = static_cast<float>(s);
    if (!(s > svalues_.front())) {
        lo = hi = 0;
        return points_.front();
    }
    if (!(s < svalues_.back())) {
        lo = hi = points_.size() - 1;
        return points_.back();
    }
    const Bracket bracket = bracketOf(svalues_, s);
    lo = bracket.lo;
    hi = bracket.hi;
    if (countAsEqual(svalues_[lo], svalues_[hi])) {
        return (points_[lo] + points_[hi]) * 0.5;
    }
    return points_[lo] +
           (points_[hi] - points_[lo]) * (s - svalues_[lo]) / (svalues_[hi] - svalues_[lo]);
}

Point ParametricCurve::getPointAtParameter(double s) const {
    std::size_t hi = 0;
    return pointAtParameter(points_, svalues_, s, hi);
}

int ParametricCurve::getClosestToSvaluePoint(double s) const {
    const int last = static_cast<int>(points_.size()) - 1;
    // 0 and 1 on purpose, not the curve's own ends: s is taken for normalised.
    if (!(s > 0.0)) {
        return 0;
    }
    if (!(s < 1.0)) {
        return last;
    }
    // Supplied s-values need not reach s; then the nearer end is the answer.
    if (!(s < svalues_.back())) { // also where all of them equal s
        return last;
    }
    if (!(s > svalues_.front())) {
        return 0;
    }
    const auto [lo, hi] = bracketOf(svalues_, s);
    const bool nearerToLo = std::abs(s - svalues_[lo]) < std::abs(s - svalues_[hi]);
    return static_cast<int>(nearerToLo ? lo : hi);
}

// -- By index ----

double ParametricCurve::getSvalues(int id) const {
    if (id < 0 || static_cast<std::size_t>(id) >= points_.size()) {
        SystemMsg message("Point for requested id does not exist. Id=%1. Size=%2 .");
        throw internal::error("ParametricCurve", "getSvalues", message % id % points_.size(),
                              argumentError);
    }
    return svalues_[static_cast<std::size_t>(id)];
}

Point ParametricCurve::getPointAtIndex(int id) const {
    if (id < 0 || static_cast<std::size_t>(id) >= points_.size()) {
        throw internal::error("ParametricCurve", "getPointAtIndex", "Point requested out of bounds",
                              argumentError);
    }
    return points_[static_cast<std::size_t>(id)];
}

Point ParametricCurve::getFirstPoint() const {
    return points_.front();
}

Point ParametricCurve::getLastPoint() const {
    return points_.back();
}

// -- Components ----

void ParametricCurve::getX(std::vector<double>& values) const {
    copyComponent(points_, &Point::x, values);
}
void ParametricCurve::getX(std::vector<float>& values) const {
    copyComponent(points_, &Point::x, values);
}
void ParametricCurve::getX(Points& values) const {
    copyComponent(points_, &Point::x, &Point::x, values);
}
void ParametricCurve::getX(FloatPoints& values) const {
    copyComponent(points_, &Point::x, &FloatPoint::x, values);
}
void ParametricCurve::getY(std::vector<double>& values) const {
    copyComponent(points_, &Point::y, values);
}
void ParametricCurve::getY(std::vector<float>& values) const {
    copyComponent(points_, &Point::y, values);
}
void ParametricCurve::getY(Points& values) const {
    copyComponent(points_, &Point::y, &Point::y, values);
}
void ParametricCurve::getY(FloatPoints& values) const {
    copyComponent(points_, &Point::y, &FloatPoint::y, values);
}
void ParametricCurve::getZ(std::vector<double>& values) const {
    copyComponent(points_, &Point::z, values);
}
void ParametricCurve::getZ(std::vector<float>& values) const {
    copyComponent(points_, &Point::z, values);
}
void ParametricCurve::getZ(Points& values) const {
    copyComponent(points_, &Point::z, &Point::z, values);
}
void ParametricCurve::getZ(FloatPoints& values) const {
    copyComponent(points_, &Point::z, &FloatPoint::z, values);
}

// -- Bounds ----

void ParametricCurve::getMinMax(double& xmin, double& xmax, double& ymin, double& ymax,
                                double& zmin, double& zmax) const {
    getMinMaxX(xmin, xmax);
    getMinMaxY(ymin, ymax);
    getMinMaxZ(zmin, zmax);
}
void ParametricCurve::getMinMaxX(double& min, double& max) const {
    minMax(points_, &Point::x, min, max);
}
void ParametricCurve::getMinMaxY(double& min, double& max) const {
    minMax(points_, &Point::y, min, max);
}
void ParametricCurve::getMinMaxZ(double& min, double& max) const {
    minMax(points_, &Point::z, min, max);
}

std::size_t ParametricCurve::getMinXid() const {
    return minId(points_, &Point::x);
}
std::size_t ParametricCurve::getMaxXid() const {
    return maxId(points_, &Point::x);
}
std::size_t ParametricCurve::getMinYid() const {
    return minId(points_, &Point::y);
}
std::size_t ParametricCurve::getMaxYid() const {
    return maxId(points_, &Point::y);
}
std::size_t ParametricCurve::getMinZid() const {
    return minId(points_, &Point::z);
}
std::size_t ParametricCurve::getMaxZid() const {
    return maxId(points_, &Point::z);
}

} // namespace qel
