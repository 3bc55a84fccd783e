// Dropping points that repeat or turn back, and reversing. All compute s anew.

#include <algorithm>
#include <climits>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "curve/Cleaning.h"
#include "support/Bits.h"

namespace {

using namespace qel_test;

ParametricCurve through(const Points& points) {
    return ParametricCurve(points, ParametricCurve::dim3D);
}

// What every member leaves: these points, s and length computed from them, and s said to be
// computed; dimension, axis and the created-as-double flag as they were.
void expectCleaned(const ParametricCurve& curve, CurveState before, const Points& points) {
    recompute(before, points);
    before.parametrization = ParametricCurve::parametrizationComputed;
    EXPECT_EQ(stateOf(curve), before);
}

// -- Points close in s ----

TEST(Cleaning, DoublePointsAtTheEndsLeaveTheEnds) {
    ParametricCurve curve = through({{0, 0, 0}, {0, 0, 0}, {1, 0, 0}, {1, 0, 0}});
    curve.eliminateDoublePoints(2);
    // The second is within the tolerance of the first, the third of the fourth.
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}}));
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 1.0}));
}

TEST(Cleaning, TwoEqualPointsStay) {
    ParametricCurve curve = through({{1, 2, 3}, {1, 2, 3}});
    curve.eliminateDoublePoints(2);
    EXPECT_EQ(curve.getSize(), 2u);
}

// 10^2 spacings of 0.5 are 100 * 2^-52. Points that far apart in s are double ones, on either side.
TEST(Cleaning, DoublePointsAreWithinTheToleranceOrAtIt) {
    const double spacing = 0x1p-52;
    const auto keptOf = [](const Points& points) {
        ParametricCurve curve = through(points);
        curve.eliminateDoublePoints(2);
        return curve.getCurve();
    };
    const Point a;
    const Point half(0.5, 0, 0);
    const Point b(1, 0, 0);
    const Point first(100 * spacing, 0, 0);
    const Point beyondFirst(std::nextafter(first.x, 1.0), 0, 0);
    EXPECT_EQ(keptOf({a, first, half, b}), Points({a, half, b}));
    EXPECT_EQ(keptOf({a, beyondFirst, half, b}), Points({a, beyondFirst, half, b}));
    const Point next = half + first;
    const Point beyondNext(std::nextafter(next.x, 1.0), 0, 0);
    EXPECT_EQ(keptOf({a, half, next, b}), Points({a, next, b}));
    EXPECT_EQ(keptOf({a, half, beyondNext, b}), Points({a, half, beyondNext, b}));
}

TEST(Cleaning, TheToleranceIsThatOfThePrecisionThatTheCurveWasCreatedIn) {
    const Points close{{0, 0, 0}, {1, 0, 0}, {1 + 1e-9, 0, 0}, {2, 0, 0}};
    ParametricCurve asDouble = through(close);
    asDouble.eliminateDoublePoints(0);
    EXPECT_EQ(asDouble.getSize(), 4u);
    ParametricCurve asSingle(narrowed(close), ParametricCurve::dim3D);
    asSingle.eliminateDoublePoints(0);
    EXPECT_EQ(asSingle.getSize(), 3u);
}

TEST(Cleaning, BothEndsAreDistinctInEveryCase) {
    const auto distinct = [](const Values& svalues) {
        std::vector<std::size_t> kept;
        qel::forEachDistinct(svalues, 1.0, [&](std::size_t i) { kept.push_back(i); });
        return kept;
    };
    EXPECT_EQ(distinct({0.5}), (std::vector<std::size_t>{0, 0}));
    EXPECT_EQ(distinct({0.5, 0.5}), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(distinct({0.0, 0.5, 2.0, 5.0}), (std::vector<std::size_t>{0, 2, 3}));
    EXPECT_EQ(distinct({0.0, 2.0, 4.0, 5.0}), (std::vector<std::size_t>{0, 1, 3}));
}

double referenceTolerance(int exponent, bool asDouble) {
    double power = 1.0;
    for (int k = 0; k < std::abs(exponent); ++k) {
        power *= 10.0; // exact as long as the exponent is small
    }
    const double spacing = asDouble ? qel::NumericalUtils::spacing(0.5)
                                    : static_cast<double>(qel::NumericalUtils::spacing(0.5f));
    return spacing * (exponent < 0 ? 1.0 / power : power);
}

Points referenceEliminated(const Points& p, double tolerance) {
    Values s;
    referenceArcValues(p, s);
    Points kept{p.front()};
    double last = s[0];
    for (std::size_t i = 1; i + 1 < p.size(); ++i) {
        if (s[i] - last > tolerance && s[i + 1] - s[i] > tolerance) {
            kept.push_back(p[i]);
            last = s[i];
        }
    }
    kept.push_back(p.back());
    return kept;
}

TEST(Cleaning, EliminateMatchesReferenceBitForBit) {
    RandomCurves make(41);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        const int exponent = static_cast<int>(make.index(19)) - 2;
        const bool asDouble = curve.isCurveCreatedAsDouble();

        ParametricCurve byFlag(curve);
        byFlag.eliminateDoublePoints(exponent);
        expectCleaned(byFlag, before,
                      referenceEliminated(before.points, referenceTolerance(exponent, asDouble)));

        ParametricCurve asSingle(curve);
        asSingle.eliminateDoublePoints(exponent, ParametricCurve::singlePrecision);
        expectCleaned(asSingle, before,
                      referenceEliminated(before.points, referenceTolerance(exponent, false)));

        ParametricCurve asDoubles(curve);
        asDoubles.eliminateDoublePoints(exponent, ParametricCurve::doublePrecision);
        expectCleaned(asDoubles, before,
                      referenceEliminated(before.points, referenceTolerance(exponent, true)));
    }
}

// Only 1 selects double precision.
TEST(Cleaning, AnyOtherPrecisionIsSingle) {
    const Points p{{0, 0, 0}, {1, 0, 0}, {1.0 + 1e-9, 0, 0}, {2, 0, 0}};
    for (const int value : {-1, 0, 2, 77}) {
        ParametricCurve curve = through(p);
        curve.eliminateDoublePoints(0, static_cast<ParametricCurve::PrecisionUtils>(value));
        EXPECT_EQ(curve.getSize(), 3u) << value;
    }
    ParametricCurve curve = through(p);
    curve.eliminateDoublePoints(0, ParametricCurve::doublePrecision);
    EXPECT_EQ(curve.getSize(), 4u);
}

// The tolerance takes the s computed from the points, not the one that was supplied.
TEST(Cleaning, EliminateIgnoresSuppliedSvalues) {
    ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, Values{0.0, 0.0, 1.0},
                          ParametricCurve::dim3D);
    curve.eliminateDoublePoints(2);
    EXPECT_EQ(curve.getSize(), 3u);
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 0.5, 1.0}));
}

TEST(Cleaning, HugeExponentsEndInInfinityOrZero) {
    const Points p{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}, {5, 0, 0}};
    for (const int exponent : {400, INT_MAX}) {
        ParametricCurve curve = through(p);
        curve.eliminateDoublePoints(exponent);
        EXPECT_EQ(curve.getSize(), 2u);
    }
    for (const int exponent : {-400, INT_MIN}) { // only exact repeats are within nothing
        ParametricCurve curve = through(p);
        curve.eliminateDoublePoints(exponent);
        EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {5, 0, 0}}));
    }
}

// -- Exact repeats ----

TEST(Cleaning, UniqueDropsNeighboursAlone) {
    ParametricCurve curve = through({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 0, 0}});
    curve.makeUnique();
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}));
}

TEST(Cleaning, UniqueKeepsTwoOfEqualPoints) {
    for (const std::size_t n : {2u, 3u, 50u}) {
        ParametricCurve curve = through(Points(n, Point(1, 2, 3)));
        curve.makeUnique();
        EXPECT_EQ(curve.getCurve(), Points(2, Point(1, 2, 3)));
        EXPECT_EQ(curve.getSvalues(), Values({0.0, 1.0}));
    }
}

TEST(Cleaning, UniqueMatchesReferenceBitForBit) {
    RandomCurves make(42);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        const Points& p = before.points;
        Points kept{p[0]};
        for (std::size_t i = 1; i < p.size(); ++i) {
            if (p[i].x != p[i - 1].x || p[i].y != p[i - 1].y || p[i].z != p[i - 1].z) {
                kept.push_back(p[i]);
            }
        }
        if (kept.size() == 1) {
            kept.push_back(kept[0]);
        }
        curve.makeUnique();
        expectCleaned(curve, before, kept);
    }
}

// -- Turning back ----

TEST(Cleaning, ContinuousDropsAPointThatTurnsBack) {
    ParametricCurve curve = through({{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {3, 0, 0}});
    curve.makeContinuous();
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}}));
}

// The next point is the stored neighbour, also where that one is dropped itself.
TEST(Cleaning, ContinuousMeasuresAgainstTheStoredNeighbour) {
    ParametricCurve curve = through({{0, 0, 0}, {1, 0, 0}, {-5, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    curve.makeContinuous();
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
}

TEST(Cleaning, ContinuousMatchesReferenceBitForBit) {
    RandomCurves make(43);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        const Points& p = before.points;
        Points kept{p[0]};
        for (std::size_t i = 1; i + 1 < p.size(); ++i) {
            const Point d = p[i + 1] - kept.back();
            const Point after = p[i] - kept.back();
            const Point ahead = p[i] - p[i + 1];
            if (after.x * d.x + after.y * d.y + after.z * d.z > 0.0 &&
                ahead.x * d.x + ahead.y * d.y + ahead.z * d.z < 0.0) {
                kept.push_back(p[i]);
            }
        }
        kept.push_back(p.back());
        curve.makeContinuous();
        expectCleaned(curve, before, kept);
    }
}

// -- Reversing ----

TEST(Cleaning, ReversingTwiceRestoresTheOrder) {
    RandomCurves make(44);
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        curve.reverseCurve();
        expectCleaned(curve, before, Points(before.points.rbegin(), before.points.rend()));
        curve.reverseCurve();
        expectCleaned(curve, before, before.points);
    }
}

// s is computed anew: mirroring the supplied one would give 0, 0.75, 1.
TEST(Cleaning, ReversingDoesNotMirrorS) {
    ParametricCurve curve(Points{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}}, Values{0.0, 0.25, 1.0},
                          ParametricCurve::dim3D);
    curve.reverseCurve();
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 0.5, 1.0}));
    EXPECT_EQ(curve.getLength(), 4.0);
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationComputed);
}

// After s-values that fell were refused, a curve holds points and s-values of different counts.
// Every member that computes s brings them in line again.
TEST(Cleaning, BringsCountsInLineAfterARefusedSetter) {
    const Points four{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}};
    const auto refused = [&] {
        ParametricCurve curve; // two s-values
        EXPECT_ANY_THROW(curve.setPoints(four, Values{0.0, 1.0, 0.5, 1.0}, ParametricCurve::dim3D));
        EXPECT_EQ(curve.getSize(), 4u);
        EXPECT_EQ(curve.getSvalues().size(), 2u);
        return curve;
    };
    const auto clean = [&](auto operation) {
        ParametricCurve curve = refused();
        (curve.*operation)();
        EXPECT_EQ(curve.getSvalues().size(), curve.getSize());
        EXPECT_EQ(curve.getSize(), 4u);
    };
    clean(&ParametricCurve::makeUnique);
    clean(&ParametricCurve::makeContinuous);
    clean(&ParametricCurve::reverseCurve);
    ParametricCurve curve = refused();
    curve.eliminateDoublePoints(2);
    EXPECT_EQ(curve.getSvalues().size(), 4u);
}

} // namespace
