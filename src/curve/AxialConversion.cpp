// Axial, radial and angle coordinates about an axis, rotation about an axis, and s as a coordinate.
//
// Fast path: neither the coordinates of a point nor the sine and cosine of the turn from its
// neighbour depend on those of another, so both run in lanes, block by block; the arcs are then
// taken and summed one by one. Each value takes the stated operations in their order, with a
// division by one in place of one that is left out, so the bits are the same.
//
// The axis is stored in the curve by every conversion, also by the const ones; after memory was
// got, so that a conversion that fails leaves also the axis as it was.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>

#include "curve/Tolerance.h"
#include "curve/Validation.h"
#include "curve/VectorLength.h"
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
        throw argumentFault("expandCurve", "Referent id out of bounds. PointId=%1", refId);
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

// -- Coordinates about an axis ----

struct Axis {
    Point point;
    Point direction; // of unit length
};

constexpr std::size_t kBlock = 64; // points converted before they are stored
constexpr std::ptrdiff_t kForwards = 1;

// Vectors of a block, component by component; behind one of the block before.
struct Vectors {
    double x[kBlock + 1];
    double y[kBlock + 1];
    double z[kBlock + 1];

    QEL_KERNEL Point operator[](std::size_t i) const { return {x[i], y[i], z[i]}; }
    QEL_KERNEL void set(std::size_t i, const Point& v) {
        x[i] = v.x;
        y[i] = v.y;
        z[i] = v.z;
    }
};

// A block of points in the coordinates of the axis; the unit vectors from that to them, behind the
// one to the point before the block; and the turns, each from the radial before: its part across
// that radial, and along it.
struct Converted {
    double axial[kBlock];
    double radial[kBlock];
    Vectors radials;
    double across[kBlock];
    double along[kBlock];

    double turn(std::size_t i) const {
        return along[i] == 0.0 && across[i] == 0.0 ? 0.0 : std::atan2(across[i], along[i]);
    }
};

// The length by which a vector is made one of unit length: its own, or one for a zero vector. A
// choice between the two would become one between quotients.
QEL_KERNEL double divisorOf(double length) {
    return length + (length == 0.0 ? 1.0 : 0.0);
}

struct ConvertKernel {
    // The points follow each other by a step, which may be backwards.
    QEL_KERNEL static void run(const Axis* axis, const Point* points, std::ptrdiff_t step,
                               std::size_t count, Converted* converted) {
        Vectors fromAxis; // apart, which keeps lanes whole
        for (std::size_t i = 0; i < count; ++i) {
            fromAxis.set(i, points[static_cast<std::ptrdiff_t>(i) * step] - axis->point);
        }
        const Point d = axis->direction;
        for (std::size_t i = 0; i < count; ++i) {
            const Point v = fromAxis[i];
            const Point c = d.cross(v);
            const double around = divisorOf(vectorLength(c.x, c.y, c.z));
            const Point unit(c.x / around, c.y / around, c.z / around);
            const Point r = unit.cross(d);
            const double away = divisorOf(vectorLength(r.y, r.x, r.z)); // in normalize's order
            const Point radial(r.x / away, r.y / away, r.z / away);
            converted->axial[i] = v.dot(d);
            converted->radial[i] = v.dot(radial);
            converted->radials.set(i + 1, radial);
        }
        for (std::size_t i = 0; i < count; ++i) {
            const Point from = converted->radials[i];
            const Point to = converted->radials[i + 1];
            converted->across[i] = to.dot(d.cross(from));
            converted->along[i] = to.dot(from);
        }
    }
};

// Follows a curve one way from a point that is converted already: goes on from an index, by a step
// of 1 or -1, through `count` points.
template <typename Target>
void followAngles(const Axis& axis, const Points& points, const Point& radial, double theta,
                  std::ptrdiff_t index, std::ptrdiff_t step, std::size_t count, Target* out) {
    Converted converted;
    converted.radials.set(0, radial);
    while (count > 0) {
        const std::size_t n = std::min(count, kBlock);
        onVectorUnitFrom<ConvertKernel>(n, &axis, points.data() + index, step, n, &converted);
        for (std::size_t i = 0; i < n; ++i, index += step) {
            theta += converted.turn(i);
            out[index] = Target(Point(converted.axial[i], converted.radial[i], theta));
        }
        converted.radials.set(0, converted.radials[n]);
        count -= n;
    }
}

// Sets out[i], a Point or FloatPoint, to (axial, radial, 0) of each point: along the axis and away
// from it. The list may be the points themselves.
template <typename Target>
void setAxialRadial(const Axis& axis, const Points& points, Target* out) {
    Converted converted;
    converted.radials.set(0, Point());
    for (std::size_t first = 0; first < points.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, points.size() - first);
        onVectorUnitFrom<ConvertKernel>(count, &axis, points.data() + first, kForwards, count,
                                        &converted);
        for (std::size_t i = 0; i < count; ++i) {
            out[first + i] = Target(Point(converted.axial[i], converted.radial[i], 0.0));
        }
    }
}

// Sets out[i] to (axial, radial, angle in radians). The angle is theta0 at the reference point;
// from there to both ends it grows by the turn between the unit vectors from the axis to
// neighbouring points, by the right-hand rule, from -pi to pi; by none to and from a point on the
// axis. The list may be the points themselves.
template <typename Target>
void setAxialRadialAngle(const Axis& axis, const Points& points, std::size_t reference,
                         double theta0, Target* out) {
    Converted converted;
    converted.radials.set(0, Point());
    runPortable<ConvertKernel>(&axis, points.data() + reference, kForwards, std::size_t{1},
                               &converted);
    out[reference] = Target(Point(converted.axial[0], converted.radial[0], theta0));
    const auto index = static_cast<std::ptrdiff_t>(reference);
    const Point radial = converted.radials[1];
    followAngles(axis, points, radial, theta0, index + 1, kForwards, points.size() - 1 - reference,
                 out);
    followAngles(axis, points, radial, theta0, index - 1, -kForwards, reference, out);
}

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
    setAxialRadial({axisPoint_, axisDirection_}, points_, out.data());
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction,
                                    FloatPoints& out) const {
    prepareConversion(point, direction, out);
    setAxialRadial({axisPoint_, axisDirection_}, points_, out.data());
}

void ParametricCurve::convertToART0(const FloatPoint& point, const FloatPoint& direction) {
    svalues_.reserve(points_.size());
    setAxis(point, direction);
    setAxialRadial({axisPoint_, axisDirection_}, points_, points_.data());
    computeSvalues();
}

// -- With the angle ----

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   Points& out, int refId, double theta0) const {
    const std::size_t reference = checkedReferent(refId, points_.size());
    prepareConversion(point, direction, out);
    setAxialRadialAngle({axisPoint_, axisDirection_}, points_, reference, theta0, out.data());
}

void ParametricCurve::convertToART(const FloatPoint& point, const FloatPoint& direction,
                                   FloatPoints& out, int refId, double theta0) const {
    const std::size_t reference = checkedReferent(refId, points_.size());
    prepareConversion(point, direction, out);
    setAxialRadialAngle({axisPoint_, axisDirection_}, points_, reference, theta0, out.data());
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
    setAxialRadialAngle({axisPoint_, axisDirection_}, points_, reference, theta0, points_.data());
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
