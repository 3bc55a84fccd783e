// Crossings of two curves in the plane, and of a curve with a segment.

#include <qel/CurveCrossings.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CrossingMatchers.h"
#include "ExactCrossings.h"
#include "support/Bits.h"
#include "support/CurveShapes.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::CurveCrossing;
using qel::CurveView;
using qel::findCrossings;
using qel::findCrossingsWithSegment;
using testing::ElementsAre;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Crossings crossingsByIndex(const Points& a, const Points& b) {
    const std::vector<double> sa = indices(a.size()), sb = indices(b.size());
    return findCrossings(CurveView(a, sa), CurveView(b, sb));
}

// -- Points ----

TEST(FindCrossings, GivesPlaceAndSOfACrossing) {
    EXPECT_THAT(crossingsByIndex({{0, 0, 0}, {4, 0, 0}}, {{1, -1, 0}, {1, 3, 0}}),
                ElementsAre(pointAt({1, 0, 0}, 0.25, 0.25, 0, 0)));
}

TEST(FindCrossings, OfCurvesApartAreNone) {
    EXPECT_TRUE(crossingsByIndex({{0, 0, 0}, {4, 0, 0}}, {{0, 1, 0}, {4, 1, 0}}).empty());
    EXPECT_TRUE(crossingsByIndex({{0, 0, 0}, {4, 4, 0}}, {{1, 0, 0}, {4, 3.5, 0}}).empty());
    EXPECT_TRUE(crossingsByIndex({{0, 0, 0}, {4, 4, 0}}, {{5, 5, 0}, {6, 6, 0}}).empty());
}

TEST(FindCrossings, DoNotLookAtZ) {
    EXPECT_THAT(crossingsByIndex({{0, 0, 7}, {4, 0, 9}}, {{1, -1, -5}, {1, 3, 3}}),
                ElementsAre(pointAt({1, 0, 0}, 0.25, 0.25, 0, 0)));
}

TEST(FindCrossings, CountsACrossingAtAVertexOnceWithTheLowerEdge) {
    const Points bent{{0, 0, 0}, {2, 0, 0}, {4, 1, 0}};
    EXPECT_THAT(crossingsByIndex(bent, {{2, -1, 0}, {2, 3, 0}}),
                ElementsAre(pointAt({2, 0, 0}, 1, 0.25, 0, 0)));
    EXPECT_THAT(crossingsByIndex({{2, -1, 0}, {2, 3, 0}}, bent),
                ElementsAre(pointAt({2, 0, 0}, 0.25, 1, 0, 0)));
    EXPECT_THAT(crossingsByIndex(bent, {{1, 1, 0}, {2, 0, 0}, {3, -1, 0}}),
                ElementsAre(pointAt({2, 0, 0}, 1, 1, 0, 0)));
}

TEST(FindCrossings, CountsTouches) {
    const Points corner{{0, 2, 0}, {1, 0, 0}, {2, 2, 0}};
    EXPECT_THAT(crossingsByIndex(corner, {{-4, 0, 0}, {4, 0, 0}}),
                ElementsAre(pointAt({1, 0, 0}, 1, 0.625, 0, 0)));
    EXPECT_THAT(crossingsByIndex({{0, 0, 0}, {1, 0, 0}}, {{1, 0, 0}, {1, 1, 0}}),
                ElementsAre(pointAt({1, 0, 0}, 1, 0, 0, 0)));
    EXPECT_THAT(crossingsByIndex({{0, 0, 0}, {1, 0, 0}}, {{1, 0, 0}, {3, 0, 0}}),
                ElementsAre(pointAt({1, 0, 0}, 1, 0, 0, 0)));
}

TEST(FindCrossings, TheClosingVertexIsOnePlace) {
    const Points square{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 0}};
    EXPECT_THAT(crossingsByIndex(square, {{-1, 1, 0}, {1, -1, 0}}),
                ElementsAre(pointAt({0, 0, 0}, 0, 0.5, 0, 0)));
    EXPECT_THAT(crossingsByIndex({{-1, 1, 0}, {1, -1, 0}}, square),
                ElementsAre(pointAt({0, 0, 0}, 0.5, 0, 0, 0)));
}

TEST(FindCrossings, ARepeatedVertexIsOnePlaceWithTheFirstS) {
    const Points repeated{{0, 0, 0}, {2, 0, 0}, {2, 0, 0}, {2, 0, 5}, {4, 1, 0}, {4, 1, 0}};
    EXPECT_THAT(crossingsByIndex(repeated, {{2, -1, 0}, {2, 3, 0}}),
                ElementsAre(pointAt({2, 0, 0}, 1, 0.25, 0, 0)));
    EXPECT_THAT(crossingsByIndex(repeated, {{3, -0.5, 0}, {3, 1.5, 0}}),
                ElementsAre(pointAt({3, 0.5, 0}, 3.5, 0.5, 3, 0)));
    EXPECT_THAT(crossingsByIndex(repeated, {{4, -1, 0}, {4, 1, 0}}),
                ElementsAre(pointAt({4, 1, 0}, 4, 1, 3, 0)));
}

// The curve meets the other twice at one point of the plane.
TEST(FindCrossings, CountsEachSOfAPlaceOfItsOwn) {
    const Points loop{{-1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {1, -1, 0}};
    EXPECT_THAT(
        crossingsByIndex(loop, {{-1, 0, 0}, {1, 0, 0}}),
        ElementsAre(pointAt({0, 0, 0}, 0.5, 0.5, 0, 0), pointAt({0, 0, 0}, 2.5, 0.5, 2, 0)));
}

TEST(FindCrossings, OrdersByS) {
    const Points wave{{0, 1, 0}, {1, -1, 0}, {2, 1, 0}, {3, -1, 0}, {4, 1, 0}};
    const Crossings crossings = crossingsByIndex(wave, {{4, 0, 0}, {0, 0, 0}});
    EXPECT_THAT(crossings, ElementsAre(pointAt({0.5, 0, 0}, 0.5, 0.875, 0, 0),
                                       pointAt({1.5, 0, 0}, 1.5, 0.625, 1, 0),
                                       pointAt({2.5, 0, 0}, 2.5, 0.375, 2, 0),
                                       pointAt({3.5, 0, 0}, 3.5, 0.125, 3, 0)));
}

TEST(FindCrossings, OfACurveThatIsAPoint) {
    const Points point(4, Point(1, 1, 0));
    EXPECT_THAT(crossingsByIndex({{0, 0, 0}, {2, 2, 0}}, point),
                ElementsAre(pointAt({1, 1, 0}, 0.5, 0, 0, 0)));
    EXPECT_THAT(crossingsByIndex(point, {{0, 0, 0}, {2, 2, 0}}),
                ElementsAre(pointAt({1, 1, 0}, 0, 0.5, 0, 0)));
    EXPECT_THAT(crossingsByIndex(point, point), ElementsAre(pointAt({1, 1, 0}, 0, 0, 0, 0)));
    EXPECT_TRUE(crossingsByIndex(point, {{1, 2, 0}, {1, 2, 0}}).empty());
    EXPECT_TRUE(crossingsByIndex(point, {{2, 1, 0}, {2, 1, 0}}).empty());
    EXPECT_TRUE(crossingsByIndex(point, {{2, 2, 0}, {3, 3, 0}}).empty());
}

// -- Overlaps ----

TEST(FindCrossings, GivesASharedStretchOnce) {
    const Points line{{0, 0, 0}, {8, 0, 0}};
    EXPECT_THAT(crossingsByIndex(line, {{2, 0, 0}, {4, 0, 0}}),
                ElementsAre(overlap({2, 0, 0}, {4, 0, 0}, {0.25, 0.5}, {0, 1}, 0, 0)));
    EXPECT_THAT(crossingsByIndex(line, {{4, 0, 0}, {-4, 0, 0}}),
                ElementsAre(overlap({0, 0, 0}, {4, 0, 0}, {0, 0.5}, {0.5, 0}, 0, 0)));
    EXPECT_THAT(crossingsByIndex(line, {{0, 3, 0}, {1, 0, 0}, {2, 0, 0}, {4, 0, 0}, {5, 3, 0}}),
                ElementsAre(overlap({1, 0, 0}, {4, 0, 0}, {0.125, 0.5}, {1, 3}, 0, 1)));
}

TEST(FindCrossings, JoinsAStretchAlongManyEdgesOfBoth) {
    const Points a{{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {3, 2, 0}, {5, 4, 0}};
    const Points b{{9, 9, 0}, {4, 3, 0}, {3, 2, 0}, {3, 1, 0}, {3, 0, 0}, {2, 0, 0}, {-1, 0, 0}};
    EXPECT_THAT(crossingsByIndex(a, b),
                ElementsAre(overlap({0, 0, 0}, {4, 3, 0}, {0, 3.5}, {5 + 2.0 / 3.0, 1}, 0, 5)));
}

TEST(FindCrossings, ACurveOverlapsItself) {
    const Points a{{0, 0, 0}, {1, 0, 0}, {3, 1, 0}, {3, 2, 0}};
    EXPECT_THAT(crossingsByIndex(a, a),
                ElementsAre(overlap({0, 0, 0}, {3, 2, 0}, {0, 3}, {0, 3}, 0, 0)));
    const Points loop{{-1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {1, -1, 0}};
    EXPECT_THAT(crossingsByIndex(loop, loop),
                ElementsAre(overlap({-1, -1, 0}, {1, -1, 0}, {0, 3}, {0, 3}, 0, 0),
                            pointAt({0, 0, 0}, 0.5, 2.5, 0, 2),
                            pointAt({0, 0, 0}, 2.5, 0.5, 2, 0)));
}

TEST(FindCrossings, AStretchEndsAtClosingVertices) {
    const Points square{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 0}};
    EXPECT_THAT(crossingsByIndex(square, square),
                ElementsAre(overlap({0, 0, 0}, {0, 0, 0}, {0, 4}, {0, 4}, 0, 0)));
    const Points begunElsewhere{{2, 2, 0}, {0, 2, 0}, {0, 0, 0}, {2, 0, 0}, {2, 2, 0}};
    EXPECT_THAT(crossingsByIndex(square, begunElsewhere),
                ElementsAre(overlap({0, 0, 0}, {2, 2, 0}, {0, 2}, {2, 4}, 0, 2),
                            overlap({2, 2, 0}, {0, 0, 0}, {2, 4}, {0, 2}, 2, 0)));
}

TEST(FindCrossings, AStretchEndsWhereACurveTurnsBack) {
    const Points spike{{0, 0, 0}, {3, 0, 0}, {1, 0, 0}};
    EXPECT_THAT(crossingsByIndex(spike, {{0, 0, 0}, {4, 0, 0}}),
                ElementsAre(overlap({0, 0, 0}, {3, 0, 0}, {0, 1}, {0, 0.75}, 0, 0),
                            overlap({3, 0, 0}, {1, 0, 0}, {1, 2}, {0.75, 0.25}, 1, 0)));
}

// -- Exact decisions ----

Points pointsOf(const LatticeCurve& curve, double factor) {
    Points points;
    for (const LatticePoint& p : curve) {
        points.emplace_back(static_cast<double>(p.x) * factor, static_cast<double>(p.y) * factor,
                            0.0);
    }
    return points;
}

void expectCrossing(const CurveCrossing& actual, const ExactCrossing& expected, double factor) {
    EXPECT_EQ(actual.kind == CurveCrossing::Kind::overlap, expected.isOverlap);
    EXPECT_NEAR(actual.sBegin, expected.begin.svalue(), 1e-13 * (1 + actual.sBegin));
    EXPECT_NEAR(actual.sEnd, expected.end.svalue(), 1e-13 * (1 + actual.sEnd));
    EXPECT_NEAR(actual.otherBegin, expected.otherBegin.svalue(), 1e-13 * (1 + actual.otherBegin));
    EXPECT_NEAR(actual.otherEnd, expected.otherEnd.svalue(), 1e-13 * (1 + actual.otherEnd));
    const double tolerance = 4e-15 * factor * 1000;
    EXPECT_NEAR(actual.begin.x, expected.x.value() * factor, tolerance);
    EXPECT_NEAR(actual.begin.y, expected.y.value() * factor, tolerance);
}

// The edge of a point is the lower one at a vertex; that of an overlap begins it.
std::int64_t edgeOf(const ExactPlace& place, const LatticeCurve& curve, bool isOverlap,
                    bool isBackward) {
    std::size_t edge = place.vertex;
    const bool isVertex = place.t == Rational{0, 1};
    if (isVertex && edge > 0 && (!isOverlap || isBackward)) {
        return static_cast<std::int64_t>(edge - 1);
    }
    while (isOverlap && isVertex && curve[edge] == curve[edge + 1]) {
        ++edge;
    }
    // Inside the edge behind repeats.
    return static_cast<std::int64_t>(edge);
}

void checkExactly(const LatticeCurve& a, const LatticeCurve& b, double factor = 1.0) {
    const Crossings actual = crossingsByIndex(pointsOf(a, factor), pointsOf(b, factor));
    const ExactCrossings expected(a, b);
    ASSERT_EQ(actual.size(), expected.all().size());
    // Both are in order but where s-values are equal after rounding.
    for (std::size_t k = 0; k < actual.size(); ++k) {
        const ExactCrossing& e = expected.all()[k];
        expectCrossing(actual[k], e, factor);
        EXPECT_EQ(actual[k].edge, edgeOf(e.begin, a, e.isOverlap, false));
        EXPECT_EQ(actual[k].otherEdge, edgeOf(e.otherBegin, b, e.isOverlap, e.isOpposed()));
    }
    if (testing::Test::HasFailure()) {
        std::string text;
        for (const LatticeCurve* curve : {&a, &b}) {
            for (const LatticePoint& p : *curve) {
                text += "{" + std::to_string(p.x) + ", " + std::to_string(p.y) + "}, ";
            }
            text += "\n";
        }
        FAIL() << text;
    }
}

class LatticeRandom {
public:
    explicit LatticeRandom(unsigned seed) : random_(seed) {}

    // Repeats, turns back and closes now and then.
    LatticeCurve curve(std::size_t n, int extent) {
        LatticeCurve curve;
        while (curve.size() < n) {
            const int kind = between(0, 9);
            if (kind == 0 && !curve.empty()) {
                curve.push_back(curve.back());
            } else if (kind == 1 && curve.size() > 1) {
                curve.push_back(curve[curve.size() - 2]);
            } else if (kind < 5 && !curve.empty()) { // along an axis
                LatticePoint p = curve.back();
                (kind % 2 == 0 ? p.x : p.y) = between(0, extent);
                curve.push_back(p);
            } else {
                curve.push_back({between(0, extent), between(0, extent)});
            }
        }
        if (between(0, 2) == 0) {
            curve.push_back(curve.front());
        }
        return curve;
    }
    int between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }

private:
    std::mt19937 random_;
};

TEST(FindCrossings, MatchRationalArithmeticOnLattices) {
    LatticeRandom random(1);
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const int extent = round % 3 == 0 ? 2 : round % 3 == 1 ? 6 : 500;
        const auto n = static_cast<std::size_t>(random.between(2, 14));
        const auto m = static_cast<std::size_t>(random.between(2, 14));
        checkExactly(random.curve(n, extent), random.curve(m, extent));
    }
}

// Long enough for trees of several levels, on every vector unit.
TEST(FindCrossings, OfLongCurvesMatchRationalArithmetic) {
    onEveryVectorUnit([] {
        LatticeRandom random(2);
        for (const auto& [n, m] :
             {std::pair<std::size_t, std::size_t>{9, 400}, {400, 9}, {250, 250}}) {
            LatticeCurve a = random.curve(n, 2000), b = random.curve(m, 2000);
            checkExactly(a, b);
        }
    });
}

TEST(FindCrossings, OfACurveWithItselfMatchRationalArithmetic) {
    LatticeRandom random(3);
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const LatticeCurve a = random.curve(static_cast<std::size_t>(2 + round % 20), 5);
        checkExactly(a, a);
        checkExactly(a, LatticeCurve(a.rbegin(), a.rend()));
    }
}

// Decisions do not depend on the size of the numbers.
TEST(FindCrossings, OfTinyAndHugeCurvesMatchRationalArithmetic) {
    LatticeRandom random(4);
    for (const int exponent : {-1074, -1000, -500, -40, 300, 700, 1000}) {
        SCOPED_TRACE(exponent);
        for (int round = 0; round < 20; ++round) {
            const LatticeCurve a = random.curve(8, 6), b = random.curve(8, 6);
            const Crossings large = crossingsByIndex(pointsOf(a, 1.0), pointsOf(b, 1.0));
            const double factor = std::ldexp(1.0, exponent);
            const Crossings actual = crossingsByIndex(pointsOf(a, factor), pointsOf(b, factor));
            ASSERT_EQ(actual.size(), large.size());
            for (std::size_t k = 0; k < actual.size(); ++k) {
                ASSERT_EQ(actual[k].kind, large[k].kind);
                ASSERT_EQ(actual[k].sBegin, large[k].sBegin);
                ASSERT_EQ(actual[k].otherEnd, large[k].otherEnd);
                ASSERT_EQ(actual[k].begin, large[k].begin * factor);
            }
        }
    }
}

// A vertex that misses an edge by the last bit does not touch it; one on it does.
TEST(FindCrossings, TellTouchFromMissByOneBit) {
    const Points edge{{0, 0, 0}, {3, 1, 0}};
    const double y = 0.5, x = 1.5; // on it
    EXPECT_EQ(crossingsByIndex(edge, {{x, y, 0}, {1, 2, 0}}).size(), 1U);
    EXPECT_TRUE(crossingsByIndex(edge, {{x, std::nextafter(y, 1.0), 0}, {1, 2, 0}}).empty());
    EXPECT_EQ(crossingsByIndex(edge, {{x, std::nextafter(y, 0.0), 0}, {1, 2, 0}}).size(), 1U);
    EXPECT_TRUE(crossingsByIndex(edge, {{std::nextafter(x, 0.0), y, 0}, {1, 2, 0}}).empty());
}

TEST(FindCrossings, DecideBesideNumbersOfQuiteAnotherSize) {
    const Points axis{{-1, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(crossingsByIndex(axis, {{0, 1e-140, 0}, {0, -1e-140, 0}}).size(), 1U);
    EXPECT_TRUE(crossingsByIndex(axis, {{0, 1e-140, 0}, {0, 1e-150, 0}}).empty());
    EXPECT_EQ(crossingsByIndex(axis, {{1e-140, 1e-140, 0}, {-1e-140, -1e-140, 0}}).size(), 1U);
}

// -- Places ----

long double distanceFromLine(const Point& p, const Point& a, const Point& b) {
    const long double ex = static_cast<long double>(b.x) - a.x,
                      ey = static_cast<long double>(b.y) - a.y;
    const long double across =
        ex * (static_cast<long double>(p.y) - a.y) - ey * (static_cast<long double>(p.x) - a.x);
    return std::fabs(across) / std::hypot(ex, ey);
}

Point at(const Points& curve, double s) {
    const auto i = std::min(static_cast<std::size_t>(s), curve.size() - 2);
    return curve[i] + (curve[i + 1] - curve[i]) * (s - static_cast<double>(i));
}

TEST(FindCrossings, LieWithinAFewSpacingsOfBothCurves) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> coordinate(-1, 1), tiny(-1e-9, 1e-9);
    std::size_t count = 0;
    for (int round = 0; round < 300; ++round) {
        Points a(30), b(30);
        for (std::size_t i = 0; i < 30; ++i) {
            a[i] = Point(coordinate(random), coordinate(random), 0);
            b[i] = round % 2 == 0 ? Point(coordinate(random), coordinate(random), 0)
                                  : a[i] + Point(tiny(random), tiny(random), 0); // nearly parallel
        }
        for (const CurveCrossing& c : crossingsByIndex(a, b)) {
            const auto i = static_cast<std::size_t>(c.edge),
                       j = static_cast<std::size_t>(c.otherEdge);
            ASSERT_LE(distanceFromLine(c.begin, a[i], a[i + 1]), 4 * 0x1p-52L);
            ASSERT_LE(distanceFromLine(c.begin, b[j], b[j + 1]), 4 * 0x1p-52L);
            ASSERT_LE((at(a, c.sBegin) - c.begin).length(), 1e-14);
            ASSERT_LE((at(b, c.otherBegin) - c.begin).length(), 1e-14);
            ++count;
        }
    }
    EXPECT_GT(count, 10000U);
}

// -- Forms of curves ----

TEST(FindCrossings, OfFloatsStridedAndParametricCurves) {
    const Points a{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}, b{{1, -1, 0}, {1, 3, 0}, {5, 3, 0}};
    const Crossings expected = findCrossings(a, b);
    ASSERT_EQ(expected.size(), 2U);
    const auto expectSame = [&](const Crossings& actual) {
        ASSERT_EQ(actual.size(), 2U);
        for (std::size_t k = 0; k < 2; ++k) {
            EXPECT_EQ(actual[k].begin, expected[k].begin);
            EXPECT_EQ(actual[k].sBegin, expected[k].sBegin);
            EXPECT_EQ(actual[k].otherBegin, expected[k].otherBegin);
        }
    };
    const std::vector<qel::TripletBase<float>> narrow(a.begin(), a.end());
    expectSame(findCrossings(narrow, b));
    expectSame(findCrossings(qel::ParametricCurve(a, qel::ParametricCurve::dim2D), b));
    std::vector<char> memory(1 + 3 * 31);
    for (std::size_t k = 0; k < 3; ++k) {
        std::memcpy(memory.data() + 1 + (2 - k) * 31, &b[k], sizeof(Point));
    }
    const auto* const last = reinterpret_cast<const double*>(memory.data() + 1 + 2 * 31);
    expectSame(findCrossings(a, qel::TripletView<const double>(last, 3, -31)));
}

TEST(FindCrossings, RefusePointsThatBecameNaN) {
    Points points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    const CurveView view(points);
    const Points other{{0, 1, 0}, {1, 1, 0}};
    points[1].y = kNaN;
    const auto refuses = throwsInvalid("CurveCrossings", "findCrossings", "Point 1 is not finite.");
    EXPECT_THAT([&] { findCrossings(view, other); }, refuses);
    EXPECT_THAT([&] { findCrossings(other, view); }, refuses);
}

// -- Progress ----

TEST(FindCrossings, ReportProgressUpToOne) {
    const Points a = curveShape("rough_wave").make(100000);
    const Points b{{-1, 0, 0}, {100, 0, 0}};
    std::vector<double> fractions;
    const auto note = [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    };
    EXPECT_FALSE(findCrossings(a, b, note).empty());
    EXPECT_GT(fractions.size(), 3U);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1.0);
}

TEST(FindCrossings, AreNoneWhenStopped) {
    const Points a = curveShape("rough_wave").make(100000);
    const Points b{{-1, 0, 0}, {100, 0, 0}};
    int calls = 0;
    const auto stop = [&](double) { return ++calls < 2; };
    EXPECT_TRUE(findCrossings(a, b, stop).empty());
    EXPECT_EQ(calls, 2);
}

// -- Segment ----

TEST(FindCrossingsWithSegment, GivesTheFractionFromAToB) {
    const Points wave{{0, 1, 0}, {1, -1, 0}, {2, 1, 0}};
    EXPECT_THAT(findCrossingsWithSegment(CurveView(wave, indices(3)), {1, 0, 9}, {3, 0, 7}),
                ElementsAre(pointAt({1.5, 0, 0}, 1.5, 0.25, 1, 0)));
    EXPECT_THAT(findCrossingsWithSegment(CurveView(wave, indices(3)), {3, 0, 9}, {1, 0, 7}),
                ElementsAre(pointAt({1.5, 0, 0}, 1.5, 0.75, 1, 0)));
}

TEST(FindCrossingsWithSegment, OverlapsAlongTheSegment) {
    const Points line{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}};
    EXPECT_THAT(findCrossingsWithSegment(CurveView(line, indices(3)), {3, 0, 0}, {1, 0, 0}),
                ElementsAre(overlap({1, 0, 0}, {3, 0, 0}, {0.5, 1.5}, {1, 0}, 0, 0)));
}

TEST(FindCrossingsWithSegment, OfNoLengthIsAPoint) {
    const Points line{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}};
    EXPECT_THAT(findCrossingsWithSegment(CurveView(line, indices(3)), {3, 0, 0}, {3, 0, 0}),
                ElementsAre(pointAt({3, 0, 0}, 1.5, 0, 1, 0)));
    EXPECT_TRUE(findCrossingsWithSegment(line, {3, 1, 0}, {3, 1, 0}).empty());
}

TEST(FindCrossingsWithSegment, RefusesEndsThatAreNotFinite) {
    const Points line{{0, 0, 0}, {2, 0, 0}};
    EXPECT_THAT(
        [&] {
            findCrossingsWithSegment(line, {kNaN, 0, 0}, {1, 0, 0});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithSegment", "Point a is not finite."));
    EXPECT_THAT(
        [&] {
            findCrossingsWithSegment(line, {0, 0, 0}, {1, -kInf, 0});
        },
        throwsInvalid("CurveCrossings", "findCrossingsWithSegment", "Point b is not finite."));
    EXPECT_NO_THROW(findCrossingsWithSegment(line, {0, 0, kNaN}, {1, 1, kNaN})); // z does not count
}

} // namespace
