// The point at an s, the point nearest in s, components and bounds.

#include <qel/ParametricCurve.h>

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ReferenceCurve.h"
#include "curve/Evaluation.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using testing::ElementsAre;

const Point A(1, 2, 3), B(4, -5, 6), C(7, 8, 100), D(-1, 0, 0);

ParametricCurve curveOn(const std::vector<double>& svalues) {
    const Points points = {A, B, C, D};
    return {Points(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(svalues.size())),
            svalues, ParametricCurve::dim3D};
}

struct Interpolated {
    Point point;
    std::size_t lo;
    std::size_t hi;
};

Interpolated interpolateOnS(const ParametricCurve& curve, double s) {
    const auto [point, bracket] = qel::interpolateOnS(curve.getCurve(), curve.getSvalues(), s);
    return {point, bracket.lo, bracket.hi};
}

void checkInterpolation(const ParametricCurve& curve, double s, const Point& point, std::size_t lo,
                        std::size_t hi) {
    SCOPED_TRACE(s);
    const Interpolated result = interpolateOnS(curve, s);
    EXPECT_PRED2(samePoint, result.point, point);
    EXPECT_EQ(result.lo, lo);
    EXPECT_EQ(result.hi, hi);
}

// -- interpolateOnS ----

TEST(Evaluation, InterpolateOnSBracketsAndInterpolates) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    checkInterpolation(curve, 0.25, (A + B) * 0.5, 0, 1);
    checkInterpolation(curve, 0.5, B, 1, 2);
}

TEST(Evaluation, InterpolateOnSDoesNotExtrapolate) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    checkInterpolation(curve, -3, A, 0, 0);
    checkInterpolation(curve, 0, A, 0, 0);
    checkInterpolation(curve, 1, C, 2, 2);
    checkInterpolation(curve, 7, C, 2, 2);
    checkInterpolation(curve, kInfinity, C, 2, 2);
    checkInterpolation(curve, -kInfinity, A, 0, 0);
    checkInterpolation(curve, kNaN, A, 0, 0);
}

TEST(Evaluation, InterpolateOnSSpansARunOfEqualSvalues) {
    checkInterpolation(curveOn({0, 0.5, 0.5, 1}), 0.5, B, 1, 3);
}

TEST(Evaluation, InterpolateOnSTakesTheFirstPointOfEqualFirstSvalues) {
    checkInterpolation(curveOn({0, 0, 1}), 0.0, A, 0, 0);
}

// 0.3 rounds up to a float, so that the search passes point 1; getPointAtParameter stays there.
TEST(Evaluation, InterpolateOnSRoundsSToFloatFirst) {
    const ParametricCurve curve = curveOn({0, 0.3, 1});
    const double rounded = 0.30000001192092896;
    checkInterpolation(curve, 0.3, B + (C - B) * (rounded - 0.3) / (1.0 - 0.3), 1, 2);
    EXPECT_NE(interpolateOnS(curve, 0.3).point, B);
    EXPECT_EQ(curve.getPointAtParameter(0.3), B);
}

TEST(Evaluation, SvaluesCloserThanTheToleranceGiveTheMidpoint) {
    // Two floats next to 0.5 are far apart; next to 1e9 the tolerance exceeds their distance.
    const double lo = 1e12;
    const double hi = lo + 0.0009765625;
    const ParametricCurve curve(Points{A, B, C, D}, {0.0, lo - 1.0, hi, 2e12},
                                ParametricCurve::dim3D);
    const ParametricCurve close(Points{A, B, C, D}, {0.0, lo, hi, 2e12}, ParametricCurve::dim3D);
    EXPECT_NE(curve.getPointAtParameter(lo), (B + C) * 0.5);
    EXPECT_EQ(close.getPointAtParameter(lo), (B + C) * 0.5);
    EXPECT_EQ(close.getPointAtParameter(lo + 0.0001220703125 * 4), (B + C) * 0.5);
}

// At 100 spacings s-values are still distinct; below, even an s equal to a stored one gives the
// midpoint.
TEST(Evaluation, SvaluesCountAsEqualBelowOneHundredSpacings) {
    constexpr double spacing = 2.220446049250313e-16; // of 1 and a little more
    const auto onStep = [](double spacings) { return curveOn({0, 1, 1 + spacings * spacing, 2}); };
    const ParametricCurve distinct = onStep(100);
    checkInterpolation(distinct, 1.0, B, 1, 2);
    EXPECT_PRED2(samePoint, distinct.getPointAtParameter(1.0), B);
    EXPECT_PRED2(samePoint, distinct.getPointAtParameter(1 + 25 * spacing), B + (C - B) * 0.25);
    const ParametricCurve equal = onStep(99);
    checkInterpolation(equal, 1.0, (B + C) * 0.5, 1, 2);
    EXPECT_PRED2(samePoint, equal.getPointAtParameter(1.0), (B + C) * 0.5);
    EXPECT_PRED2(samePoint, equal.getPointAtParameter(1 + 25 * spacing), (B + C) * 0.5);
}

// -- getPointAtParameter ----

TEST(Evaluation, PointAtParameterClampsToTheRange) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    EXPECT_EQ(curve.getPointAtParameter(2.0), C);
    EXPECT_EQ(curve.getPointAtParameter(-2.0), A);
    EXPECT_EQ(curve.getPointAtParameter(kInfinity), C);
    EXPECT_EQ(curve.getPointAtParameter(kNaN), A);
    const ParametricCurve supplied = curveOn({5, 6, 9});
    EXPECT_EQ(supplied.getPointAtParameter(1.0), A);
    EXPECT_EQ(supplied.getPointAtParameter(9.5), C);
}

TEST(Evaluation, PointAtParameterHitsStoredPointsExactly) {
    EXPECT_EQ(curveOn({0, 0.3, 1}).getPointAtParameter(0.3), B);
    EXPECT_EQ(curveOn({0, 0.5, 0.5, 1}).getPointAtParameter(0.5), B);
    EXPECT_EQ(curveOn({0, 0, 1}).getPointAtParameter(0.0), A);
}

// Clamped to the end first, s is not greater than the first s-value then.
TEST(Evaluation, PointAtParameterBeyondEqualSvaluesIsTheFirst) {
    const ParametricCurve curve = curveOn({0.5, 0.5, 0.5});
    EXPECT_EQ(curve.getPointAtParameter(0.75), A);
    EXPECT_EQ(curve.getPointAtParameter(0.25), A);
    checkInterpolation(curve, 0.75, C, 2, 2);
}

// The weight is formed first here and the vector multiplied first there.
TEST(Evaluation, TheTwoEvaluatorsKeepTheirOrdersOfOperations) {
    const ParametricCurve curve = curveOn({0, 0.375, 1});
    bool differ = false;
    for (int i = 1; i < 4096; ++i) {
        const double s = i / 4096.0; // a float, so that rounding plays no part
        const std::size_t lo = s < 0.375 ? 0 : 1;
        const double sLo = lo == 0 ? 0.0 : 0.375;
        const double ds = (lo == 0 ? 0.375 : 1.0) - sLo;
        const Point& from = lo == 0 ? A : B;
        const Point difference = (lo == 0 ? B : C) - from;
        const Point weighted = from + difference * ((s - sLo) / ds);
        const Point multiplied = from + difference * (s - sLo) / ds;
        ASSERT_EQ(curve.getPointAtParameter(s), weighted);
        ASSERT_EQ(interpolateOnS(curve, s).point, multiplied);
        differ = differ || weighted != multiplied;
    }
    EXPECT_TRUE(differ);
}

// -- getClosestToSvaluePoint ----

TEST(Evaluation, ClosestInSTakesTheLaterOfATie) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.25), 1);
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.24), 0);
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.75), 2);
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.5), 1);
}

TEST(Evaluation, ClosestInSTakesTheFirstOfARun) {
    EXPECT_EQ(curveOn({0, 0.5, 0.5, 1}).getClosestToSvaluePoint(0.5), 1);
}

TEST(Evaluation, ClosestInSAssumesZeroToOne) {
    const ParametricCurve curve = curveOn({-5, 0.5, 7});
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.0), 0);
    EXPECT_EQ(curve.getClosestToSvaluePoint(-0.5), 0);
    EXPECT_EQ(curve.getClosestToSvaluePoint(kNaN), 0);
    EXPECT_EQ(curve.getClosestToSvaluePoint(1.0), 2);
    EXPECT_EQ(curve.getClosestToSvaluePoint(kInfinity), 2);
    EXPECT_EQ(curve.getClosestToSvaluePoint(0.6), 1);
}

TEST(Evaluation, ClosestInSIsTheLastWhereAllSvaluesEqualIt) {
    EXPECT_EQ(curveOn({0.5, 0.5}).getClosestToSvaluePoint(0.5), 1);
    EXPECT_EQ(curveOn({0.5, 0.5, 0.5}).getClosestToSvaluePoint(0.5), 2);
}

TEST(Evaluation, ClosestInSBeyondTheCurvesOwnSvaluesIsTheNearerEnd) {
    EXPECT_EQ(curveOn({0.5, 0.6, 0.7}).getClosestToSvaluePoint(0.1), 0);
    EXPECT_EQ(curveOn({0.5, 0.6, 0.7}).getClosestToSvaluePoint(0.9), 2);
    EXPECT_EQ(curveOn({2, 3, 4}).getClosestToSvaluePoint(0.9), 0);
    EXPECT_EQ(curveOn({-4, -3, -2}).getClosestToSvaluePoint(0.1), 2);
}

TEST(Evaluation, NaNSvaluesNeverLeadOutOfBounds) {
    RandomCurves random(40);
    for (int round = 0; round < 3000; ++round) {
        std::vector<double> s = random.svalues(random.count(2, 9));
        for (double& value : s) {
            value = random.chance(0.3) ? kNaN : value;
        }
        Points points(s.size());
        for (Point& point : points) {
            point = random.point(1.0);
        }
        ParametricCurve curve;
        try {
            curve.setPoints(points, s, ParametricCurve::dim3D);
        } catch (const qel::internal::error&) {
            continue;
        }
        const double at = random.parameter(s);
        curve.getPointAtParameter(at);
        const Interpolated result = interpolateOnS(curve, at);
        EXPECT_LT(result.lo, s.size());
        EXPECT_LT(result.hi, s.size());
        EXPECT_LT(curve.getClosestToSvaluePoint(at), static_cast<int>(s.size()));
    }
}

// -- By index ----

TEST(Evaluation, PointsAndSvaluesByIndex) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    EXPECT_EQ(curve.getPointAtIndex(0), A);
    EXPECT_EQ(curve.getPointAtIndex(2), C);
    EXPECT_EQ(curve.getFirstPoint(), A);
    EXPECT_EQ(curve.getLastPoint(), C);
    EXPECT_EQ(curve.getSvalues(1), 0.5);
}

TEST(Evaluation, AnIndexThatIsNotAPointsIsRefused) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    const CurveState before = stateOf(curve);
    for (const int id : {-1, 3, std::numeric_limits<int>::min()}) {
        EXPECT_THAT([&] { curve.getSvalues(id); },
                    throwsInternal("ParametricCurve", "getSvalues",
                                   "Point for requested id does not exist. Id=" +
                                       std::to_string(id) + ". Size=3 ."));
        EXPECT_THAT(
            [&] { curve.getPointAtIndex(id); },
            throwsInternal("ParametricCurve", "getPointAtIndex", "Point requested out of bounds"));
    }
    EXPECT_EQ(stateOf(curve), before);
}

// -- Components ----

TEST(Evaluation, ExtractsComponents) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    std::vector<double> values(9);
    curve.getX(values);
    EXPECT_THAT(values, ElementsAre(1, 4, 7));
    curve.getY(values);
    EXPECT_THAT(values, ElementsAre(2, -5, 8));
    curve.getZ(values);
    EXPECT_THAT(values, ElementsAre(3, 6, 100));
}

TEST(Evaluation, ExtractsNarrowedComponents) {
    const ParametricCurve curve(Points{{0.1, 0.2, 0.3}, {1e300, -1e300, 1e-300}},
                                ParametricCurve::dim3D);
    std::vector<float> values;
    curve.getX(values);
    EXPECT_THAT(values, ElementsAre(0.1f, INFINITY));
    curve.getY(values);
    EXPECT_THAT(values, ElementsAre(0.2f, -INFINITY));
    curve.getZ(values);
    EXPECT_THAT(values, ElementsAre(0.3f, 0.0f));
}

TEST(Evaluation, ExtractsComponentsAsTriplets) {
    const ParametricCurve curve = curveOn({0, 1});
    Points points(5, Point(9, 9, 9));
    curve.getX(points);
    EXPECT_EQ(points, (Points{{1, 0, 0}, {4, 0, 0}}));
    curve.getY(points);
    EXPECT_EQ(points, (Points{{0, 2, 0}, {0, -5, 0}}));
    curve.getZ(points);
    EXPECT_EQ(points, (Points{{0, 0, 3}, {0, 0, 6}}));
    FloatPoints narrow(1, FloatPoint(9, 9, 9));
    curve.getX(narrow);
    EXPECT_EQ(narrow, (FloatPoints{{1, 0, 0}, {4, 0, 0}}));
    curve.getY(narrow);
    EXPECT_EQ(narrow, (FloatPoints{{0, 2, 0}, {0, -5, 0}}));
    curve.getZ(narrow);
    EXPECT_EQ(narrow, (FloatPoints{{0, 0, 3}, {0, 0, 6}}));
}

// -- Bounds ----

TEST(Evaluation, Bounds) {
    const ParametricCurve curve = curveOn({0, 0.5, 1});
    double xmin, xmax, ymin, ymax, zmin, zmax;
    curve.getMinMax(xmin, xmax, ymin, ymax, zmin, zmax);
    EXPECT_THAT((std::vector<double>{xmin, xmax, ymin, ymax, zmin, zmax}),
                ElementsAre(1, 7, -5, 8, 3, 100));
    double min, max;
    curve.getMinMaxX(min, max);
    EXPECT_THAT((std::vector<double>{min, max}), ElementsAre(1, 7));
    curve.getMinMaxY(min, max);
    EXPECT_THAT((std::vector<double>{min, max}), ElementsAre(-5, 8));
    curve.getMinMaxZ(min, max);
    EXPECT_THAT((std::vector<double>{min, max}), ElementsAre(3, 100));
}

TEST(Evaluation, ANaNEntersBoundsOnlyFromTheFirstPoint) {
    double min, max;
    ParametricCurve(Points{{1, 0, 0}, {kNaN, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D)
        .getMinMaxX(min, max);
    EXPECT_EQ(min, 1.0);
    EXPECT_EQ(max, 2.0);
    const ParametricCurve first(Points{{kNaN, 0, 0}, {1, 0, 0}}, ParametricCurve::dim3D);
    first.getMinMaxX(min, max);
    EXPECT_TRUE(std::isnan(min));
    EXPECT_TRUE(std::isnan(max));
    EXPECT_EQ(first.getMinXid(), 0u);
    EXPECT_EQ(first.getMaxXid(), 0u);
}

TEST(Evaluation, BoundsKeepTheFirstOfZerosWithSigns) {
    double min, max;
    ParametricCurve(Points{{-0.0, 0, 0}, {0.0, 0, 0}}, ParametricCurve::dim3D).getMinMaxX(min, max);
    EXPECT_TRUE(std::signbit(min));
    EXPECT_TRUE(std::signbit(max));
}

// Each component has its extremes at points of its own.
TEST(Evaluation, ExtremeIndicesAreThoseOfTheirComponent) {
    const ParametricCurve curve(
        Points{{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}},
        ParametricCurve::dim3D);
    EXPECT_EQ(curve.getMinXid(), 0u);
    EXPECT_EQ(curve.getMaxXid(), 1u);
    EXPECT_EQ(curve.getMinYid(), 2u);
    EXPECT_EQ(curve.getMaxYid(), 3u);
    EXPECT_EQ(curve.getMinZid(), 4u);
    EXPECT_EQ(curve.getMaxZid(), 5u);
}

TEST(Evaluation, ExtremeIndicesKeepTheEarliestOfATie) {
    ParametricCurve curve;
    curve.setPointsX(std::vector<double>{3, 1, 1, 2});
    EXPECT_EQ(curve.getMinXid(), 1u);
    curve.setPointsX(std::vector<double>{3, 1, 3});
    EXPECT_EQ(curve.getMaxXid(), 0u);
    curve.setPointsY(std::vector<double>{2, 2, 1, 5, 1, 5});
    EXPECT_EQ(curve.getMinYid(), 2u);
    EXPECT_EQ(curve.getMaxYid(), 3u);
    EXPECT_EQ(curve.getMinXid(), 0u);
    curve.setPointsZ(std::vector<double>{2, 7, 1, 7, 1});
    EXPECT_EQ(curve.getMinZid(), 2u);
    EXPECT_EQ(curve.getMaxZid(), 1u);
}

// -- Against the reference ----

int referenceClosestInS(const std::vector<double>& s, double at) {
    const int last = static_cast<int>(s.size()) - 1;
    if (!(at > 0.0)) {
        return 0;
    }
    if (!(at < 1.0) || !(at < s.back())) {
        return last;
    }
    if (!(at > s.front())) {
        return 0;
    }
    std::size_t lo = 0;
    std::size_t hi = 0;
    referenceBracket(s, at, lo, hi);
    return static_cast<int>(std::abs(at - s[lo]) < std::abs(at - s[hi]) ? lo : hi);
}

TEST(Evaluation, RandomCurvesFollowTheRulesBitForBit) {
    RandomCurves random(41);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = random.curve(25);
        const Points& points = curve.getCurve();
        const Values& s = curve.getSvalues();
        for (int probe = 0; probe < 10; ++probe) {
            const double at = random.parameter(s);
            SCOPED_TRACE(at);
            ASSERT_PRED2(samePoint, curve.getPointAtParameter(at), referenceAt(points, s, at));
            Interpolated expected{};
            expected.point = referenceInterpolated(points, s, at, expected.lo, expected.hi);
            const Interpolated actual = interpolateOnS(curve, at);
            ASSERT_PRED2(samePoint, actual.point, expected.point);
            ASSERT_EQ(actual.lo, expected.lo);
            ASSERT_EQ(actual.hi, expected.hi);
            ASSERT_EQ(curve.getClosestToSvaluePoint(at), referenceClosestInS(s, at));
        }
    }
}

} // namespace
