// Each named curve is what its name promises.
#include "support/Shapes.h"

#include <cfloat>
#include <cmath>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "support/Bits.h"

using namespace qel_test;

namespace {

constexpr std::size_t kCount = 1000;

CurvePoints made(const char* name) {
    return curveShape(name).make(kCount);
}

double distance(const CurvePoint& a, const CurvePoint& b) {
    return std::sqrt((a - b).dot(a - b));
}

bool isFinite(const CurvePoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

std::size_t distinct(const CurvePoints& points, double CurvePoint::*component) {
    std::set<double> values;
    for (const CurvePoint& p : points) {
        values.insert(p.*component);
    }
    return values.size();
}

class CurveShapeTest : public testing::TestWithParam<CurveShape> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(Shapes, CurveShapeTest, testing::ValuesIn(curveShapes()), nameOfShape);

TEST_P(CurveShapeTest, HasAsManyVerticesAsAsked) {
    for (const std::size_t n : {0u, 1u, 2u, 3u, 4u, 7u, 100u, 1001u}) {
        EXPECT_EQ(GetParam().make(n).size(), n);
        EXPECT_EQ(GetParam().makeBeside(n).size(), n);
    }
}

TEST_P(CurveShapeTest, IsTheSameEachTime) {
    const CurvePoints points = GetParam().make(kCount);
    EXPECT_TRUE(sameBitsInAll(points, GetParam().make(kCount)));
    EXPECT_TRUE(sameBitsInAll(GetParam().makeBeside(kCount), GetParam().makeBeside(kCount)));
    EXPECT_TRUE(sameBitsInAll(probesOf(GetParam(), points, 10), probesOf(GetParam(), points, 10)));
}

TEST_P(CurveShapeTest, IsFiniteUnlessNaNIsPromised) {
    std::size_t notFinite = 0;
    for (const CurvePoint& p : GetParam().make(kCount)) {
        notFinite += isFinite(p) ? 0 : 1;
    }
    EXPECT_EQ(notFinite, std::string(GetParam().name) == "nan_among" ? 1u : 0u);
}

TEST_P(CurveShapeTest, MakesACurve) {
    for (const std::size_t n : {2u, 3u, 1000u}) {
        const qel::ParametricCurve curve(GetParam().make(n), qel::ParametricCurve::dim3D);
        EXPECT_EQ(curve.getSize(), n);
    }
}

TEST_P(CurveShapeTest, HasFiniteProbesBesideItsVertices) {
    const CurvePoints points = GetParam().make(kCount);
    const double extent = extentOf(points);
    const CurvePoints probes = probesOf(GetParam(), points, 100);
    ASSERT_EQ(probes.size(), 100u);
    for (const CurvePoint& q : probes) {
        ASSERT_TRUE(isFinite(q));
        double nearest = HUGE_VAL;
        for (const CurvePoint& p : points) {
            nearest = std::fmin(nearest, distance(p, q));
        }
        EXPECT_LE(nearest, std::string(GetParam().name) == "circle" ? 10001.0 : 0.02 * extent);
    }
}

TEST(CurveShapes, HaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const CurveShape& shape : curveShapes()) {
        EXPECT_TRUE(names.insert(shape.name).second) << shape;
        EXPECT_EQ(&curveShape(shape.name), &shape);
    }
}

TEST(CurveShapes, NoProbesOfNoCurve) {
    EXPECT_TRUE(probesOf(curveShape("helix"), {}, 10).empty());
}

TEST(CurveShapes, TheSectionIsClosedAndItsNeighboursAreNear) {
    const CurvePoints points = made("smooth_section");
    EXPECT_LT(distance(points.front(), points.back()), 0.01);
    for (std::size_t i = 1; i < kCount; ++i) {
        EXPECT_LT(distance(points[i - 1], points[i]), 0.01);
    }
}

TEST(CurveShapes, NeighboursAreFarApartInRandomOrderAndZigZag) {
    for (const char* name : {"random_order", "zig_zag"}) {
        const CurvePoints points = made(name);
        double sum = 0.0;
        for (std::size_t i = 1; i < kCount; ++i) {
            sum += distance(points[i - 1], points[i]);
        }
        EXPECT_GT(sum / kCount, 0.5) << name;
    }
}

TEST(CurveShapes, TheZigZagGrows) {
    const CurvePoints points = made("growing_zig_zag");
    for (std::size_t i = 1; i < kCount; ++i) {
        EXPECT_GT(std::abs(points[i].y), std::abs(points[i - 1].y));
        EXPECT_LE(points[i].y * points[i - 1].y, 0.0);
    }
}

TEST(CurveShapes, WindingsLieAsCloseAsVerticesAlong) {
    const CurvePoints points = made("spiral");
    const double along = distance(points[499], points[500]);
    double across = HUGE_VAL;
    for (std::size_t i = 0; i < kCount; ++i) {
        if (i < 490 || i > 510) {
            across = std::fmin(across, distance(points[i], points[500]));
        }
    }
    EXPECT_LT(across, 3.0 * along);
    EXPECT_GT(across, along / 3.0);
}

TEST(CurveShapes, LapsRepeat) {
    const CurvePoints points = made("many_laps");
    std::size_t quadrants = 0; // changes from one quadrant to the next
    for (std::size_t i = 1; i < kCount; ++i) {
        EXPECT_NEAR(distance(points[i], CurvePoint()), 1.0, 2e-3);
        quadrants += (points[i].x > 0.0) != (points[i - 1].x > 0.0) ? 1u : 0u;
        quadrants += (points[i].y > 0.0) != (points[i - 1].y > 0.0) ? 1u : 0u;
    }
    EXPECT_GE(quadrants, 4u * 11u);
}

TEST(CurveShapes, TeethOfTheCombsInterlock) {
    const CurvePoints below = made("comb");
    const CurvePoints above = curveShape("comb").makeBeside(kCount);
    for (std::size_t i = 4; i + 4 < kCount; i += 4) {
        EXPECT_EQ(below[i].x, below[i + 1].x);
        EXPECT_EQ(below[i + 1].y - below[i].y, 1.0);
        EXPECT_GT(above[i].x, below[i + 2].x);
        EXPECT_LT(above[i + 2].x, below[i + 4].x);
        EXPECT_LT(above[i + 1].y, below[i + 1].y);
    }
}

TEST(CurveShapes, TheClusterIsDense) {
    std::size_t inside = 0;
    for (const CurvePoint& p : made("cluster")) {
        inside += p.x <= 1e-6 && p.y <= 1e-6 && p.z <= 1e-6 ? 1 : 0;
    }
    EXPECT_EQ(inside, kCount - kCount / 100);
}

TEST(CurveShapes, EqualMeansEqual) {
    const CurvePoints points = made("equal_points");
    EXPECT_TRUE(sameBitsInAll(points, CurvePoints(kCount, points[0])));
    EXPECT_EQ(distinct(made("equal_x"), &CurvePoint::x), 1u);
    EXPECT_EQ(distinct(made("equal_x"), &CurvePoint::y), kCount);
}

TEST(CurveShapes, TheLineIsStraight) {
    for (const CurvePoint& p : made("line")) {
        EXPECT_EQ(p.y, 2.0 * p.x);
        EXPECT_NEAR(p.z, 3.0 * p.x, 1e-15);
    }
}

TEST(CurveShapes, TheProbesOfTheCircleAreEquallyFarFromAllVertices) {
    const CurvePoints points = made("circle");
    const CurvePoints probes = probesOf(curveShape("circle"), points, 4);
    std::set<double> above;
    for (const CurvePoint& p : points) {
        above.insert((p - probes[1]).dot(p - probes[1]));
        EXPECT_NEAR(distance(p, probes[2]), 1.0, 1e-15);
    }
    EXPECT_EQ(above.size(), 1u);
}

TEST(CurveShapes, TwoScalesLieSixOrdersApart) {
    const CurvePoints points = made("two_scales");
    EXPECT_GT(distance(points[0], points[1]), 1e-4);
    EXPECT_LT(distance(points[499], points[500]), 1e-9);
    EXPECT_GT(distance(points[499], points[500]), 0.0);
}

TEST(CurveShapes, DenormalMeansDenormal) {
    for (const CurvePoint& p : made("denormal")) {
        EXPECT_LT(std::abs(p.x), DBL_MIN);
        EXPECT_LT(std::abs(p.y), DBL_MIN);
    }
    EXPECT_GT(distinct(made("denormal"), &CurvePoint::x), 100u);
}

TEST(CurveShapes, TheHugeOffsetRoundsTheSection) {
    const CurvePoints points = made("huge_offset");
    const CurvePoints section = made("smooth_section");
    for (std::size_t i = 0; i < kCount; ++i) {
        EXPECT_NEAR(points[i].x - 1e9, section[i].x, 1e-6);
    }
    EXPECT_LT(distinct(points, &CurvePoint::x), distinct(section, &CurvePoint::x));
}
