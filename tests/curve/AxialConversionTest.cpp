// Coordinates about an axis, rotation, and s as a coordinate.

#include <cmath>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

constexpr double kPi = 3.141592653589793;
const FloatPoint kOrigin(0, 0, 0);
const FloatPoint kAlongZ(0, 0, 2);
const Points kSquare{{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}};

ParametricCurve through(const Points& points) {
    return ParametricCurve(points, ParametricCurve::dim3D);
}

// -- Case by case ----

TEST(AxialConversion, NormalisesTheDirectionFirst) {
    Points out;
    through({{3, 0, 5}, {0, 0, 1}}).convertToART0(kOrigin, kAlongZ, out);
    EXPECT_EQ(out, Points({{5, 3, 0}, {1, 0, 0}})); // the second lies on the axis
}

TEST(AxialConversion, AngleAccumulatesFromTheReference) {
    Points out;
    through(kSquare).convertToART(kOrigin, kAlongZ, out, 0, 0.0);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(out[i].x, 0.0);
        EXPECT_EQ(out[i].y, 1.0);
        EXPECT_NEAR(out[i].z, static_cast<double>(i) * kPi / 2, 1e-15);
    }
    through(kSquare).convertToART(kOrigin, kAlongZ, out, 2, 1.0);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_NEAR(out[i].z, 1.0 + (static_cast<double>(i) - 2.0) * kPi / 2, 1e-15);
    }
    EXPECT_EQ(out[2].z, 1.0);
}

TEST(AxialConversion, AngleIsNotWrapped) {
    Points turns;
    for (int k = 0; k <= 40; ++k) {
        turns.emplace_back(std::cos(k * kPi / 10), std::sin(k * kPi / 10), 0.1 * k);
    }
    Points out;
    through(turns).convertToART(kOrigin, kAlongZ, out, 0, 0.5);
    EXPECT_NEAR(out.back().z, 0.5 + 4 * kPi, 1e-12);
}

TEST(AxialConversion, APointOnTheAxisTurnsNothing) {
    Points out;
    through({{1, 0, 0}, {0, 0, 1}, {0, 1, 2}}).convertToART(kOrigin, kAlongZ, out);
    EXPECT_EQ(out, Points({{0, 1, 0}, {1, 0, 0}, {2, 1, 0}}));
}

// Half a turn is pi, of either sense: it turns on from there, not back.
TEST(AxialConversion, HalfATurnIsPi) {
    Points out;
    through({{1, 0, 0}, {-2, 0, 0}, {3, 0, 0}}).convertToART(kOrigin, kAlongZ, out);
    EXPECT_EQ(out, Points({{0, 1, 0}, {0, 2, kPi}, {0, 3, 2 * kPi}}));
    through(kSquare).convertToART(kOrigin, kAlongZ, out, 0, -0.0);
    EXPECT_TRUE(std::signbit(out[0].z)); // the reference takes its angle as it is given
}

// The marker makes a direction very long, which is no obstacle: it is normalised in double.
TEST(AxialConversion, AMarkerInTheDirectionIsALargeNumber) {
    constexpr float kLargest = std::numeric_limits<float>::max();
    const ParametricCurve curve = through(kSquare);
    Points out;
    curve.convertToART0(kOrigin, FloatPoint(0, kLargest, 0), out);
    EXPECT_EQ(curve.getAxisDirection(), Point(0, 1, 0));
    EXPECT_EQ(out[1], Point(1, 0, 0));
}

TEST(AxialConversion, RefusesADirectionOfNoLength) {
    const CurveState before = stateOf(through(kSquare));
    ParametricCurve curve = through(kSquare);
    const FloatPoint none(0, 0, 0);
    const auto refused = throwsInvalid("ParametricCurve", "setAxis",
                                       "Axis vector definition insignificant. Axis vector= 0,0,0");
    Points out;
    FloatPoints narrow;
    // Outputs are cleared before the axis is looked at.
    const auto expectCleared = [&](auto convert) {
        out.assign(3, Point(1, 1, 1));
        narrow.assign(3, FloatPoint(1, 1, 1));
        EXPECT_THAT([&] { convert(out); }, refused);
        EXPECT_THAT([&] { convert(narrow); }, refused);
        EXPECT_TRUE(out.empty());
        EXPECT_TRUE(narrow.empty());
    };
    expectCleared([&](auto& converted) { curve.convertToART0(kOrigin, none, converted); });
    expectCleared([&](auto& converted) { curve.convertToART(kOrigin, none, converted); });
    expectCleared([&](auto& converted) { curve.convertToART(kOrigin, none, converted, 1, 0.0); });
    EXPECT_THAT([&] { curve.convertToART0(kOrigin, none); }, refused);
    EXPECT_THAT([&] { curve.convertToART(kOrigin, none); }, refused);
    EXPECT_THAT([&] { curve.convertToART(kOrigin, none, 1, 0.0); }, refused);
    EXPECT_EQ(stateOf(curve), before); // nothing stored, the axis included
    // Squares that vanish in single precision leave no length either.
    EXPECT_THAT(
        [&] { curve.convertToART0(kOrigin, FloatPoint(1.25e-30f, -2e-30f, 3.3333333e-30f), out); },
        throwsInvalid("ParametricCurve", "setAxis",
                      "Axis vector definition insignificant. "
                      "Axis vector= 1.25e-30,-2e-30,3.33333e-30"));
    curve.convertToART0(kOrigin, FloatPoint(1e-18f, 0, 0), out); // short is no obstacle
}

// Under the name of the extrapolation, and before anything else.
TEST(AxialConversion, RefusesAReferenceThatIsNoPoint) {
    ParametricCurve curve = through(kSquare);
    const CurveState before = stateOf(curve);
    for (const int id : {5, -1, std::numeric_limits<int>::min()}) {
        const auto refused =
            throwsInternal("ParametricCurve", "expandCurve",
                           "Referent id out of bounds. PointId=" + std::to_string(id));
        Points out{{1, 1, 1}};
        FloatPoints narrow{{1, 1, 1}};
        EXPECT_THAT([&] { curve.convertToART(kOrigin, FloatPoint(), out, id, 0.0); }, refused);
        EXPECT_THAT([&] { curve.convertToART(kOrigin, kAlongZ, narrow, id, 0.0); }, refused);
        EXPECT_THAT([&] { curve.convertToART(kOrigin, kAlongZ, id, 0.0); }, refused);
        EXPECT_EQ(out.size(), 1u);
        EXPECT_EQ(narrow.size(), 1u);
        EXPECT_EQ(stateOf(curve), before);
    }
}

TEST(AxialConversion, ConstConversionsStoreTheAxis) {
    const ParametricCurve curve = through(kSquare);
    Points out;
    curve.convertToART0(FloatPoint(1, 2, 3), FloatPoint(0, 3, 4), out);
    EXPECT_EQ(curve.getAxisPoint(), Point(1, 2, 3));
    EXPECT_EQ(curve.getAxisDirection(), Point(0, 0.6, 0.8));
    FloatPoints narrow;
    curve.convertToART(FloatPoint(4, 5, 6), FloatPoint(0, 0, 4), narrow);
    EXPECT_EQ(curve.getAxisPoint(), Point(4, 5, 6));
    EXPECT_EQ(curve.getAxisDirection(), Point(0, 0, 1));
}

// -- Against the reference ----

struct ReferenceAxis {
    Point point;
    Point direction;

    ReferenceAxis(const FloatPoint& p, const FloatPoint& d)
        : point(static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)),
          direction(referenceUnit(
              {static_cast<double>(d.x), static_cast<double>(d.y), static_cast<double>(d.z)})) {}

    static Point cross(const Point& a, const Point& b) {
        return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }

    Point converted(const Point& p, Point& radial) const {
        const Point v = p - point;
        radial = referenceUnit(cross(referenceUnit(cross(direction, v)), direction));
        return {referenceDot(v, direction), referenceDot(v, radial), 0.0};
    }

    double turn(const Point& from, const Point& to) const {
        const double y = referenceDot(to, cross(direction, from));
        const double x = referenceDot(to, from);
        return y == 0.0 && x == 0.0 ? 0.0 : std::atan2(y, x);
    }
};

FloatPoint randomFloats(RandomCurves& make, double size) {
    return {static_cast<float>(make.uniform(-size, size)),
            static_cast<float>(make.uniform(-size, size)),
            static_cast<float>(make.uniform(-size, size))};
}

// The caller's axis may lie in the vector that the result replaces.
TEST(AxialConversion, TheAxisMayStandInTheOutput) {
    Points helix;
    for (int i = 0; i < 300; ++i) {
        helix.emplace_back(std::cos(0.1 * i), std::sin(0.1 * i), 0.01 * i);
    }
    const ParametricCurve curve = through(helix);
    const FloatPoint point(0.25F, 0.5F, 0.75F);
    const FloatPoint direction(0.0F, 1.0F, 2.0F);
    FloatPoints expected;
    curve.convertToART0(point, direction, expected);
    FloatPoints out{point, direction};
    curve.convertToART0(out[0], out[1], out);
    EXPECT_TRUE(sameBitsInAll(out, expected));

    curve.convertToART(point, direction, expected, 7, 0.5);
    out = {point, direction};
    curve.convertToART(out[0], out[1], out, 7, 0.5);
    EXPECT_TRUE(sameBitsInAll(out, expected));
    EXPECT_EQ(curve.getAxisPoint(), Point(point));
}

TEST(AxialConversion, MatchesReferenceBitForBit) {
    RandomCurves make(61);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        const Points& p = before.points;
        const FloatPoint point = make.index(3) == 0 ? kOrigin : randomFloats(make, 2.0);
        const FloatPoint direction = make.index(3) == 0 ? kAlongZ : randomFloats(make, 5.0);
        const ReferenceAxis axis(point, direction);

        Points art0(p.size());
        std::vector<Point> radials(p.size());
        for (std::size_t i = 0; i < p.size(); ++i) {
            art0[i] = axis.converted(p[i], radials[i]);
        }
        const std::size_t reference = make.index(p.size());
        const double theta0 = make.uniform(-7.0, 7.0);
        const auto withAngles = [&](std::size_t from, double theta) {
            Points art(art0);
            art[from].z = theta;
            for (std::size_t i = from + 1; i < p.size(); ++i) {
                art[i].z = art[i - 1].z + axis.turn(radials[i - 1], radials[i]);
            }
            for (std::size_t i = from; i-- > 0;) {
                art[i].z = art[i + 1].z + axis.turn(radials[i + 1], radials[i]);
            }
            return art;
        };
        const Points art = withAngles(reference, theta0);
        const int refId = static_cast<int>(reference);

        Points out{{9, 9, 9}};
        FloatPoints narrow{{9, 9, 9}};
        curve.convertToART0(point, direction, out);
        EXPECT_TRUE(sameBitsInAll(out, art0));
        curve.convertToART0(point, direction, narrow);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(art0)));
        curve.convertToART(point, direction, out, refId, theta0);
        EXPECT_TRUE(sameBitsInAll(out, art));
        curve.convertToART(point, direction, narrow, refId, theta0);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(art)));
        curve.convertToART(point, direction, out);
        EXPECT_TRUE(sameBitsInAll(out, withAngles(0, 0.0)));
        curve.convertToART(point, direction, narrow);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(withAngles(0, 0.0))));

        // In place: with the angle s, length and parametrization stay, without it they are
        // computed.
        CurveState expected = before;
        expected.axisPoint = axis.point;
        expected.axisDirection = axis.direction;
        expected.points = art;
        ParametricCurve withAngle(curve);
        withAngle.convertToART(point, direction, refId, theta0);
        EXPECT_EQ(stateOf(withAngle), expected);
        expected.points = withAngles(0, 0.0);
        ParametricCurve fromFirst(curve);
        fromFirst.convertToART(point, direction);
        EXPECT_EQ(stateOf(fromFirst), expected);
        recompute(expected, art0);
        expected.parametrization = ParametricCurve::parametrizationComputed;
        curve.convertToART0(point, direction);
        EXPECT_EQ(stateOf(curve), expected);
    }
}

// -- Rotation ----

TEST(AxialConversion, RotationTurnsByTheRightHandRule) {
    ParametricCurve curve = through({{1, 0, 0}, {0, 0, 7}});
    curve.rotateAroundVector(Point(0, 0, 0), Point(0, 0, 1), kPi / 2);
    EXPECT_NEAR(curve.getCurve()[0].x, 0.0, 1e-15);
    EXPECT_NEAR(curve.getCurve()[0].y, 1.0, 1e-15);
    EXPECT_EQ(curve.getCurve()[1], Point(0, 0, 7));
}

Points referenceRotated(const Points& p, const Point& o, const Point& axis, double angle) {
    const Point u = referenceUnit(axis);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double C = 1 - c;
    const double m[3][3] = {{u.x * u.x * C + c, u.x * u.y * C - u.z * s, u.x * u.z * C + u.y * s},
                            {u.y * u.x * C + u.z * s, u.y * u.y * C + c, u.y * u.z * C - u.x * s},
                            {u.z * u.x * C - u.y * s, u.z * u.y * C + u.x * s, u.z * u.z * C + c}};
    Points turned;
    for (const Point& q : p) {
        const double x = q.x - o.x;
        const double y = q.y - o.y;
        const double z = q.z - o.z;
        turned.emplace_back(o.x + (m[0][0] * x + m[0][1] * y + m[0][2] * z),
                            o.y + (m[1][0] * x + m[1][1] * y + m[1][2] * z),
                            o.z + (m[2][0] * x + m[2][1] * y + m[2][2] * z));
    }
    return turned;
}

// s, length, axis and every flag stay as they were.
TEST(AxialConversion, RotationMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        RandomCurves make(62);
        for (int round = 0; round < 2000 && !HasFailure(); ++round) {
            SCOPED_TRACE(round);
            ParametricCurve curve = make.curve();
            CurveState expected = stateOf(curve);
            const Point centre(make.uniform(-2, 2), make.uniform(-2, 2), make.uniform(-2, 2));
            Point axis(make.uniform(-2, 2), make.uniform(-2, 2), make.uniform(-2, 2));
            if (make.index(10) == 0) {
                axis = make.index(2) == 0 ? Point() : Point(kMarker, 1, 0);
            }
            const double angle = make.uniform(-7, 7);
            expected.points = referenceRotated(expected.points, centre, axis, angle);
            curve.rotateAroundVector(centre, axis, angle);
            EXPECT_EQ(stateOf(curve), expected);
        }
    });
}

// A zero axis is used as it is: what is left of the matrix is the cosine.
TEST(AxialConversion, RotationAboutAZeroAxisScales) {
    ParametricCurve curve = through({{1, 2, 3}, {0, 0, 0}});
    curve.rotateAroundVector(Point(), Point(), kPi);
    EXPECT_EQ(curve.getCurve()[0], Point(-1, -2, -3));
}

// -- s as a coordinate ----

TEST(AxialConversion, StoringSMovesXToYAndKeepsZ) {
    ParametricCurve curve(FloatPoints{{3, 4, 5}, {6, 7, 8}}, Values{0.25, 0.75},
                          ParametricCurve::dim3D);
    CurveState expected = stateOf(curve);
    expected.points = {{0.25, 3, 5}, {0.75, 6, 8}};
    curve.storeSvaluetoXandXToY();
    EXPECT_EQ(stateOf(curve), expected);
}

} // namespace
