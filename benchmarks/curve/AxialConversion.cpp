// Axial, radial and angular coordinates about an axis, and turning about one.

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/EigenCurve.h"
#include "support/Limit.h"

namespace qel_benchmark {
namespace {

const qel::TripletBase<float> kOrigin(0.5f, 0.25f, 0.125f);
const qel::TripletBase<float> kDirection(1.0f, 1.0f, 1.0f);

struct Axis {
    Point origin{kOrigin};
    Point direction{plain::unit(Point(kDirection))};
};

// (A, R, 0) of a point, and the unit vector from the axis towards it.
Point axialOf(const Axis& axis, const Point& p, Point& radial) {
    const Point v = p - axis.origin;
    Point c = plain::cross(axis.direction, v);
    const double size = plain::length(c);
    if (size != 0.0) {
        c = Point(c.x / size, c.y / size, c.z / size);
    }
    radial = plain::unit(plain::cross(c, axis.direction));
    return {plain::dot(v, axis.direction), plain::dot(v, radial), 0.0};
}

double turnBetween(const Axis& axis, const Point& from, const Point& to) {
    const double y = plain::dot(to, plain::cross(axis.direction, from));
    const double x = plain::dot(to, from);
    return x == 0.0 && y == 0.0 ? 0.0 : std::atan2(y, x);
}

void toAxialRadial(Row& row, const CurveInput& in) {
    Points a;
    Points b;
    row.add(kLibrary, [&] { in.curve.convertToART0(kOrigin, kDirection, a); });
    row.add(kPlain, [&] {
        const Axis axis;
        b.resize(in.n);
        Point radial;
        for (std::size_t i = 0; i < in.n; ++i) {
            b[i] = axialOf(axis, in.points[i], radial);
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    Points c;
    row.add(kEigen, [&] {
        const Axis axis;
        axialByEigen(in.points, axis.origin, axis.direction, c);
    });
#endif
    row.measure();
    row.expectSame(sameBits(a, b));
}

void toAxialRadialAsFloats(Row& row, const CurveInput& in) {
    std::vector<qel::TripletBase<float>> a;
    std::vector<qel::TripletBase<float>> b;
    row.add(kLibrary, [&] { in.curve.convertToART0(kOrigin, kDirection, a); });
    row.add(kPlain, [&] {
        const Axis axis;
        b.resize(in.n);
        Point radial;
        for (std::size_t i = 0; i < in.n; ++i) {
            b[i] = qel::TripletBase<float>(axialOf(axis, in.points[i], radial));
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void toAxialRadialInPlace(Row& row, const CurveInput& in) {
    row.addOnCopies(kLibrary, in.curve, in.bytes(),
                    [](ParametricCurve& curve) { curve.convertToART0(kOrigin, kDirection); });
    row.addOnCopies(kPlain, in.points, in.bytes(), [](Points& points) {
        const Axis axis;
        Point radial;
        for (Point& p : points) {
            p = axialOf(axis, p, radial);
        }
        Values s;
        keep(plain::arcValues(points, s));
    });
    row.measure();
}

void toAxialRadialAngle(Row& row, const CurveInput& in) {
    Points a;
    Points b;
    row.add(kLibrary, [&] { in.curve.convertToART(kOrigin, kDirection, a); });
    row.add(kPlain, [&] {
        const Axis axis;
        b.resize(in.n);
        Point before;
        b[0] = axialOf(axis, in.points[0], before);
        for (std::size_t i = 1; i < in.n; ++i) {
            Point radial;
            b[i] = axialOf(axis, in.points[i], radial);
            b[i].z = b[i - 1].z + turnBetween(axis, before, radial);
            before = radial;
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

// -- Rotation ----

void rotateByLoop(Points& points, const Point& centre, const Point& axis, double angle) {
    const Point u = plain::unit(axis);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double k = 1.0 - c;
    const Point row1(u.x * u.x * k + c, u.x * u.y * k - u.z * s, u.x * u.z * k + u.y * s);
    const Point row2(u.y * u.x * k + u.z * s, u.y * u.y * k + c, u.y * u.z * k - u.x * s);
    const Point row3(u.z * u.x * k - u.y * s, u.z * u.y * k + u.x * s, u.z * u.z * k + c);
    for (Point& p : points) {
        const Point v = p - centre;
        p = centre + Point(plain::dot(row1, v), plain::dot(row2, v), plain::dot(row3, v));
    }
}

void rotate(Row& row, const CurveInput& in) {
    const Point centre(1.0, 2.0, 3.0);
    const Point axis(1.0, 1.0, 1.0);
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.rotateAroundVector(centre, axis, 0.1); });
    Points points(in.points);
    row.add(kPlain, [&] { rotateByLoop(points, centre, axis, 0.1); });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    Points turned(in.points);
    row.add(kEigen, [&] { rotateByEigen(turned, centre, axis, 0.1); });
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
    namespace bg = boost::geometry;
    const BoostLine line = boostLine(in.points);
    BoostLine out(line);
    // A matrix with a shift: what a rotation about a point comes to.
    const bg::strategy::transform::matrix_transformer<double, 3, 3> transformer(
        0.6, -0.8, 0.0, 1.0, 0.8, 0.6, 0.0, 2.0, 0.0, 0.0, 1.0, 3.0, 0.0, 0.0, 0.0, 1.0);
    row.add(kBoost, [&] {
        for (std::size_t i = 0; i < line.size(); ++i) {
            transformer.apply(line[i], out[i]);
        }
    });
#endif
    addCopy(row, 2 * in.n * sizeof(Point));
    row.measure();
    ParametricCurve once(in.curve);
    once.rotateAroundVector(centre, axis, 0.1);
    points = in.points;
    rotateByLoop(points, centre, axis, 0.1);
    row.expectSame(sameBits(once.getCurve(), points));
}

void storeS(Row& row, const CurveInput& in) {
    ParametricCurve curve(in.curve);
    row.add(kLibrary, [&] { curve.storeSvaluetoXandXToY(); });
    Points points(in.points);
    row.add(kPlain, [&] {
        for (std::size_t i = 0; i < in.n; ++i) {
            points[i] = Point(in.svalues()[i], points[i].x, points[i].z);
        }
    });
    row.measure();
}

const bool registered = addCurveWork("to_axial_radial", toAxialRadial) &&
                        addCurveWork("to_axial_radial_as_floats", toAxialRadialAsFloats) &&
                        addCurveWork("to_axial_radial_in_place", toAxialRadialInPlace) &&
                        addCurveWork("to_axial_radial_angle", toAxialRadialAngle) &&
                        addCurveWork("rotate", rotate) && addCurveWork("store_s_in_x", storeS);

} // namespace
} // namespace qel_benchmark
