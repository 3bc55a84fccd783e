// Feet of points on the curve, and the nearest vertex.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include <qel/NumericalUtils.h>

#include "ReferenceCurve.h"
#include "curve/Projection.h"
#include "support/Bits.h"

namespace {

using namespace qel_test;
using qel::NumericalUtils;

struct Foot {
    Point point;
    double s;
};

Foot project(const ParametricCurve& curve, const Point& probe) {
    Foot foot{};
    foot.point = curve.projectPoint(probe, foot.s);
    return foot;
}

void checkFoot(const Foot& foot, const Point& point, double s) {
    EXPECT_PRED2(samePoint, foot.point, point);
    EXPECT_EQ(foot.s, s);
}

ParametricCurve straight(const Points& points) {
    return {points, ParametricCurve::dim3D};
}

// -- Feet ----

TEST(Projection, FootBesideAnEdge) {
    checkFoot(project(straight({{0, 0, 0}, {10, 0, 0}}), {4, 3, 0}), {4, 0, 0}, 0.4);
}

TEST(Projection, BeyondAnEndTheFootIsTheEnd) {
    const ParametricCurve curve = straight({{0, 0, 0}, {10, 0, 0}});
    checkFoot(project(curve, {-5, 1, 0}), {0, 0, 0}, 0.0);
    checkFoot(project(curve, {15, 1, 0}), {10, 0, 0}, 1.0);
}

TEST(Projection, BetweenTwoEdgesTheFootIsTheVertex) {
    checkFoot(project(straight({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}), {1, 5, 0}), {1, 0, 0}, 0.5);
}

// Feet on either edge at equal distance: neither is taken.
TEST(Projection, InsideASymmetricCornerTheFootIsTheVertex) {
    checkFoot(project(straight({{-4, -4, 0}, {0, 0, 0}, {4, -4, 0}}), {0, -1, 0}), {0, 0, 0}, 0.5);
}

TEST(Projection, OfTwoEdgesTheNearerFootIsTaken) {
    const ParametricCurve corner = straight({{-4, 0, 0}, {0, 0, 0}, {0, -4, 0}});
    checkFoot(project(corner, {-1.5, -1, 0}), {-1.5, 0, 0}, 0.3125);
    checkFoot(project(corner, {-1, -1.5, 0}), {0, -1.5, 0}, 0.6875);
}

TEST(Projection, TwoIdenticalPointsAnswerTheFirstAtSZero) {
    const ParametricCurve curve(Points{{1, 2, 3}, {1, 2, 3}}, {5.0, 6.0}, ParametricCurve::dim3D);
    checkFoot(project(curve, {9, 9, 9}), {1, 2, 3}, 0.0);
    checkFoot(project(curve, {1, 2, 3}), {1, 2, 3}, 0.0);
}

TEST(Projection, AVertexProjectsOntoItself) {
    const Points points = {{0.1, 0.2, 0.3}, {1.7, -3, 2}, {5, 5, 5}, {6, 5, 4}};
    const ParametricCurve curve = straight(points);
    for (std::size_t i = 0; i < points.size(); ++i) {
        checkFoot(project(curve, points[i]), points[i], curve.getSvalues()[i]);
    }
}

// Only the edges at the nearest vertex are looked at, even where another edge comes nearer.
TEST(Projection, EdgesAwayFromTheNearestVertexAreNotExamined) {
    const ParametricCurve curve = straight({{-10, 0, 0}, {10, 0, 0}, {10, 9, 0}, {0, 3, 0}});
    checkFoot(project(curve, {0, 1, 0}), {0, 3, 0}, 1.0);
}

TEST(Projection, SuppliedSIsInterpolated) {
    const ParametricCurve curve(Points{{0, 0, 0}, {10, 0, 0}}, {3.0, 5.0}, ParametricCurve::dim3D);
    checkFoot(project(curve, {2.5, 1, 0}), {2.5, 0, 0}, 3.5);
}

// -- The nearest vertex ----

TEST(Projection, OfEquallyNearVerticesTheFirstIsUsed) {
    const ParametricCurve curve = straight({{2, 2, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}});
    EXPECT_EQ(curve.getClosestPoint(Point(0, 0, 0)), 1);
    EXPECT_EQ(curve.getClosestPoint(FloatPoint(0, 0, 0)), 1);
}

TEST(Projection, ClosestPointTakesTheFirstMinimumAlsoAmongNaN) {
    EXPECT_EQ(straight({{5, 0, 0}, {kNaN, 0, 0}, {1, 0, 0}}).getClosestPoint(Point(0, 0, 0)), 2);
    EXPECT_EQ(straight({{kNaN, 0, 0}, {1, 0, 0}}).getClosestPoint(Point(0, 0, 0)), 0)
        << "nothing is less than a NaN";
    EXPECT_EQ(straight({{5, 0, 0}, {1, 0, 0}}).getClosestPoint(Point(kNaN, 0, 0)), 0);
    EXPECT_EQ(straight({{1e200, 0, 0}, {1e180, 0, 0}}).getClosestPoint(Point(0, 0, 0)), 0)
        << "both squares overflow";
}

// -- Float forms ----

TEST(Projection, FloatFormsWidenAndNarrow) {
    const ParametricCurve curve = straight({{0, 0, 0}, {10, 0, 0}, {10, 7, 3}});
    const FloatPoint probe(4.1f, 3.3f, 0.7f);
    double s = 0.0;
    const FloatPoint expected(curve.projectPoint(Point(probe), s));
    float narrowS = -1.0f;
    double wideS = -1.0;
    EXPECT_EQ(curve.projectPoint(probe, narrowS), expected);
    EXPECT_EQ(curve.projectPoint(probe, wideS), expected);
    EXPECT_EQ(curve.projectPoint(probe), expected);
    EXPECT_EQ(narrowS, static_cast<float>(s));
    EXPECT_EQ(wideS, s);
    EXPECT_EQ(curve.projectPoint(Point(probe)), curve.projectPoint(Point(probe), s));
}

// -- One edge ----

Foot projectToEdge(const ParametricCurve& curve, std::size_t i, std::size_t j, double d2i,
                   double d2j) {
    const qel::Foot foot = qel::projectToEdge(curve.getCurve(), curve.getSvalues(), i, j, d2i, d2j);
    return {foot.point, foot.s};
}

TEST(Projection, ToAnEdgePrefersTheFarVertexWithinTheTolerance) {
    const ParametricCurve curve = straight({{0, 0, 0}, {10, 0, 0}});
    const double tolerance = 100.0 * NumericalUtils::spacing(100.0);
    checkFoot(projectToEdge(curve, 0, 1, 0.0, tolerance), {10, 0, 0}, 1.0);
    checkFoot(projectToEdge(curve, 0, 1, tolerance, 100.0), {0, 0, 0}, 0.0);
    const double beyond = std::nextafter(tolerance, 1.0);
    EXPECT_NE(projectToEdge(curve, 0, 1, beyond, 100.0).point, Point(0, 0, 0));
}

// Not clamped above: only the caller knows that the first vertex is the nearer one.
TEST(Projection, ToAnEdgeRunsPastTheFarVertex) {
    const ParametricCurve curve = straight({{0, 0, 0}, {10, 0, 0}});
    checkFoot(projectToEdge(curve, 0, 1, 400.0, 100.0), {20, 0, 0}, 2.0);
}

TEST(Projection, ToADegenerateEdgeAnswersItsMiddle) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1e-9, 0, 0}}, {0.25, 0.75},
                                ParametricCurve::dim3D);
    checkFoot(projectToEdge(curve, 0, 1, 2e6, 1e6), {0.5e-9, 0, 0}, 0.5);
}

// An edge whose square is exactly 100 spacings of the projection is no degenerate one.
TEST(Projection, ToAnEdgeIsComparedStrictlyWithTheProjection) {
    const double length2 = 100 * 0x1p-52;
    const ParametricCurve curve = straight({{0, 0, 0}, {10 * 0x1p-26, 0, 0}});
    // The projection is about 4, or more than 10, where the spacing grows tenfold.
    const double t = (9.0 - 1.0 + length2) * 0.5 / length2;
    checkFoot(projectToEdge(curve, 0, 1, 9.0, 1.0), Point(10 * 0x1p-26, 0, 0) * t, t);
    checkFoot(projectToEdge(curve, 0, 1, 22.0, 1.0), {5 * 0x1p-26, 0, 0}, 0.5);
}

// Straight beside its vertex, a probe gets the vertex itself, the sign of a zero included.
TEST(Projection, AFootAtNoneOfTheEdgeIsTheVertex) {
    const ParametricCurve curve = straight({{-0.0, -0.0, 0}, {10, 0, 0}});
    checkFoot(project(curve, {0, 3, 0}), {-0.0, -0.0, 0}, 0.0);
}

TEST(Projection, OntoRepeatedPointsStaysOnThem) {
    const ParametricCurve curve = straight({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    checkFoot(project(curve, {1, 3, 0}), {1, 0, 0}, 0.5);
}

// -- Against the reference ----

double squared(const Point& a, const Point& b) {
    return referenceDot(a - b, a - b);
}

struct PlainCurve {
    Points p;
    std::vector<double> s;
    std::vector<double> d2;

    Foot toEdge(std::size_t i, std::size_t j) const {
        const double length2 = squared(p[j], p[i]);
        const double tolerance = 100.0 * NumericalUtils::spacing(length2);
        if (!(tolerance < d2[j])) {
            return {p[j], s[j]};
        }
        if (!(tolerance < d2[i])) {
            return {p[i], s[i]};
        }
        const double a = (d2[i] - d2[j] + length2) * 0.5;
        if (length2 < 100.0 * NumericalUtils::spacing(a)) {
            return {(p[j] + p[i]) * 0.5, (s[j] + s[i]) * 0.5};
        }
        const double t = a / length2;
        if (t > 0.0) {
            return {p[i] + (p[j] - p[i]) * t, s[i] + (s[j] - s[i]) * t};
        }
        return {p[i], s[i]};
    }

    Foot project(const Point& q) {
        if (p.size() == 2 && p[0] == p[1]) {
            return {p[0], 0.0};
        }
        d2.clear();
        for (const Point& vertex : p) {
            d2.push_back(squared(vertex, q));
        }
        const auto k =
            static_cast<std::size_t>(std::min_element(d2.begin(), d2.end()) - d2.begin());
        if (k == 0) {
            return toEdge(0, 1);
        }
        if (k == p.size() - 1) {
            return toEdge(k, k - 1);
        }
        const Foot a = toEdge(k, k - 1);
        const Foot b = toEdge(k, k + 1);
        const double da = referenceLength(q - a.point);
        const double db = referenceLength(q - b.point);
        if (da == db) {
            return {p[k], s[k]};
        }
        return db > da ? a : b;
    }
};

TEST(Projection, RandomProbesFollowTheRulesBitForBit) {
    RandomCurves random(51);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = random.curve(round % 40 == 0 ? 700 : 20);
        const Points& points = curve.getCurve();
        PlainCurve plain{points, curve.getSvalues(), {}};
        for (int i = 0; i < 12; ++i) {
            Point probe = points[random.count(0, points.size() - 1)];
            if (random.chance(0.3)) {
                probe = random.gridPoint();
            } else if (random.chance(0.8)) {
                probe += random.point(std::abs(probe.x) + 1e-6);
            }
            if (random.chance(0.05)) {
                probe.y = random.specialValue();
            }
            const Foot expected = plain.project(probe);
            const Foot actual = project(curve, probe);
            ASSERT_PRED2(samePoint, actual.point, expected.point) << probe;
            ASSERT_TRUE(sameBits(actual.s, expected.s)) << probe;
        }
    }
}

TEST(Projection, DoublingTheCurveDoublesTheFoot) {
    RandomCurves random(52);
    for (int round = 0; round < 200; ++round) {
        Points points(20);
        for (Point& point : points) {
            point = random.point(1.0);
        }
        Points doubled = points;
        for (Point& point : doubled) {
            point *= 1024.0;
        }
        const Point probe = random.point(1.5);
        const Foot foot = project(straight(points), probe);
        const Foot far = project(straight(doubled), probe * 1024.0);
        EXPECT_EQ(foot.point * 1024.0, far.point);
        EXPECT_EQ(foot.s, far.s);
    }
}

TEST(Projection, FootIsNoFartherThanAnyVertex) {
    RandomCurves random(53);
    for (int round = 0; round < 200; ++round) {
        Points points(30);
        for (Point& point : points) {
            point = random.point(1.0);
        }
        const Point probe = random.point(1.5);
        const double distance = (project(straight(points), probe).point - probe).length();
        for (const Point& point : points) {
            EXPECT_LE(distance, (point - probe).length() * (1.0 + 1e-12));
        }
    }
}

} // namespace
