// Tangent, curvature, turning angle, area and orientation.

#include <qel/CurveShape.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using qel::computeCurveShape;
using qel::computeOrientation;
using qel::computeSignedArea;
using qel::CurveShapeFields;
using Values = std::vector<double>;

constexpr double kPi = 3.14159265358979323846;

struct Shape {
    explicit Shape(std::size_t n) : tangent(n), curvature(n, -1.0), angle(n, -1.0) {}

    CurveShapeFields fields() {
        CurveShapeFields out;
        out.tangent = tangent;
        out.curvature = curvature;
        out.turningAngle = angle;
        return out;
    }

    CurvePoints tangent;
    Values curvature;
    Values angle;
};

Shape shapeOf(const CurvePoints& curve) {
    Shape shape(curve.size());
    computeCurveShape(curve, shape.fields());
    return shape;
}

Shape shapeAt(const CurvePoints& curve, const Values& s) {
    Shape shape(s.size());
    computeCurveShape(curve, s, shape.fields());
    return shape;
}

void expectNear(const CurvePoint& a, const CurvePoint& b, double error) {
    EXPECT_NEAR(a.x, b.x, error);
    EXPECT_NEAR(a.y, b.y, error);
    EXPECT_NEAR(a.z, b.z, error);
}

CurvePoint onCircle(double radius, double angle) {
    return {radius * std::cos(angle), radius * std::sin(angle), 0.0};
}

// -- At vertices ----

TEST(CurveShape, FindsTheCircleThroughPointsOfAnyArc) {
    const double angles[] = {0.1, 0.5, 0.6, 1.7, 2.0, 2.9};
    for (const double radius : {1e-200, 1e-3, 1.0, 2.5, 1e200}) {
        CurvePoints arc;
        for (const double angle : angles) {
            arc.push_back(onCircle(radius, angle));
        }
        const Shape shape = shapeOf(arc);
        for (std::size_t i = 0; i < arc.size(); ++i) {
            EXPECT_NEAR(shape.curvature[i] * radius, 1.0, 1e-13) << radius;
            expectNear(shape.tangent[i], onCircle(1.0, angles[i] + kPi / 2), 1e-13);
            const bool isEnd = i == 0 || i + 1 == arc.size();
            const double turning = isEnd ? 0.0 : (angles[i + 1] - angles[i - 1]) / 2;
            EXPECT_NEAR(shape.angle[i], turning, 1e-13);
        }
    }
}

TEST(CurveShape, GoesOnThroughTheEndOfAClosedCurve) {
    const CurvePoints square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    const Shape shape = shapeOf(square);
    for (std::size_t i = 0; i < square.size(); ++i) {
        EXPECT_NEAR(shape.angle[i], kPi / 2, 1e-15);
        EXPECT_NEAR(shape.curvature[i], std::sqrt(2.0), 1e-15); // half the diagonal is the radius
    }
    expectNear(shape.tangent[0], CurvePoint(std::sqrt(0.5), -std::sqrt(0.5), 0), 1e-15);
    expectNear(shape.tangent[4], shape.tangent[0], 0.0);
}

TEST(CurveShape, CountsRepeatedPointsAsOne) {
    const CurvePoints curve = {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {2, 3, 1}};
    const CurvePoints repeated = {curve[0], curve[0], curve[1], curve[1],
                                  curve[1], curve[2], curve[3], curve[3]};
    const std::size_t original[] = {0, 0, 1, 1, 1, 2, 3, 3};
    const Shape expected = shapeOf(curve), shape = shapeOf(repeated);
    for (std::size_t i = 0; i < repeated.size(); ++i) {
        expectNear(shape.tangent[i], expected.tangent[original[i]], 0.0);
        EXPECT_EQ(shape.curvature[i], expected.curvature[original[i]]);
        EXPECT_EQ(shape.angle[i], expected.angle[original[i]]);
    }
}

TEST(CurveShape, HasNoCurvatureOnALine) {
    for (const CurvePoints& line :
         {CurvePoints{{0, 0, 0}, {0, 0, 2}}, CurvePoints{{0, 0, 0}, {0, 0, 1}, {0, 0, 5}}}) {
        const Shape shape = shapeOf(line);
        for (std::size_t i = 0; i < line.size(); ++i) {
            EXPECT_EQ(shape.tangent[i], CurvePoint(0, 0, 1));
            EXPECT_EQ(shape.curvature[i], 0.0);
            EXPECT_EQ(shape.angle[i], 0.0);
        }
    }
}

TEST(CurveShape, IsZeroOnACurveWithoutLength) {
    const Shape shape = shapeOf(CurvePoints(3, CurvePoint(1, 2, 3)));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(shape.tangent[i], CurvePoint(0, 0, 0));
        EXPECT_EQ(shape.curvature[i], 0.0);
        EXPECT_EQ(shape.angle[i], 0.0);
    }
}

TEST(CurveShape, TurnsStraightBack) {
    const Shape shape = shapeOf({{0, 0, 0}, {2, 0, 0}, {1, 0, 0}});
    EXPECT_NEAR(shape.angle[1], kPi, 1e-15);
    EXPECT_EQ(shape.curvature[1], 0.0); // on a line
    EXPECT_NEAR(shape.tangent[1].dot(shape.tangent[1]), 1.0, 1e-15);
}

TEST(CurveShape, GivesUnitTangentsAndFiniteCurvaturesOnEveryShape) {
    for (const CurveShape& curveShape : curveShapes()) {
        const std::string name = curveShape.name;
        if (name == "nan_among" || name == "equal_points") {
            continue;
        }
        const CurvePoints curve = curveShape.make(500);
        const Shape shape = shapeOf(curve);
        for (std::size_t i = 0; i < curve.size(); ++i) {
            ASSERT_NEAR(shape.tangent[i].dot(shape.tangent[i]), 1.0, 1e-14) << name << " " << i;
            ASSERT_GE(shape.curvature[i], 0.0) << name << " " << i;
            ASSERT_TRUE(std::isfinite(shape.curvature[i]) || name == "denormal") << name;
            ASSERT_TRUE(shape.angle[i] >= 0.0 && shape.angle[i] <= kPi) << name << " " << i;
        }
    }
}

TEST(CurveShape, WritesOnlyWhatIsAskedFor) {
    const CurvePoints curve = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    Values curvature(3);
    CurveShapeFields out;
    out.curvature = curvature;
    computeCurveShape(curve, out);
    EXPECT_NEAR(curvature[1], std::sqrt(2.0), 1e-15);
}

// -- At s ----

TEST(CurveShape, IsLinearBetweenTheEndsOfAnEdge) {
    const CurvePoints curve = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 1, 0}};
    const Shape vertices = shapeOf(curve);
    const Shape shape = shapeAt(curve, {0.5, 1.0 / 3.0, -1.0, 2.0});
    const CurvePoint middle = vertices.tangent[1] + vertices.tangent[2];
    expectNear(shape.tangent[0], middle * (1.0 / std::sqrt(middle.dot(middle))), 1e-15);
    EXPECT_NEAR(shape.curvature[0], 0.5 * (vertices.curvature[1] + vertices.curvature[2]), 1e-15);
    EXPECT_EQ(shape.angle[0], 0.0);
    EXPECT_NEAR(shape.angle[1], kPi / 2, 1e-15); // exactly at a vertex
    expectNear(shape.tangent[2], vertices.tangent[0], 0.0);
    expectNear(shape.tangent[3], vertices.tangent[3], 0.0);
}

// -- Arguments ----

TEST(CurveShape, RefusesBadArgumentsBeforeItWrites) {
    CurvePoints curve = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    Shape shape(2);
    EXPECT_THAT([&] { computeCurveShape(curve, shape.fields()); },
                throwsInvalid("CurveShape", "computeCurveShape",
                              "The output tangent has 2 elements where 3 are needed."));
    const Values s = {0.5, std::nan("")};
    EXPECT_THAT([&] { computeCurveShape(curve, s, shape.fields()); },
                throwsInvalid("CurveShape", "computeCurveShape", "The s-value 1 is NaN."));
    EXPECT_EQ(shape.curvature[0], -1.0);
    CurveShapeFields own;
    own.tangent = curve;
    EXPECT_THAT([&] { computeCurveShape(curve, own); },
                throwsInvalid("CurveShape", "computeCurveShape",
                              "The output tangent shares memory with an input."));
    Values both(3);
    CurveShapeFields same;
    same.curvature = both;
    same.turningAngle = both;
    EXPECT_THAT([&] { computeCurveShape(curve, same); },
                throwsInvalid("CurveShape", "computeCurveShape",
                              "The output turningAngle shares memory with the output curvature."));
}

// -- Area ----

TEST(SignedArea, IsPositiveCounterClockwise) {
    const CurvePoints square = {{1, 1, 5}, {3, 1, 6}, {3, 4, 7}, {1, 4, 8}, {1, 1, 5}};
    const CurvePoints back(square.rbegin(), square.rend());
    EXPECT_EQ(computeSignedArea(square), 6.0);
    EXPECT_EQ(computeSignedArea(back), -6.0);
    EXPECT_EQ(computeOrientation(square), 1);
    EXPECT_EQ(computeOrientation(back), -1);
}

TEST(SignedArea, ClosesAnOpenCurveByItsChord) {
    EXPECT_EQ(computeSignedArea(CurvePoints{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}), 2.0);
}

TEST(SignedArea, CountsPartsAsOftenAsTheCurveWindsAroundThem) {
    const CurvePoints eight = {{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {0, 0, 0}};
    EXPECT_EQ(computeSignedArea(eight), 0.0);
    EXPECT_EQ(computeOrientation(eight), 0);
    CurvePoints twice = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}};
    twice.insert(twice.end(), {{1, 0, 0}, {1, 1, 0}, {0, 0, 0}});
    EXPECT_EQ(computeSignedArea(twice), 1.0);
}

TEST(SignedArea, ReachesTheEndsOfTheRangeOfDoubles) {
    const auto square = [](double side) {
        return CurvePoints{{0, 0, 0}, {side, 0, 0}, {side, side, 0}, {0, side, 0}};
    };
    EXPECT_EQ(computeSignedArea(square(0x1p500)), 0x1p1000);
    EXPECT_EQ(computeSignedArea(square(0x1p-530)), 0x1p-1060);
    EXPECT_EQ(computeSignedArea(square(0x1p1000)), std::numeric_limits<double>::infinity());
    EXPECT_EQ(computeOrientation(square(0x1p1000)), 1);
    EXPECT_EQ(computeOrientation(square(std::numeric_limits<double>::denorm_min())), 1);
}

// Three points on a line but for the last bits of one, far from the origin.
TEST(Orientation, IsTheSignOfTheExactArea) {
    const double step = 0x1p-42; // between doubles near 1024
    int signs[3] = {};
    for (int i = -4; i <= 4; ++i) {
        for (int j = -4; j <= 4; ++j) {
            const CurvePoints triangle = {{1024, 1024, 0},
                                          {1024 + 3, 1024 + 3, 0},
                                          {1024 + 1 + i * step, 1024 + 1 + j * step, 0}};
            const int expected = (j > i) - (j < i); // above the diagonal is to its left
            ASSERT_EQ(computeOrientation(triangle), expected) << i << " " << j;
            ++signs[expected + 1];
        }
    }
    EXPECT_EQ(signs[1], 9);
}

TEST(Orientation, IsZeroForCurvesThatGoOutAndBack) {
    for (const char* name : {"rough_wave", "spiral", "many_laps", "huge_offset", "comb"}) {
        CurvePoints curve = curveShape(name).make(300);
        const CurvePoints back(curve.rbegin(), curve.rend());
        curve.insert(curve.end(), back.begin(), back.end());
        EXPECT_EQ(computeOrientation(curve), 0) << name;
        curve[150].x = std::nextafter(curve[150].x, 1e300);
        const double dy = curve[149].y - curve[151].y;
        EXPECT_EQ(computeOrientation(curve), (dy < 0) - (dy > 0)) << name;
    }
}

} // namespace
