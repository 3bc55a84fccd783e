// Lengthening a curve straight beyond its ends.

#include <climits>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;

ParametricCurve through(const Points& points) {
    return ParametricCurve(points, ParametricCurve::dim3D);
}

const Points kStraight{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};

TEST(Extrapolation, MovesTheEnd) {
    ParametricCurve curve = through(kStraight);
    curve.expandCurveEnd(0.5); // of a length of 2
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}}));
    EXPECT_EQ(curve.getLength(), 3.0);
}

TEST(Extrapolation, MovesTheBeginOrBoth) {
    ParametricCurve begin = through(kStraight);
    begin.expandCurveBegin(0.5);
    EXPECT_EQ(begin.getCurve(), Points({{-1, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
    ParametricCurve both = through(kStraight);
    both.expandCurveBothEnds(0.5);
    EXPECT_EQ(both.getCurve(), Points({{-1, 0, 0}, {1, 0, 0}, {3, 0, 0}}));
}

TEST(Extrapolation, ExtraPointsKeepTheEnds) {
    ParametricCurve curve = through(kStraight);
    curve.expandCurveBothEndsExtraPoints(0.5);
    EXPECT_EQ(curve.getCurve(), Points({{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
    EXPECT_EQ(curve.getSvalues(), Values({0, 0.25, 0.5, 0.75, 1}));
}

TEST(Extrapolation, CoincidingLastPointsGiveTheDirectionOfTheDistinctOnes) {
    ParametricCurve curve = through({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 0}});
    curve.expandCurveEnd(0.5);
    EXPECT_EQ(curve.getCurve().back(), Point(2, 1, 0));
    EXPECT_EQ(curve.getSize(), 4u); // those that coincide are looked past, not dropped
    ParametricCurve extra = through({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 0}});
    extra.expandCurveBothEndsExtraPoints(0.5);
    EXPECT_EQ(extra.getCurve(),
              Points({{0, -1, 0}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 0}, {2, 1, 0}}));
}

// Within 10^2 spacings of the curve's length the last two points count as one.
TEST(Extrapolation, TheDirectionLooksPastASegmentWithinTheTolerance) {
    const auto endOf = [](double spacings) {
        ParametricCurve curve = through({{0, 0, 0}, {1, 0, 0}, {1, spacings * 0x1p-52, 0}});
        curve.expandCurveEnd(0.5);
        return curve.getLastPoint();
    };
    EXPECT_GE(endOf(99).x, 1.5);
    EXPECT_LT(endOf(99).y, 1e-12);
    EXPECT_EQ(endOf(102).x, 1.0);
    EXPECT_GT(endOf(102).y, 0.5);
}

TEST(Extrapolation, ANegativeFractionMovesTheEndInward) {
    ParametricCurve curve = through(kStraight);
    curve.expandCurveEnd(-0.25);
    EXPECT_EQ(curve.getCurve().back(), Point(1.5, 0, 0));
}

TEST(Extrapolation, NoFractionComputesSAllTheSame) {
    ParametricCurve curve(kStraight, Values{0.0, 0.25, 1.0}, ParametricCurve::dim3D);
    curve.expandCurveBegin(0.0);
    EXPECT_EQ(curve.getCurve(), kStraight);
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 0.5, 1.0}));
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(curve.getLength(), 2.0);
}

TEST(Extrapolation, OneMovedEndChangesEveryInnerS) {
    ParametricCurve curve = through(kStraight);
    curve.expandCurveEnd(1.0);
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 0.25, 1.0}));
}

// The flag says how points were last given: moving an end keeps it, setting points anew does not.
TEST(Extrapolation, ExtraPointsMakeTheCurveOneOfDoubles) {
    const ParametricCurve floats(FloatPoints{{0, 0, 0}, {1, 0, 0}}, ParametricCurve::dim3D);
    ParametricCurve moved(floats);
    moved.expandCurveEnd(0.1);
    EXPECT_FALSE(moved.isCurveCreatedAsDouble());
    ParametricCurve extra(floats);
    extra.expandCurveBothEndsExtraPoints(0.1);
    EXPECT_TRUE(extra.isCurveCreatedAsDouble());
}

template <typename Operation>
void expectInsignificant(const ParametricCurve& curve, Operation operation) {
    ParametricCurve refused(curve);
    EXPECT_THAT([&] { operation(refused); },
                throwsInternal("ParametricCurve", "expandCurve",
                               "Curve definition insignificant for extrapolation."));
    EXPECT_EQ(stateOf(refused), stateOf(curve));
}

// Refused exactly when the length is zero, under one method name for all four.
TEST(Extrapolation, RefusesEqualPointsAndChangesNothing) {
    for (const std::size_t n : {2u, 3u, 7u}) {
        const ParametricCurve curve = through(Points(n, Point(1, 2, 3)));
        expectInsignificant(curve, [](ParametricCurve& c) { c.expandCurveBegin(0.1); });
        expectInsignificant(curve, [](ParametricCurve& c) { c.expandCurveEnd(0.1); });
        expectInsignificant(curve, [](ParametricCurve& c) { c.expandCurveBothEnds(0.0); });
        expectInsignificant(curve,
                            [](ParametricCurve& c) { c.expandCurveBothEndsExtraPoints(0.1); });
    }
}

// The setter that takes the longer list refuses a dimension that the curve kept from an earlier
// refusal, and keeps the points all the same; moving the ends does not look at it.
TEST(Extrapolation, ExtraPointsAreSetForTheCurvesOwnDimension) {
    const auto refused =
        throwsInternal("ParametricCurve", "setPoints", "Unrecognised dimension of the curve.");
    ParametricCurve curve;
    EXPECT_THAT([&] { curve.setPoints(kStraight, static_cast<ParametricCurve::dim>(3)); }, refused);
    ParametricCurve moved(curve);
    moved.expandCurveEnd(0.5);
    EXPECT_EQ(moved.getCurve().back(), Point(3, 0, 0));
    EXPECT_EQ(moved.getDimension(), 3);
    EXPECT_THAT([&] { curve.expandCurveBothEndsExtraPoints(0.5); }, refused);
    EXPECT_EQ(curve.getCurve(), Points({{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
}

TEST(Extrapolation, AClosedCurveOfTwoTimesTheSamePointIsLongEnough) {
    ParametricCurve curve = through({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}});
    curve.expandCurveBothEnds(0.5);
    EXPECT_EQ(curve.getCurve(), Points({{-1, 0, 0}, {1, 0, 0}, {-1, 0, 0}}));
}

// -- Against the reference ----

// New begin and end; false if the curve has no length.
bool referenceEnds(const Points& p, double fraction, Point& begin, Point& end) {
    Values s;
    const double length = referenceArcValues(p, s);
    const double tolerance = 100.0 * qel::NumericalUtils::spacing(0.5);
    Points q{p[0]};
    double last = s[0];
    for (std::size_t i = 1; i + 1 < p.size(); ++i) {
        if (s[i] - last > tolerance && s[i + 1] - s[i] > tolerance) {
            q.push_back(p[i]);
            last = s[i];
        }
    }
    q.push_back(p.back());
    const std::size_t m = q.size();
    begin = q[0] + referenceUnit(q[0] - q[1]) * (length * fraction);
    end = q[m - 1] + referenceUnit(q[m - 1] - q[m - 2]) * (length * fraction);
    return length != 0.0;
}

TEST(Extrapolation, MatchesReferenceBitForBit) {
    RandomCurves make(51);
    int refusals = 0;
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const CurveState before = stateOf(curve);
        const double fraction = make.uniform(-0.5, 1.5);
        Point begin;
        Point end;
        if (!referenceEnds(before.points, fraction, begin, end)) {
            ++refusals;
            expectInsignificant(curve, [&](ParametricCurve& c) { c.expandCurveEnd(fraction); });
            continue;
        }
        const auto expectMoved = [&](void (ParametricCurve::*expand)(double), bool atBegin,
                                     bool atEnd) {
            CurveState expected = before;
            expected.points.front() = atBegin ? begin : before.points.front();
            expected.points.back() = atEnd ? end : before.points.back();
            recompute(expected, Points(expected.points));
            expected.parametrization = ParametricCurve::parametrizationComputed;
            ParametricCurve moved(curve);
            (moved.*expand)(fraction);
            EXPECT_EQ(stateOf(moved), expected);
        };
        expectMoved(&ParametricCurve::expandCurveBegin, true, false);
        expectMoved(&ParametricCurve::expandCurveEnd, false, true);
        expectMoved(&ParametricCurve::expandCurveBothEnds, true, true);

        Points extended{begin};
        extended.insert(extended.end(), before.points.begin(), before.points.end());
        extended.push_back(end);
        for (Point& p : extended) { // as the setter does for the curve's own dimension
            p.z = before.dimension == ParametricCurve::dim3D ? p.z : 0.0;
            p.y = before.dimension == ParametricCurve::dim1D ? 0.0 : p.y;
        }
        CurveState expected = before;
        recompute(expected, extended);
        expected.parametrization = ParametricCurve::parametrizationComputed;
        expected.createdAsDouble = true;
        ParametricCurve extra(curve);
        extra.expandCurveBothEndsExtraPoints(fraction);
        EXPECT_EQ(stateOf(extra), expected);
    }
    EXPECT_GT(refusals, 0);
}

} // namespace
