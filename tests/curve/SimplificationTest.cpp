// Thinning a curve by normal distance, and how far a curve lies from a polyline through it.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Curves.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using Ids = std::vector<int>;

// Heights above the x axis, one apart.
Points heights(const std::vector<double>& values) {
    Points points;
    for (const double y : values) {
        points.emplace_back(static_cast<double>(points.size()), y, 0.0);
    }
    return points;
}

ParametricCurve curveThrough(const Points& points) {
    return {points, ParametricCurve::dim3D};
}

Ids thinned(ParametricCurve curve, int count, double tolerance) {
    Ids ids{-7};
    curve.optimizeByNormalDistance(count, ids, tolerance);
    return ids;
}

// -- Few points asked for ----

TEST(Simplification, CountBelowTwoChangesNothing) {
    for (const int count : {1, 0, -1, INT_MIN}) {
        ParametricCurve curve(heights({0, 1, 0, 2}), {0.0, 0.1, 0.2, 3.0}, ParametricCurve::dim2D);
        const CurveState before = stateOf(curve);
        Ids ids{4, 5};
        curve.optimizeByNormalDistance(count, ids, 0.0);
        curve.optimizeByNormalDistance(count, 0.0);
        EXPECT_EQ(stateOf(curve), before);
        EXPECT_EQ(ids, (Ids{4, 5})) << "not even emptied";
    }
}

TEST(Simplification, CountTwoLeavesTheEnds) {
    ParametricCurve curve(heights({0, 1, 0, 2}), {0.0, 0.1, 0.2, 3.0}, ParametricCurve::dim2D);
    Ids ids{4, 5};
    curve.optimizeByNormalDistance(2, ids, 100.0);
    EXPECT_TRUE(sameBitsInAll(curve.getCurve(), Points{{0, 0, 0}, {3, 2, 0}}));
    EXPECT_EQ(curve.getSvalues(), (std::vector<double>{0.0, 1.0}));
    EXPECT_EQ(curve.getLength(), std::sqrt(13.0));
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(ids, (Ids{0, 3}));
}

TEST(Simplification, OfACurveThatIsMovedFromKeepsNone) {
    ParametricCurve source = curveThrough(heights({0, 1, 0, 2}));
    const ParametricCurve taken(std::move(source));
    Ids ids{4, 5};
    source.optimizeByNormalDistance(3, ids, 0.0);
    EXPECT_TRUE(ids.empty());
}

TEST(Simplification, StraightCurveIsReducedToItsEnds) {
    EXPECT_EQ(thinned(curveThrough(heights({0, 0, 0, 0, 0})), 4, 0.0), (Ids{0, 4}));
    EXPECT_EQ(thinned(curveThrough(heights({0, 0})), 5, 0.0), (Ids{0, 1}));
    // Also where the tolerance is below the distance 0 of a chord without vertices to take.
    EXPECT_EQ(thinned(curveThrough(heights({0, 0, 0})), 3, -1.0), (Ids{0, 2}));
    EXPECT_EQ(thinned(curveThrough(heights({0, 0, 0})), 9, -1.0), (Ids{0, 2}));
}

TEST(Simplification, CurveBelowTheToleranceIsReducedToItsEnds) {
    EXPECT_EQ(thinned(curveThrough(heights({0, 2, 1, 0})), 4, 2.5), (Ids{0, 3}));
    EXPECT_EQ(thinned(curveThrough(heights({0, 2, 1, 0})), 3, 2.5), (Ids{0, 3}));
}

TEST(Simplification, CountThreeTakesTheFarthestOnlyBeyondTheTolerance) {
    const ParametricCurve curve =
        curveThrough({{0, 0, 0}, {2, 1, 0}, {4, 3, 0}, {6, 1, 0}, {8, 0, 0}}); // 3 away
    EXPECT_EQ(thinned(curve, 3, 2.5), (Ids{0, 2, 4}));
    EXPECT_EQ(thinned(curve, 3, std::nextafter(3.0, 0.0)), (Ids{0, 2, 4}));
    EXPECT_EQ(thinned(curve, 3, 3.0), (Ids{0, 4})) << "equals the tolerance";
    EXPECT_EQ(thinned(curve, 3, kNaN), (Ids{0, 4})) << "nothing exceeds a NaN";
}

// The short ways set it; the refinement leaves a supplied parametrization recorded though s is
// computed.
TEST(Simplification, SetsTheParametrizationOnTheShortWaysOnly) {
    const std::vector<double> s{0.0, 0.1, 0.5, 0.7, 1.0};
    const ParametricCurve whole(heights({0, 2, 0, 1, 0}), s, ParametricCurve::dim2D);
    const auto parametrizationAfter = [&](int count, double tolerance) {
        ParametricCurve curve(whole);
        curve.optimizeByNormalDistance(count, tolerance);
        EXPECT_EQ(curve.getSvalues().front(), 0.0);
        EXPECT_NE(curve.getLength(), whole.getLength());
        return curve.getParametrization();
    };
    EXPECT_EQ(parametrizationAfter(2, 0.1), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(parametrizationAfter(3, 0.1), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(parametrizationAfter(3, 2.0), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(parametrizationAfter(5, 9.0), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(parametrizationAfter(5, 0.1), ParametricCurve::parametrizationSupplied);
    EXPECT_EQ(parametrizationAfter(4, 2.0), ParametricCurve::parametrizationSupplied);
}

// -- The refinement ----

TEST(Simplification, SplitsTheFarthestChordFirst) {
    const ParametricCurve curve = curveThrough(heights({0, 1, 0, 9, 0, 2, 0}));
    EXPECT_EQ(thinned(curve, 4, 0.0).size(), 4U);
    const Ids ids = thinned(curve, 7, 0.0);
    EXPECT_EQ(ids, (Ids{0, 1, 2, 3, 4, 5, 6}));
}

// Chord (0, 6) is split at 3; both halves then deviate by the same distance to the last bit.
TEST(Simplification, OfEqualDistancesTheEarlierEdgeIsSplitFirst) {
    const Points points{{0, 0, 0}, {1, 2, 0},  {4, 3, 0}, {8, 6, 0},
                        {9, 4, 0}, {12, 3, 0}, {16, 0, 0}};
    const ParametricCurve curve = curveThrough(points);
    double left = 0.0;
    double right = 0.0;
    int index = 0;
    bool done = false;
    curve.calculateNormalDistanceFromTwoPoints(0, 3, left, index, done);
    const int leftmost = index;
    curve.calculateNormalDistanceFromTwoPoints(3, 6, right, index, done);
    ASSERT_EQ(left, right);
    EXPECT_EQ(thinned(curve, 4, 0.0), (Ids{0, leftmost, 3, 6}));
}

TEST(Simplification, KeepsTheVertexAtWhichItStops) {
    // The first chord deviates by 4, the next one by less than the tolerance: its vertex is kept.
    const ParametricCurve curve = curveThrough(heights({0, 0.5, 0, 4, 0, 0, 0}));
    const Ids ids = thinned(curve, 7, 3.9);
    EXPECT_EQ(ids.size(), 4U);
    // One that equals the tolerance at once is kept, too, where four points are allowed.
    EXPECT_EQ(
        thinned(curveThrough({{0, 0, 0}, {1, 0, 0}, {4, 3, 0}, {7, 0, 0}, {8, 0, 0}}), 4, 3.0),
        (Ids{0, 2, 4}));
}

TEST(Simplification, StopsWhereNoVertexIsFarther) {
    EXPECT_EQ(thinned(curveThrough(heights({0, 0, 3, 3, 3, 0, 0})), 100, 1e-9),
              (Ids{0, 1, 2, 4, 5, 6}));
    EXPECT_EQ(thinned(curveThrough(heights({0, 1, 0})), INT_MAX, -1.0), (Ids{0, 1, 2}))
        << "no more room is asked for than the curve has points";
}

TEST(Simplification, ANanToleranceStopsNothing) {
    EXPECT_EQ(thinned(curveThrough(heights({0, 3, 0, 1, 0})), 5, kNaN), (Ids{0, 1, 2, 3, 4}));
}

TEST(Simplification, KeepsDimensionAndPrecision) {
    ParametricCurve curve(narrowed(Points{{0, 0, 0}, {1, 3, 0}, {2, 0, 0}, {3, 1, 0}, {5, 0, 0}}),
                          ParametricCurve::dim2D);
    const CurveState before = stateOf(curve);
    curve.optimizeByNormalDistance(4, 0.1);
    const CurveState after = stateOf(curve);
    EXPECT_EQ(after.points.size(), 4U);
    EXPECT_EQ(after.dimension, before.dimension);
    EXPECT_FALSE(after.createdAsDouble);
}

// A closed loop has no chord to measure from: the vertex nearest in s to the middle is taken.
TEST(Simplification, ClosedLoopIsSplitInTheMiddleOfS) {
    const Points square{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    EXPECT_EQ(thinned(curveThrough(square), 3, 0.1), (Ids{0, 2, 4}));
    EXPECT_EQ(thinned(curveThrough(square), 5, 0.1), (Ids{0, 1, 2, 3, 4}));
}

// A chord of equal points whose middle vertex is undefined deviates by a NaN. At the front of the
// list it is chosen, because no distance exceeds it; so the loop ends at the count.
TEST(Simplification, ANanDistanceAtTheFrontIsChosen) {
    const Points points{{0, 0, 0}, {1, 0, 0}, {kNaN, 0, 0}, {0, 1, 0}, {0, 0, 0}};
    const std::vector<double> s{0.0, 0.4, 0.5, 0.6, 1.0};
    const ParametricCurve curve(points, s, ParametricCurve::dim3D);
    double distance = 0.0;
    int index = 0;
    bool done = true;
    curve.calculateNormalDistanceFromTwoPoints(0, 4, distance, index, done);
    ASSERT_TRUE(std::isnan(distance));
    ASSERT_FALSE(done);
    EXPECT_EQ(thinned(curve, 4, 0.1), (Ids{0, 2, 4})) << "both halves have undefined chords";
    EXPECT_EQ(thinned(curve, 3, 0.1), (Ids{0, 4})) << "a NaN does not exceed the tolerance";
}

// The vertex nearest in s to the middle of a chord is the first one for all negative s: chords of
// no length come back. Up to the count, that is what is kept; without end, it is refused.
TEST(Simplification, ChordsThatComeBackEndAtTheCountOrAreRefused) {
    std::vector<double> s;
    for (int i = 0; i < 8; ++i) {
        s.push_back(i - 20.0);
    }
    ParametricCurve curve(Points(8, Point(1, 2, 3)), s, ParametricCurve::dim3D);
    EXPECT_EQ(thinned(curve, 6, -1.0), (Ids{0, 0, 0, 1, 1, 7}));
    const CurveState before = stateOf(curve);
    Ids ids{4, 5};
    EXPECT_THAT([&] { curve.optimizeByNormalDistance(INT_MAX, ids, -1.0); },
                throwsInternal("ParametricCurve", "optimizeByNormalDistance",
                               "The same points are kept again and again."));
    EXPECT_EQ(stateOf(curve), before);
    EXPECT_EQ(ids, (Ids{4, 5}));
}

// -- Against the reference implementation ----

struct Plain {
    Ids ids;
    bool isShort = false;
};

ParametricCurve::tEdge measured(const ParametricCurve& curve, int first, int second) {
    ParametricCurve::tEdge edge;
    edge.first = first;
    edge.second = second;
    curve.calculateNormalDistanceFromTwoPoints(first, second, edge.distance, edge.farthest,
                                               edge.skip);
    return edge;
}

// Every choice by a scan of all chords.
Plain thinnedByReference(const ParametricCurve& curve, int count, double tolerance) {
    const int last = static_cast<int>(curve.getSize()) - 1;
    if (count < 3) {
        return {{0, last}, true};
    }
    std::vector<ParametricCurve::tEdge> edges{measured(curve, 0, last)};
    if (edges[0].skip || edges[0].distance < tolerance) {
        return {{0, last}, true};
    }
    if (count == 3) {
        return edges[0].distance > tolerance ? Plain{{0, edges[0].farthest, last}, true}
                                             : Plain{{0, last}, true};
    }
    Ids ids{0, last};
    for (;;) {
        int chosen = -1;
        for (int e = 0; e < static_cast<int>(edges.size()); ++e) {
            if (!edges[static_cast<std::size_t>(e)].skip &&
                (chosen < 0 || edges[static_cast<std::size_t>(e)].distance >
                                   edges[static_cast<std::size_t>(chosen)].distance)) {
                chosen = e;
            }
        }
        if (chosen < 0) {
            break;
        }
        const ParametricCurve::tEdge edge = edges[static_cast<std::size_t>(chosen)];
        ids.push_back(edge.farthest);
        if (static_cast<int>(ids.size()) == count || tolerance >= edge.distance) {
            break;
        }
        edges.push_back(measured(curve, edge.farthest, edge.second));
        edges[static_cast<std::size_t>(chosen)] = measured(curve, edge.first, edge.farthest);
    }
    std::sort(ids.begin(), ids.end());
    return {ids, false};
}

void checkAgainstPlain(const ParametricCurve& curve, int count, double tolerance) {
    const Plain expected = thinnedByReference(curve, count, tolerance);
    Points points;
    for (const int id : expected.ids) {
        points.push_back(curve.getCurve()[static_cast<std::size_t>(id)]);
    }
    const ParametricCurve model(points, ParametricCurve::dim3D);
    ParametricCurve actual(curve);
    Ids ids;
    actual.optimizeByNormalDistance(count, ids, tolerance);
    ASSERT_EQ(ids, expected.ids);
    ASSERT_TRUE(sameBitsInAll(actual.getCurve(), points));
    ASSERT_TRUE(sameBitsInAll(actual.getSvalues(), model.getSvalues()));
    ASSERT_TRUE(sameBits(actual.getLength(), model.getLength()));
    ASSERT_EQ(actual.getParametrization(), expected.isShort
                                               ? ParametricCurve::parametrizationComputed
                                               : curve.getParametrization());
    ASSERT_EQ(actual.getDimension(), curve.getDimension());
    ASSERT_EQ(actual.isCurveCreatedAsDouble(), curve.isCurveCreatedAsDouble());
    ASSERT_LE(ids.size(), static_cast<std::size_t>(count));
    ASSERT_EQ(ids.front(), 0);
    ASSERT_EQ(static_cast<std::size_t>(ids.back()), curve.getSize() - 1);
    ParametricCurve withoutIds(curve);
    withoutIds.optimizeByNormalDistance(count, tolerance);
    ASSERT_EQ(stateOf(withoutIds), stateOf(actual));
}

double randomTolerance(RandomCurves& random, const ParametricCurve& curve) {
    const double values[] = {0.0, -1.0, kNaN, 1.0, random.uniform(0.0, 0.1) * curve.getLength()};
    if (random.chance(0.3)) { // a distance that occurs
        return measured(curve, 0, static_cast<int>(curve.getSize()) - 1).distance;
    }
    return values[random.count(0, std::size(values) - 1)];
}

TEST(Simplification, OnRandomCurvesMatchesReferenceBitForBit) {
    RandomCurves random(31);
    for (int round = 0; round < 6000; ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = random.curve(round % 20 == 0 ? 300 : 14);
        const int count = static_cast<int>(random.count(2, curve.getSize() + 3));
        const double tolerance = randomTolerance(random, curve);
        ASSERT_NO_FATAL_FAILURE(checkAgainstPlain(curve, count, tolerance));
    }
}

// A long grid path: thousands of equal distances.
TEST(Simplification, OnLongCurvesWithTiesMatchesReferenceBitForBit) {
    RandomCurves random(32);
    Points grid;
    Points wave;
    for (int i = 0; i < 6000; ++i) {
        grid.push_back(random.gridPoint());
        wave.emplace_back(0.01 * i, std::sin(0.02 * i) + 0.01 * random.uniform(-1, 1), 0.0);
    }
    for (const Points& points : {grid, wave}) {
        for (const int count : {4, 50, 700}) {
            checkAgainstPlain(curveThrough(points), count, 1e-3);
        }
    }
}

// -- Largest normal distance ----

TEST(MaximumNormalDistance, RefusesFewerThanTwoSvalues) {
    const ParametricCurve curve = curveThrough(heights({0, 1, 0}));
    // Deliberately under the name of the step that builds the curve.
    const auto refusal =
        throwsInternal("ParametricCurve", "createNewCurveBySvalues", "Requested size less than 2.");
    EXPECT_THAT([&] { curve.getMaximumNormalDistance({0.5}); }, refusal);
    EXPECT_THAT([&] { curve.getMaximumNormalDistance({}); }, refusal);
}

TEST(MaximumNormalDistance, StraightCurveDoesNotDeviate) {
    EXPECT_EQ(curveThrough(heights({0, 0, 0})).getMaximumNormalDistance({0.0, 1.0}), 0.0);
}

TEST(MaximumNormalDistance, IsThatOfTheMiddlePoint) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1.5, 2, 0}, {3, 0, 0}});
    EXPECT_EQ(curve.getMaximumNormalDistance({0.0, 1.0}), 2.0);
    EXPECT_EQ(curve.getMaximumNormalDistance({0.0, 0.5, 1.0}), 0.0);
}

// Where all s-values are one and the same, no curve can be built through them.
TEST(MaximumNormalDistance, NeedsTwoDifferentSvalues) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}}, {0.5, 0.5}, ParametricCurve::dim3D);
    EXPECT_THAT(
        [&] {
            curve.getMaximumNormalDistance({0.5, 0.5});
        },
        throwsInternal("ParametricCurve", "getCurveBySvalues", "Requested size less than 2."));
}

// A list that falls pairs no chord that runs forward: nothing lies between its points.
TEST(MaximumNormalDistance, TakesTheSvaluesInTheOrderGiven) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1.5, 2, 0}, {3, 0, 0}});
    EXPECT_EQ(curve.getMaximumNormalDistance({1.0, 0.0}), 0.0);
    EXPECT_EQ(curve.getMaximumNormalDistance({0.5, 0.0, 1.0}), 2.0);
}

TEST(MaximumNormalDistance, ANanSvalueStandsForTheFirstPointAndHarmsNothing) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1.5, 2, 0}, {3, 0, 0}});
    const CurveState before = stateOf(curve);
    EXPECT_NO_FATAL_FAILURE(curve.getMaximumNormalDistance({kNaN, 1.0, kNaN}));
    EXPECT_EQ(stateOf(curve), before);
}

double plainMaximum(const ParametricCurve& curve, const std::vector<double>& svalues) {
    std::vector<double> all;
    for (const std::vector<double>& list : {curve.getSvalues(), svalues}) {
        for (const double s : list) {
            if (std::find(all.begin(), all.end(), s) == all.end()) {
                all.push_back(s);
            }
        }
    }
    std::sort(all.begin(), all.end());
    const std::unique_ptr<ParametricCurve> fine(curve.createNewCurveBySvalues(all, true));
    double largest = 0.0;
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        const double distance = measured(*fine, fine->getClosestToSvaluePoint(svalues[i - 1]),
                                         fine->getClosestToSvaluePoint(svalues[i]))
                                    .distance;
        largest = distance > largest ? distance : largest;
    }
    return largest;
}

TEST(MaximumNormalDistance, OnRandomCurvesMatchesReferenceBitForBit) {
    RandomCurves random(33);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = random.curve(14);
        std::vector<double> svalues(random.count(2, 6));
        for (double& s : svalues) {
            s = random.parameter(curve.getSvalues());
            s = std::isnan(s) ? 0.25 : s;
        }
        const CurveState before = stateOf(curve);
        if (svalues[0] == svalues[1] && svalues[0] == curve.getSvalues().front()) {
            svalues[0] = 0.5; // not all the same
        }
        ASSERT_TRUE(
            sameBits(curve.getMaximumNormalDistance(svalues), plainMaximum(curve, svalues)));
        ASSERT_EQ(stateOf(curve), before);
    }
}

TEST(MaximumNormalDistance, ANanAmongTheCurvesOwnSvaluesHarmsNothing) {
    const ParametricCurve curve({{0, 0, 0}, {1, 5, 0}, {2, 3, 0}, {4, 0, 0}}, {0.0, kNaN, 0.5, 1.0},
                                ParametricCurve::dim2D);
    const CurveState before = stateOf(curve);
    EXPECT_NO_FATAL_FAILURE(curve.getMaximumNormalDistance({0.0, 1.0}));
    EXPECT_EQ(stateOf(curve), before);
}

} // namespace
