// Crossings of a curve with a line in the plane, and with a plane in space.

#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/CurveCrossings.h>

#include "CrossingMatchers.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using qel::CurveView;
using qel::findCrossingsWithLine;
using qel::findCrossingsWithPlane;
using qel::findCrossingsWithSegment;
using testing::ElementsAre;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Crossings withLine(const Points& curve, const Point& a, const Point& b) {
    const std::vector<double> svalues = indices(curve.size());
    return findCrossingsWithLine(CurveView(curve, svalues), a, b);
}

Crossings withPlane(const Points& curve, const Point& point, const Point& normal) {
    const std::vector<double> svalues = indices(curve.size());
    return findCrossingsWithPlane(CurveView(curve, svalues), point, normal);
}

// -- Line ----

TEST(FindCrossingsWithLine, AreFoundBeyondBothPoints) {
    const Points wave{{0, 1, 0}, {1, -1, 0}, {2, 1, 0}, {3, -1, 0}};
    EXPECT_THAT(withLine(wave, {1, 0, 0}, {2, 0, 0}),
                ElementsAre(pointAt({0.5, 0, 0}, 0.5, -0.5, 0, 0),
                            pointAt({1.5, 0, 0}, 1.5, 0.5, 1, 0),
                            pointAt({2.5, 0, 0}, 2.5, 1.5, 2, 0)));
    EXPECT_TRUE(withLine(wave, {0, 2, 0}, {1, 2, 0}).empty());
}

TEST(FindCrossingsWithLine, ThicknessOfASection) {
    const Points section{{1, 0, 0}, {0.5, 0.25, 0}, {0, 0, 0}, {0.5, -0.125, 0}, {1, 0, 0}};
    const Crossings faces = withLine(section, {0.25, 0, 0}, {0.25, 1, 0});
    ASSERT_EQ(faces.size(), 2U);
    EXPECT_EQ(faces[0].otherBegin - faces[1].otherBegin, 0.1875);
}

TEST(FindCrossingsWithLine, CountsAVertexOnceWithTheLowerEdge) {
    const Points bent{{0, -1, 0}, {1, 0, 0}, {2, 3, 0}};
    EXPECT_THAT(withLine(bent, {0, 0, 0}, {4, 0, 0}),
                ElementsAre(pointAt({1, 0, 0}, 1, 0.25, 0, 0)));
    const Points touching{{0, 0, 0}, {1, 2, 0}, {2, 0, 0}, {2, 0, 3}, {3, 1, 0}};
    EXPECT_THAT(withLine(touching, {0, 0, 0}, {4, 0, 0}),
                ElementsAre(pointAt({0, 0, 0}, 0, 0, 0, 0), pointAt({2, 0, 0}, 2, 0.5, 1, 0)));
}

TEST(FindCrossingsWithLine, GivesStretchesUpToWhereTheyTurn) {
    const Points flat{{0, 1, 0}, {1, 0, 0}, {2, 0, 0}, {4, 0, 0}, {5, 1, 0}};
    EXPECT_THAT(withLine(flat, {0, 0, 0}, {4, 0, 0}),
                ElementsAre(overlap({1, 0, 0}, {4, 0, 0}, {1, 3}, {0.25, 1}, 1, 0)));
    const Points spike{{0, 0, 0}, {3, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    EXPECT_THAT(withLine(spike, {4, 0, 0}, {0, 0, 0}),
                ElementsAre(overlap({0, 0, 0}, {3, 0, 0}, {0, 1}, {1, 0.25}, 0, 0),
                            overlap({3, 0, 0}, {1, 0, 0}, {1, 2}, {0.25, 0.75}, 1, 0),
                            overlap({1, 0, 0}, {2, 0, 0}, {2, 4}, {0.75, 0.5}, 3, 0)));
    const Points upright{{0, 0, 0}, {0, 3, 0}, {0, 1, 0}};
    EXPECT_THAT(withLine(upright, {0, 0, 0}, {0, 4, 0}),
                ElementsAre(overlap({0, 0, 0}, {0, 3, 0}, {0, 1}, {0, 0.75}, 0, 0),
                            overlap({0, 3, 0}, {0, 1, 0}, {1, 2}, {0.75, 0.25}, 1, 0)));
}

TEST(FindCrossingsWithLine, TheClosingVertexIsOnePlace) {
    const Points diamond{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {1, -1, 0}, {0, 0, 0}};
    EXPECT_THAT(withLine(diamond, {0, 0, 0}, {0, 1, 0}),
                ElementsAre(pointAt({0, 0, 0}, 0, 0, 0, 0)));
    const Points beginsOnLine{{0, 0, 0}, {0, 2, 0}, {1, 1, 0}, {0, 0, 0}};
    EXPECT_THAT(withLine(beginsOnLine, {0, 0, 0}, {0, 1, 0}),
                ElementsAre(overlap({0, 0, 0}, {0, 2, 0}, {0, 1}, {0, 2}, 0, 0)));
    const Points endsOnLine{{0, 0, 0}, {1, 1, 0}, {0, 2, 0}, {0, 0, 0}};
    EXPECT_THAT(withLine(endsOnLine, {0, 0, 0}, {0, 1, 0}),
                ElementsAre(overlap({0, 2, 0}, {0, 0, 0}, {2, 3}, {2, 0}, 2, 0)));
    const Points both{{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, -1, 0}, {0, 0, 0}};
    EXPECT_THAT(withLine(both, {0, 0, 0}, {0, 1, 0}),
                ElementsAre(overlap({0, 0, 0}, {0, 1, 0}, {0, 1}, {0, 1}, 0, 0),
                            overlap({0, -1, 0}, {0, 0, 0}, {3, 4}, {-1, 0}, 3, 0)));
}

TEST(FindCrossingsWithLine, OfACurveThatIsAPoint) {
    const Points point(3, Point(1, 1, 0));
    EXPECT_THAT(withLine(point, {0, 0, 0}, {2, 2, 0}),
                ElementsAre(pointAt({1, 1, 0}, 0, 0.5, 0, 0)));
    EXPECT_TRUE(withLine(point, {0, 0, 0}, {2, 3, 0}).empty());
}

TEST(FindCrossingsWithLine, RefusesWhatIsNoLine) {
    const Points curve{{0, 0, 0}, {1, 1, 0}};
    EXPECT_THAT(
        [&] {
            withLine(curve, {1, 2, 3}, {1, 2, 4});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithLine",
                      "Points a and b are equal; there is no line through them."));
    EXPECT_THAT(
        [&] {
            withLine(curve, {1, 2, 3}, {1, kInf, 4});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithLine", "Point b is not finite."));
    EXPECT_THAT(
        [&] {
            withLine(curve, {kNaN, 2, 3}, {1, 3, 4});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithLine", "Point a is not finite."));
}

// A segment cuts out of its line's crossings those between its ends.
TEST(FindCrossingsWithLine, HoldThoseWithTheSegment) {
    std::mt19937 random(8);
    std::uniform_int_distribution<int> coordinate(-4, 4);
    const auto point = [&] { return Point(coordinate(random), coordinate(random), 0); };
    for (int round = 0; round < 500; ++round) {
        Points curve(8);
        std::generate(curve.begin(), curve.end(), point);
        const Point a = point(), b = a + Point(1, coordinate(random), 0);
        Crossings expected;
        bool hasOverlap = false;
        for (const qel::CurveCrossing& c : withLine(curve, a, b)) {
            hasOverlap |= c.kind == qel::CurveCrossing::Kind::overlap;
            if (c.otherBegin >= 0.0 && c.otherBegin <= 1.0) {
                expected.push_back(c);
            }
        }
        if (hasOverlap) {
            continue; // an overlap with the line may be cut
        }
        const std::vector<double> svalues = indices(curve.size());
        const Crossings actual = findCrossingsWithSegment(CurveView(curve, svalues), a, b);
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t k = 0; k < actual.size(); ++k) {
            EXPECT_EQ(actual[k].edge, expected[k].edge);
            EXPECT_DOUBLE_EQ(actual[k].sBegin, expected[k].sBegin);
        }
    }
}

// -- Plane ----

TEST(FindCrossingsWithPlane, CutsACurveInSpace) {
    const Points curve{{0, 0, 0}, {0, 0, 4}, {2, 0, 4}, {2, 2, 0}};
    EXPECT_THAT(
        withPlane(curve, {7, 7, 1}, {0, 0, 3}),
        ElementsAre(pointAt({0, 0, 1}, 0.25, 0, 0, 0), pointAt({2, 1.5, 1}, 2.75, 0, 2, 0)));
    EXPECT_TRUE(withPlane(curve, {0, 0, 5}, {0, 0, -1}).empty());
}

TEST(FindCrossingsWithPlane, CountsVerticesAndStretchesOnce) {
    const Points curve{{0, 0, 1}, {0, 0, 0}, {0, 0, -1}, {1, 0, 0}, {2, 0, 0},
                       {1, 0, 0}, {1, 0, 0}, {1, 1, 1},  {3, 3, 0}};
    EXPECT_THAT(withPlane(curve, {0, 0, 0}, {0, 0, 1}),
                ElementsAre(pointAt({0, 0, 0}, 1, 0, 0, 0),
                            overlap({1, 0, 0}, {1, 0, 0}, {3, 5}, {0, 0}, 3, 0),
                            pointAt({3, 3, 0}, 8, 0, 7, 0)));
}

TEST(FindCrossingsWithPlane, TheClosingVertexIsOnePlace) {
    const Points triangle{{0, 0, 0}, {1, 0, 1}, {2, 0, -1}, {0, 0, 0}};
    EXPECT_THAT(withPlane(triangle, {0, 0, 0}, {1, 0, 0}),
                ElementsAre(pointAt({0, 0, 0}, 0, 0, 0, 0)));
}

TEST(FindCrossingsWithPlane, OfACurveThatIsAPoint) {
    const Points point(3, Point(1, 1, 0));
    EXPECT_THAT(withPlane(point, {0, 0, 0}, {0, 0, 1}),
                ElementsAre(pointAt({1, 1, 0}, 0, 0, 0, 0)));
    EXPECT_TRUE(withPlane(point, {0, 0, 1}, {0, 0, 1}).empty());
}

TEST(FindCrossingsWithPlane, DoesNotDependOnTheSizeOfNumbers) {
    const Points curve{{0, 0, -1}, {1, 2, 3}, {0, 5, -2}};
    const Crossings expected = withPlane(curve, {0, 0, 0.5}, {0.25, -0.5, 1});
    ASSERT_EQ(expected.size(), 2U);
    for (const int exponent : {-1070, -600, -300, 300, 600, 1020}) {
        for (const int ofNormal : {-1070, -600, 0, 600, 1020}) {
            SCOPED_TRACE(exponent);
            const double factor = std::ldexp(1.0, exponent), n = std::ldexp(1.0, ofNormal);
            Points scaled = curve;
            for (Point& p : scaled) {
                p = p * factor;
            }
            const Crossings actual =
                withPlane(scaled, Point(0, 0, 0.5) * factor, Point(0.25, -0.5, 1) * n);
            ASSERT_EQ(actual.size(), 2U);
            for (std::size_t k = 0; k < 2; ++k) {
                EXPECT_EQ(actual[k].sBegin, expected[k].sBegin);
                EXPECT_EQ(actual[k].begin, expected[k].begin * factor);
            }
        }
    }
}

TEST(FindCrossingsWithPlane, RefusesWhatIsNoPlane) {
    const Points curve{{0, 0, 0}, {1, 1, 0}};
    const auto refuses = [](const char* reason) {
        return throwsInvalid("CurveCrossings", "findCrossingsWithPlane", reason);
    };
    EXPECT_THAT(
        [&] {
            withPlane(curve, {0, 0, 0}, {0, -0.0, 0});
        },
        refuses("The normal of the plane has no length."));
    EXPECT_THAT(
        [&] {
            withPlane(curve, {0, 0, 0}, {0, kNaN, 1});
        },
        refuses("The normal of the plane is not finite."));
    EXPECT_THAT(
        [&] {
            withPlane(curve, {0, 0, kInf}, {0, 0, 1});
        },
        refuses("The point of the plane is not finite."));
}

TEST(FindCrossingsWithPlane, RefusesAPointThatBecameInfinite) {
    Points points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    const CurveView view(points);
    points[2].z = -kInf;
    EXPECT_THAT(
        [&] {
            findCrossingsWithPlane(view, {0, 0, 0}, {1, 0, 0});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithPlane", "Point 2 is not finite."));
    EXPECT_NO_THROW(findCrossingsWithLine(view, {0, 0, 0}, {1, 0, 0})); // z does not count
}

} // namespace
