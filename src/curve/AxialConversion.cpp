// Axial, radial and angle coordinates about an axis, rotation about an axis, and s as a coordinate.
//
// The axis is stored in the curve by every conversion, also by the const ones; after memory was
// got, so that a conversion that fails leaves also the axis as it was.

#include <qel/ParametricCurve.h>

#include <cmath>

#include "curve/AxisCoordinates.h"
#include "curve/Tolerance.h"
#include "foundation/MessageTokens.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

bool isSignificant(const FloatPoint& direction) {
    const float length = direction.length();
    return !(insignificantAt(length) > length);
}

std::size_t checkedReferent(int refId, std::size_t size) {
    if (refId < 0 || static_cast<std::size_t>(refId) >= size) {
        // Under the name of the extrapolation, on purpose.
        SystemMsg message("Referent id out of bounds. PointId=%1");
        throw internal::error("ParametricCurve", "expandCurve", message % refId, argumentError);
    }
    return static_cast<std::size_t>(refId);
}

// A matrix, row by row, and the point that it leaves in place.
struct Rotation {
    Point centre;
    Point rows[3];
};

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

struct RotateKernel {
    QEL_KERNEL static void run(Point* points, std::size_t count, const Rotation* rotation) {
        const auto [centre, rows] = *rotation;
        for (std::size_t i = 0; i < count; ++i) {
            const Point d = points[i] - centre;
            points[i] = centre + Point(rows[0].dot(d), rows[1].dot(d), rows[2].dot(d));
        }
    }
};

} // namespace

// -- The axis ----

void ParametricCurve::setAxis(const FloatPoint& point, const FloatPoint& direction) const {
    if (!isSignificant(direction)) {
        UserMsg message("Axis vector definition insignificant. Axis vector= %1,%2,%3", nullptr);
        throw data::invalid("ParametricCurve", "setAxis",
                            message % direction.x % direction.y % direction.z, argumentError);
    }
    axisPoint_ = Point(point);
    axisDirection_ = Point(direction);
    axisDirection_.normalize();
}

// A copy of the axis is given, as it may stand in out.
template <typename Target>
void ParametricCurve::prepareConversion(FloatPoint point, FloatPoint direction,
                                        std::vector<Target>& out) const {
    if (!isSignificant(direction)) {
        out.clear(); // emptied also when refused
    } else {
        out.resize(points_.size());
    }
    setAxis(point, direction);
}

// -- Without the angle ----

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction,
                                    Points& out) const {
    prepareConversion(point, direction, out);
    qel::convertToART0({axisPoint_, axisDirection_}, points_, out.data());
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction,
                                    FloatPoints& out) const {
    prepareConversion(point, direction, out);
    qel::convertToART0({axisPoint_, axisDirection_}, points_, out.data());
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction) {
    svalues_.reserve(points_.size());
    setAxis(point, direction);
    qel::convertToART0({axisPoint_, axisDirection_}, points_, points_.data());
    computeSvalues();
}

// -- With the angle ----

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   Points& out, int refId, double theta0) const {
    const std::size_t reference = checkedReferent(refId, points_.size());
    prepareConversion(point, direction, out);
    qel::convertToART({axisPoint_, axisDirection_}, points_, reference, theta0, out.data());
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   FloatPoints& out, int refId, double theta0) const {
    const std::size_t reference = checkedReferent(refId, points_.size());
    prepareConversion(point, direction, out);
    qel::convertToART({axisPoint_, axisDirection_}, points_, reference, theta0, out.data());
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
    const std::size_t reference = checkedReferent(refId, points_.size());
    setAxis(point, direction);
    qel::convertToART({axisPoint_, axisDirection_}, points_, reference, theta0, points_.data());
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction) {
    convertToART(point, direction, 0, 0.0);
}

// -- Rotation and s as a coordinate ----

void ParametricCurve::rotateAroundVector(const Point& centre, const Point& axis, double angle) {
    Point unit = axis;
    unit.normalize();
    const Rotation rotation = rotationAbout(centre, unit, angle);
    onVectorUnitFrom<RotateKernel>(points_.size(), points_.data(), points_.size(), &rotation);
}

void ParametricCurve::storeSvaluetoXandXToY() {
    for (std::size_t i = 0; i < points_.size(); ++i) {
        points_[i] = Point(svalues_[i], points_[i].x, points_[i].z);
    }
}

} // namespace qel
