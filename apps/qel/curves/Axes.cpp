// What the coordinates of a curve are: Cartesian or cylindrical.
#include "curves/Axes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "console/Messages.h"
#include "console/Text.h"

namespace program {
namespace {

// The name of a coordinate without its unit, such as in "theta [deg]" or "theta_rad".
std::string baseName(const std::string& axis) {
    const std::string name = lower(axis);
    return name.substr(0, name.find_first_of("_[(: "));
}

bool isOneOf(const Words& names, const std::string& axis) {
    return std::count(names.begin(), names.end(), baseName(axis)) > 0;
}

bool isAngle(const std::string& axis) {
    return isOneOf({"theta", "phi", "angle", "azimuth"}, axis);
}

bool isRadius(const std::string& axis) {
    return isOneOf({"r", "radius", "radial"}, axis);
}

bool isInRadians(const std::string& axis) {
    return lower(axis).find("rad", baseName(axis).size()) != std::string::npos;
}

// Which coordinate is which; -1 for one that is not there.
struct Roles {
    int axial = -1;
    int radial = -1;
    int angle = -1;
};

Roles rolesOf(const NamedCurve& curve) {
    if (curve.axes.empty()) {
        const bool planar = curve.curve.getDimension() == qel::ParametricCurve::dim2D;
        return planar ? Roles{-1, 0, 1} : Roles{0, 1, 2};
    }
    Roles roles;
    for (std::size_t i = 0; i < curve.axes.size(); ++i) {
        const std::string& axis = curve.axes[i];
        (isAngle(axis)    ? roles.angle
         : isRadius(axis) ? roles.radial
                          : roles.axial) = static_cast<int>(i);
    }
    refuseIf(roles.radial < 0, curve.name, ": none of the coordinates ", listed(curve.axes),
             " is a radius; --columns names axial, radial and angular ones, such as z,r,theta");
    return roles;
}

// x, y or z: that of the name, else z.
int cartesianAxis(const NamedCurve& curve, int axial) {
    const std::string name = axial < 0 || curve.axes.empty()
                                 ? "z"
                                 : baseName(curve.axes[static_cast<std::size_t>(axial)]);
    return name == "x" ? 0 : name == "y" ? 1 : 2;
}

// The angle about a unit vector, from the direction of the coordinate axis that follows the one
// nearest to it.
double angleAbout(const Point& unit, const Point& radial) {
    int nearest = 0;
    for (const int axis : {1, 2}) {
        nearest = std::abs(unit.getRef(axis)) > std::abs(unit.getRef(nearest)) ? axis : nearest;
    }
    Point next;
    next.getRef((nearest + 1) % 3) = 1.0;
    const Point zero = next - unit * unit.dot(next);
    return std::atan2(unit.dot(zero.cross(radial)), zero.dot(radial));
}

} // namespace

bool hasAngle(const NamedCurve& curve) {
    return std::any_of(curve.axes.begin(), curve.axes.end(), isAngle);
}

bool isCylindrical(const NamedCurve& curve) {
    return hasAngle(curve) || std::any_of(curve.axes.begin(), curve.axes.end(), isRadius);
}

std::string coordinateNames(const NamedCurve& curve) {
    Words names{"x", "y", "z"};
    if (hasAngle(curve)) {
        std::copy(curve.axes.begin(), curve.axes.end(), names.begin());
    }
    return names[0] + "," + names[1] + "," + names[2];
}

void toCartesian(NamedCurve& curve) {
    const Roles roles = rolesOf(curve);
    const int axis = cartesianAxis(curve, roles.axial);
    const bool radians = roles.angle >= 0 && !curve.axes.empty() &&
                         isInRadians(curve.axes[static_cast<std::size_t>(roles.angle)]);
    const double unit = radians ? 1.0 : curve.angleUnit;
    Points points;
    for (const Point& p : curve.curve.getCurve()) {
        const auto part = [&p](int role) { return role < 0 ? 0.0 : p.getRef(role); };
        const double angle = part(roles.angle) * unit;
        Point q;
        q.getRef(axis) = part(roles.axial);
        q.getRef((axis + 1) % 3) = part(roles.radial) * std::cos(angle);
        q.getRef((axis + 2) % 3) = part(roles.radial) * std::sin(angle);
        points.push_back(q);
    }
    curve.curve.setPoints(points, roles.axial < 0 ? qel::ParametricCurve::dim2D
                                                  : qel::ParametricCurve::dim3D);
    curve.axes.clear();
}

void toCylindrical(NamedCurve& curve, const Point& point, const Point& direction) {
    refuseIf(isCylindrical(curve), "the coordinates are ", listed(curve.axes),
             " already; --cylindrical takes them for what they are");
    const double length = direction.length();
    refuseIf(length == 0.0, "the direction ", direction.x, ",", direction.y, ",", direction.z,
             " has no length");
    // From the point on, because the library holds the axis in single precision.
    Points points = curve.curve.getCurve();
    std::transform(points.begin(), points.end(), points.begin(),
                   [&](const Point& p) { return p - point; });
    const std::vector<double> svalues = curve.curve.getSvalues();
    const qel::TripletBase<float> axis(direction / length);
    const Point unit = Point(axis) / Point(axis).length();
    const auto offAxis = std::find_if(points.begin(), points.end(),
                                      [&](const Point& p) { return unit.cross(p).length() > 0.0; });
    const auto reference = offAxis == points.end() ? points.begin() : offAxis;
    const qel::ParametricCurve fromPoint(points, qel::ParametricCurve::dim3D);
    Points converted;
    fromPoint.convertToART({}, axis, converted, static_cast<int>(reference - points.begin()),
                           offAxis == points.end() ? 0.0 : angleAbout(unit, *reference));
    for (Point& p : converted) {
        p.z /= curve.angleUnit;
    }
    curve.curve.setPoints(converted, svalues, qel::ParametricCurve::dim3D);
    curve.axes = {"axial", "radial", curve.angleUnit == 1.0 ? "theta_rad" : "theta"};
}

} // namespace program
