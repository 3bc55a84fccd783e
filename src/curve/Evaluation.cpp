#include "curve/Evaluation.h"

#include <qel/ParametricCurve.h>

#include <cmath>

#include "curve/Bounds.h"
#include "curve/Validation.h"

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
    const Point* const point = points.data();
    fillAlong(
        target, points.size(), [=](std::size_t i) { return static_cast<T>(point[i].*component); },
        values);
}

} // namespace

// -- At s ----

BracketedPoint interpolateOnS(const Points& points, const std::vector<double>& svalues, double s) {
    // Rounded to float on purpose; pointAtParameter does not, so the two may bracket differently
    // beside an s-value (EvaluationTest, InterpolateOnSRoundsSToFloatFirst).
    s = static_cast<float>(s);
    if (!(s > svalues.front())) {
        return {points.front(), {0, 0}};
    }
    if (!(s < svalues.back())) {
        return {points.back(), {points.size() - 1, points.size() - 1}};
    }
    const Bracket bracket = bracketOf(svalues, s);
    const Point& pLo = points[bracket.lo];
    const Point& pHi = points[bracket.hi];
    const double sLo = svalues[bracket.lo];
    const double sHi = svalues[bracket.hi];
    if (countAsEqual(sLo, sHi)) {
        return {(pLo + pHi) * 0.5, bracket};
    }
    return {pLo + (pHi - pLo) * (s - sLo) / (sHi - sLo), bracket};
}

Point ParametricCurve::getPointAtParameter(double s) const {
    return pointAtParameter(points_, svalues_, s);
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
        throw argumentFault("getSvalues", "Point for requested id does not exist. Id=%1. Size=%2 .",
                            id, points_.size());
    }
    return svalues_[static_cast<std::size_t>(id)];
}

Point ParametricCurve::getPointAtIndex(int id) const {
    if (id < 0 || static_cast<std::size_t>(id) >= points_.size()) {
        throw argumentFault("getPointAtIndex", "Point requested out of bounds");
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
    const auto bounds = boundsOf(points_);
    xmin = bounds[leastX];
    xmax = bounds[greatestX];
    ymin = bounds[leastY];
    ymax = bounds[greatestY];
    zmin = bounds[leastZ];
    zmax = bounds[greatestZ];
}
void ParametricCurve::getMinMaxX(double& min, double& max) const {
    const auto bounds = boundsOf(points_);
    min = bounds[leastX];
    max = bounds[greatestX];
}
void ParametricCurve::getMinMaxY(double& min, double& max) const {
    const auto bounds = boundsOf(points_);
    min = bounds[leastY];
    max = bounds[greatestY];
}
void ParametricCurve::getMinMaxZ(double& min, double& max) const {
    const auto bounds = boundsOf(points_);
    min = bounds[leastZ];
    max = bounds[greatestZ];
}

std::size_t ParametricCurve::getMinXid() const {
    return indexOfExtreme(points_, leastX);
}
std::size_t ParametricCurve::getMaxXid() const {
    return indexOfExtreme(points_, greatestX);
}
std::size_t ParametricCurve::getMinYid() const {
    return indexOfExtreme(points_, leastY);
}
std::size_t ParametricCurve::getMaxYid() const {
    return indexOfExtreme(points_, greatestY);
}
std::size_t ParametricCurve::getMinZid() const {
    return indexOfExtreme(points_, leastZ);
}
std::size_t ParametricCurve::getMaxZid() const {
    return indexOfExtreme(points_, greatestZ);
}

} // namespace qel
