// Axial, radial and angle coordinates about an axis, rotation about an axis, and s as a coordinate.
//
// The axis is stored in the curve by every conversion, also by the const ones. It is stored after
// all memory was got, so that a conversion that fails leaves also the axis as it was.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <qel/NumericalUtils.h>

#include "curve/ArcLength.h"
#include "curve/Conversions.h"
#include "curve/Rotation.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

constexpr float kSignificantAxis = 100.0F; // spacings of the direction's length

void checkReferent(int refId, std::size_t size) {
    if (refId < 0 || static_cast<std::size_t>(refId) >= size) {
        // Under the name of the extrapolation, on purpose.
        SystemMsg message("Referent id out of bounds. PointId=%1");
        throw internal::error("ParametricCurve", "expandCurve", message % refId, argumentError);
    }
}

void narrowInto(const Points& points, FloatPoints& out) {
    std::transform(points.begin(), points.end(), std::back_inserter(out),
                   [](const Point& p) { return FloatPoint(p); });
}

// Rotation by an angle about a unit vector u (Rodrigues' formula).
Rotation rotationAbout(const Point& centre, const Point& u, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double C = 1.0 - c;
    return {centre,
            {{u.x * u.x * C + c, u.x * u.y * C - u.z * s, u.x * u.z * C + u.y * s},
             {u.y * u.x * C + u.z * s, u.y * u.y * C + c, u.y * u.z * C - u.x * s},
             {u.z * u.x * C - u.y * s, u.z * u.y * C + u.x * s, u.z * u.z * C + c}}};
}

} // namespace

// -- The axis ----

void ParametricCurve::setAxis(const FloatPoint& point, const FloatPoint& direction) const {
    const float length = direction.length();
    if (kSignificantAxis * NumericalUtils::spacing(length) > length) {
        UserMsg message("Axis vector definition insignificant. Axis vector= %1,%2,%3", nullptr);
        throw data::invalid("ParametricCurve", "setAxis",
                            message % direction.x % direction.y % direction.z, argumentError);
    }
    axisPoint_ = Point(point);
    axisDirection_ = Point(direction);
    axisDirection_.normalize();
}

// -- One point ----

Point ParametricCurve::convertPointToART0(const Point& p, Point& radial) const {
    const Point v = p - axisPoint_;
    Point around = axisDirection_.cross(v);
    const double length = around.length();
    if (length != 0.0) {
        around /= length;
    }
    radial = around.cross(axisDirection_);
    radial.normalize(); // stays zero on the axis
    return {v.dot(axisDirection_), v.dot(radial), 0.0};
}

Point ParametricCurve::convertPointToART0(const Point& p) const {
    Point radial;
    return convertPointToART0(p, radial);
}

double ParametricCurve::calculateDeltaTheta(const Point& from, const Point& to) const {
    const double y = to.dot(axisDirection_.cross(from));
    const double x = to.dot(from);
    return x == 0.0 && y == 0.0 ? 0.0 : std::atan2(y, x);
}

// -- Without the angle ----

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction,
                                    Points& out) const {
    out.clear();
    out.reserve(points_.size());
    setAxis(point, direction);
    for (const Point& p : points_) {
        out.push_back(convertPointToART0(p));
    }
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction,
                                    FloatPoints& out) const {
    const FloatPoint axis[] = {point, direction}; // which may stand in out
    out.clear();
    out.reserve(points_.size());
    Points converted;
    convertToART0(axis[0], axis[1], converted);
    narrowInto(converted, out);
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction) {
    Points converted;
    std::vector<double> svalues(points_.size());
    convertToART0(point, direction, converted);
    qel::calculateArcValue(converted, svalues, length_);
    exchange(converted, svalues);
    setParametrization(parametrizationComputed);
}

// -- With the angle ----

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   Points& out, int refId, double theta0) const {
    checkReferent(refId, points_.size());
    const auto reference = static_cast<std::size_t>(refId);
    out.clear();
    out.reserve(points_.size());
    setAxis(point, direction);
    out.resize(points_.size());

    Point referenceRadial;
    out[reference] = convertPointToART0(points_[reference], referenceRadial);
    out[reference].z = theta0;
    // The angle of point i follows from its neighbour's on the side of the reference.
    Point radial = referenceRadial;
    const auto follow = [&](std::size_t i, std::size_t neighbour) {
        const Point before = radial;
        out[i] = convertPointToART0(points_[i], radial);
        out[i].z = out[neighbour].z + calculateDeltaTheta(before, radial);
    };
    for (std::size_t i = reference + 1; i < points_.size(); ++i) {
        follow(i, i - 1);
    }
    radial = referenceRadial;
    for (std::size_t i = reference; i-- > 0;) {
        follow(i, i + 1);
    }
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   FloatPoints& out, int refId, double theta0) const {
    checkReferent(refId, points_.size());
    const FloatPoint axis[] = {point, direction}; // which may stand in out
    out.clear();
    out.reserve(points_.size());
    Points converted;
    convertToART(axis[0], axis[1], converted, refId, theta0);
    narrowInto(converted, out);
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   Points& out) const {
    convertToART(point, direction, out, 0, 0.0);
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   FloatPoints& out) const {
    convertToART(point, direction, out, 0, 0.0);
}

// s, length and parametrization stay, unlike after convertToART0; on purpose.
void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction, int refId,
                                   double theta0) {
    Points converted;
    convertToART(point, direction, converted, refId, theta0);
    points_.swap(converted);
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction) {
    convertToART(point, direction, 0, 0.0);
}

// -- Rotation and s as a coordinate ----

void ParametricCurve::rotateAroundVector(const Point& centre, const Point& axis, double angle) {
    Point unit = axis;
    unit.normalize();
    rotatePoints(points_.data(), points_.size(), rotationAbout(centre, unit, angle));
}

void ParametricCurve::storeSvaluetoXandXToY() {
    for (std::size_t i = 0; i < points_.size(); ++i) {
        points_[i] = Point(svalues_[i], points_[i].x, points_[i].z);
    }
}

} // namespace qel
