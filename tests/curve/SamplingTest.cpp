// Points at parameters, steps of s, and lists of numbers.

#include <algorithm>
#include <memory>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;

const char kTooSmall[] = "Requested size less than 2.";

ParametricCurve withSvalues(const Points& points, const Values& s) {
    return ParametricCurve(points, s, ParametricCurve::dim3D);
}

// -- At equal steps ----

TEST(Sampling, EquidistantCopiesTheEndsAndEvaluatesBetween) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}}, {0.0, 0.5, 1.0});
    Points points{{9, 9, 9}};
    curve.getCurveForEquidistantS(points, 5);
    EXPECT_EQ(points, Points({{0, 0, 0}, {0.5, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
    curve.getCurveForEquidistantS(points, 2);
    EXPECT_EQ(points, Points({{0, 0, 0}, {3, 0, 0}}));
}

// The parameters run over 0..1 whatever the curve's own range: here all lie before or behind it.
TEST(Sampling, EquidistantParametersAreThoseOfANormalisedCurve) {
    const Points p{{0, 0, 0}, {1, 0, 0}, {3, 0, 0}};
    Points points;
    withSvalues(p, {5.0, 6.0, 7.0}).getCurveForEquidistantS(points, 4);
    EXPECT_EQ(points, Points({p[0], p[0], p[0], p[2]}));
    withSvalues(p, {-3.0, -2.0, -1.0}).getCurveForEquidistantS(points, 4);
    EXPECT_EQ(points, Points({p[0], p[2], p[2], p[2]}));
}

TEST(Sampling, EquidistantRefusesFewerThanTwo) {
    for (const int count : {1, 0, -1, std::numeric_limits<int>::min()}) {
        Points points{{1, 1, 1}};
        EXPECT_THAT([&] { ParametricCurve().getCurveForEquidistantS(points, count); },
                    throwsInternal("ParametricCurve", "getCurveForEquidistantS", kTooSmall));
        EXPECT_TRUE(points.empty()); // emptied before the check
        FloatPoints narrow;
        EXPECT_THAT([&] { ParametricCurve().getCurveForEquidistantS(narrow, count); },
                    throwsInternal("ParametricCurve", "getCurveForEquidistantS", kTooSmall));
    }
}

TEST(Sampling, EquidistantMatchesReferenceBitForBit) {
    RandomCurves make(24);
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const int count = 2 + static_cast<int>(make.index(make.index(5) == 0 ? 300 : 12));
        Points expected{curve.getFirstPoint()};
        const double h = 1.0 / (count - 1);
        for (int k = 1; k <= count - 2; ++k) {
            expected.push_back(referenceAt(curve.getCurve(), curve.getSvalues(), k * h));
        }
        expected.push_back(curve.getLastPoint());
        Points points;
        FloatPoints narrow;
        curve.getCurveForEquidistantS(points, count);
        curve.getCurveForEquidistantS(narrow, count);
        EXPECT_TRUE(sameBitsInAll(points, expected));
        EXPECT_TRUE(sameBitsInAll(narrow, qel_test::narrowed(expected)));
    }
}

// -- At given s-values ----

TEST(Sampling, BySvaluesKeepsTheEndsWhenAsked) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}}, {0.0, 0.5, 1.0});
    Points points;
    curve.getCurveBySvalues(points, {0.25, 0.75, 0.5}, true);
    EXPECT_EQ(points, Points({{0, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
    curve.getCurveBySvalues(points, {0.25, 0.75, 0.5}, false); // unsorted is fine
    EXPECT_EQ(points, Points({{0.5, 0, 0}, {2, 0, 0}, {1, 0, 0}}));
}

TEST(Sampling, BySvaluesMatchesReferenceBitForBit) {
    RandomCurves make(25);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        Values at(2 + make.index(20));
        for (double& value : at) {
            value = make.index(30) == 0 ? kNaN : make.parameter(curve.getSvalues());
        }
        if (make.index(2) == 0) {
            std::sort(at.begin(), at.end());
        }
        for (const bool keepEnds : {true, false}) {
            Points expected;
            for (const double value : at) {
                expected.push_back(referenceAt(curve.getCurve(), curve.getSvalues(), value));
            }
            if (keepEnds) {
                expected.front() = curve.getFirstPoint();
                expected.back() = curve.getLastPoint();
            }
            Values expectedX;
            for (const Point& p : expected) {
                expectedX.push_back(p.x);
            }
            Points points;
            FloatPoints narrow;
            Values xs;
            curve.getCurveBySvalues(points, at, keepEnds);
            curve.getCurveBySvalues(narrow, at, keepEnds);
            curve.getCurveXBySvalues(xs, at, keepEnds);
            EXPECT_TRUE(sameBitsInAll(points, expected));
            EXPECT_TRUE(sameBitsInAll(narrow, qel_test::narrowed(expected)));
            EXPECT_TRUE(sameBitsInAll(xs, expectedX));
            std::unique_ptr<ParametricCurve> made(curve.createNewCurveBySvalues(at, keepEnds));
            const ParametricCurve direct(expected, curve.getDimension());
            EXPECT_TRUE(sameBitsInAll(made->getCurve(), direct.getCurve()));
            EXPECT_TRUE(sameBitsInAll(made->getSvalues(), direct.getSvalues()));
        }
    }
}

TEST(Sampling, BySvaluesRefusesFewerThanTwo) {
    const ParametricCurve curve;
    for (const Values& s : {Values{}, Values{0.5}}) {
        Points points{{1, 1, 1}};
        FloatPoints narrow;
        Values xs{1.0};
        const auto refused = throwsInternal("ParametricCurve", "getCurveBySvalues", kTooSmall);
        EXPECT_THAT([&] { curve.getCurveBySvalues(points, s, true); }, refused);
        EXPECT_TRUE(points.empty());
        EXPECT_THAT([&] { curve.getCurveBySvalues(narrow, s, true); }, refused);
        EXPECT_THAT([&] { curve.getCurveXBySvalues(xs, s, false); },
                    throwsInternal("ParametricCurve", "getCurveXBySvalues", kTooSmall));
        EXPECT_TRUE(xs.empty());
        // A new curve fails through getCurveBySvalues and says so.
        EXPECT_THAT([&] { delete curve.createNewCurveBySvalues(s, true); }, refused);
    }
}

// The list of parameters may be overwritten by what is found at them.
TEST(Sampling, XBySvaluesMayReplaceItsParameters) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {4, 0, 0}}, {0.0, 1.0});
    Values values{0.25, 0.5, 0.75};
    curve.getCurveXBySvalues(values, values, false);
    EXPECT_EQ(values, Values({1.0, 2.0, 3.0}));
}

TEST(Sampling, ANewCurveComputesItsOwnSvalues) {
    const ParametricCurve curve(Points{{0, 0, 5}, {1, 0, 5}, {2, 0, 5}}, Values{0.0, 0.125, 1.0},
                                ParametricCurve::dim2D);
    std::unique_ptr<ParametricCurve> made(curve.createNewCurveBySvalues({0.0, 0.125, 1.0}, true));
    EXPECT_EQ(made->getSvalues(), Values({0.0, 0.5, 1.0}));
    EXPECT_EQ(made->getParametrization(), ParametricCurve::parametrizationComputed);
    EXPECT_EQ(made->getDimension(), ParametricCurve::dim2D);
    EXPECT_EQ(made->getLength(), 2.0);
    EXPECT_TRUE(made->isCurveCreatedAsDouble());
}

// The new curve is built for this one's dimension, which may be one that was refused.
TEST(Sampling, ANewCurveOfAnUnrecognisedDimensionIsRefused) {
    ParametricCurve curve;
    const auto refused =
        throwsInternal("ParametricCurve", "setPoints", "Unrecognised dimension of the curve.");
    EXPECT_THAT([&] { curve.setPoints(Points(2), static_cast<ParametricCurve::dim>(3)); }, refused);
    EXPECT_THAT([&] { delete curve.createNewCurveBySvalues({0.0, 1.0}, true); }, refused);
}

// -- With a largest step of s ----

TEST(Sampling, MinimumSWithFewerThanTwoIsACopy) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.5, 2.0});
    for (const int count : {1, 0, -7}) {
        Points points{{9, 9, 9}};
        Values s;
        curve.getCurveWithMinimumS(points, s, count);
        EXPECT_EQ(points, curve.getCurve());
        EXPECT_EQ(s, curve.getSvalues()); // also the first: no literal zero here
        FloatPoints narrow;
        s.clear();
        curve.getCurveWithMinimumS(narrow, s, count);
        EXPECT_EQ(narrow, qel_test::narrowed(curve.getCurve()));
        EXPECT_EQ(s, curve.getSvalues());
        points.clear();
        narrow.clear();
        curve.getCurveWithMinimumS(points, count);
        curve.getCurveWithMinimumS(narrow, count);
        EXPECT_EQ(points, curve.getCurve());
        EXPECT_EQ(narrow, qel_test::narrowed(curve.getCurve()));
    }
}

TEST(Sampling, MinimumSLeavesAStepOfExactlyThatSizeAlone) {
    Points points;
    Values s;
    withSvalues({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}}, {0.0, 0.5, 1.25})
        .getCurveWithMinimumS(points, s, 3);
    EXPECT_EQ(s, Values({0.0, 0.5, 0.875, 1.25}));
    EXPECT_EQ(points, Points({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
}

// The first s-value is the literal 0, not the curve's.
TEST(Sampling, MinimumSStartsAtZero) {
    Points points;
    Values s;
    withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.75, 1.0}).getCurveWithMinimumS(points, s, 2);
    EXPECT_EQ(s, Values({0.0, 1.0}));
}

TEST(Sampling, MinimumSThatRoundsToTheEndsOfAStepTakesTheirPoints) {
    const Point a{0, 0, 0}, b{1, 2, 3};
    Points points;
    Values s;
    withSvalues({a, b}, {1e16, 1e16 + 2.0}).getCurveWithMinimumS(points, s, 3);
    EXPECT_EQ(s, Values({0.0, 1e16, 1e16, 1e16 + 2.0, 1e16 + 2.0, 1e16 + 2.0}));
    EXPECT_EQ(points, Points({a, a, a, b, b, b}));
}

TEST(Sampling, MinimumSMatchesReferenceBitForBit) {
    RandomCurves make(26);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const Points& p = curve.getCurve();
        const Values& s = curve.getSvalues();
        const int count = 2 + static_cast<int>(make.index(30));
        const double h = 1.0 / (count - 1);
        if ((s.back() - s.front()) / h > 20000.0) {
            continue; // long lists show nothing more
        }
        Points expected{p[0]};
        Values expectedS{0.0};
        for (std::size_t i = 1; i < p.size(); ++i) {
            const double d = s[i] - s[i - 1];
            const double x = d / h;
            const int k = x <= 1.0 ? 0 : static_cast<int>(std::floor(x));
            for (int j = 1; j <= k; ++j) {
                const double at = d * j / (k + 1) + s[i - 1];
                expected.push_back(referenceAt(p, s, at));
                expectedS.push_back(at);
            }
            expected.push_back(p[i]);
            expectedS.push_back(s[i]);
        }
        Points points;
        Values found;
        curve.getCurveWithMinimumS(points, found, count);
        EXPECT_TRUE(sameBitsInAll(points, expected));
        EXPECT_TRUE(sameBitsInAll(found, expectedS));
        FloatPoints narrow;
        Values narrowS;
        curve.getCurveWithMinimumS(narrow, narrowS, count);
        EXPECT_TRUE(sameBitsInAll(narrow, qel_test::narrowed(expected)));
        EXPECT_TRUE(sameBitsInAll(narrowS, expectedS));
        points.clear();
        narrow.clear();
        curve.getCurveWithMinimumS(points, count);
        curve.getCurveWithMinimumS(narrow, count);
        EXPECT_TRUE(sameBitsInAll(points, expected));
        EXPECT_TRUE(sameBitsInAll(narrow, qel_test::narrowed(expected)));
    }
}

// More points than an int can number are refused before the outputs are touched.
TEST(Sampling, MinimumSRefusesAnAbsurdNumberOfPoints) {
    const Points p{{0, 0, 0}, {1, 0, 0}};
    const auto refused = throwsInternal("ParametricCurve", "getCurveWithMinimumS",
                                        "Requested number of points exceeds 2147483647.");
    for (const double far : {1e12, 1e300, kInfinity}) {
        Points points{{9, 9, 9}};
        Values s{7.0};
        EXPECT_THAT(
            [&] {
                withSvalues(p, {0.0, far}).getCurveWithMinimumS(points, s, 2000000000);
            },
            refused);
        EXPECT_EQ(points, Points({{9, 9, 9}}));
        EXPECT_EQ(s, Values({7.0}));
    }
    Points points;
    Values s;
    EXPECT_THAT([&] { withSvalues(p, {0.0, 4e9}).getCurveWithMinimumS(points, s, 2); }, refused);
}

TEST(Sampling, MinimumSInsertsNothingIntoANaNStep) {
    Points points;
    Values s;
    withSvalues({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0.0, kNaN, 1.0})
        .getCurveWithMinimumS(points, s, 100);
    EXPECT_EQ(points.size(), 3u);
}

// -- s-values and their steps ----

TEST(Sampling, SvaluesOfIds) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0.0, 0.25, 1.0});
    EXPECT_EQ(curve.getSvalues({2, 0, 1, 2}), Values({1.0, 0.0, 0.25, 1.0}));
    EXPECT_THAT([&] { curve.getSvalues(std::vector<int>()); },
                throwsInternal("ParametricCurve", "getSvalues", "Vector of Ids empty"));
    EXPECT_THAT(
        [&] {
            curve.getSvalues(std::vector<int>{0, 3});
        },
        throwsInternal("ParametricCurve", "getSvalues",
                       "Point for requested id does not exist. Id=3. Size=3 ."));
    EXPECT_THAT([&] { curve.getSvalues(std::vector<int>{-1}); },
                throwsInternal("ParametricCurve", "getSvalues",
                               "Point for requested id does not exist. Id=-1. Size=3 ."));
}

TEST(Sampling, RatiosOfTwoSvaluesAreZero) {
    Values ratios{1.0, 2.0, 3.0};
    ParametricCurve().getRatioForward(ratios);
    EXPECT_EQ(ratios, Values({0.0, 0.0}));
    ParametricCurve().getRatioBackward(ratios);
    EXPECT_EQ(ratios, Values({0.0, 0.0}));
}

TEST(Sampling, RatiosOfEqualStepsAreOneHalf) {
    Values forward;
    Values backward;
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}},
                                ParametricCurve::dim3D);
    curve.getRatioForward(forward);
    curve.getRatioBackward(backward);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_DOUBLE_EQ(forward[i], 0.5);
        EXPECT_DOUBLE_EQ(backward[i], 0.5);
    }
}

TEST(Sampling, RatiosMatchReferenceBitForBit) {
    RandomCurves make(27);
    const double floor = static_cast<double>(std::numeric_limits<float>::min());
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const ParametricCurve curve = make.curve();
        const Values& s = curve.getSvalues();
        const std::size_t m = s.size();
        Values forward(m, 0.0);
        Values backward(m, 0.0);
        for (std::size_t i = 1; i + 1 < m; ++i) {
            forward[i] = (s[i] - s[i - 1]) / (s[i + 1] - s[i - 1] + floor);
            backward[i] = (s[i + 1] - s[i]) / (s[i + 1] - s[i - 1] + floor);
        }
        if (m >= 3) {
            forward[0] = forward[1];
            forward[m - 1] = forward[m - 2];
            backward[0] = backward[1];
            backward[m - 1] = backward[m - 2];
        }
        Values ratios;
        curve.getRatioForward(ratios);
        EXPECT_TRUE(sameBitsInAll(ratios, forward));
        curve.getRatioBackward(ratios);
        EXPECT_TRUE(sameBitsInAll(ratios, backward));
    }
}

// -- Lists of numbers ----

TEST(Sampling, LinearSampleOfNoneInBetweenIsTheEnds) {
    Values values{1.0, 2.0, 3.0, 4.0};
    ParametricCurve().getLinearCurveSample(0, 2.0, 5.0, values);
    EXPECT_EQ(values, Values({2.0, 5.0}));
}

// Both ends are copied: neither a zero's sign nor rounding enters.
TEST(Sampling, LinearSampleEndsWhereAsked) {
    Values values;
    ParametricCurve().getLinearCurveSample(48, -0.0, 1.0, values);
    EXPECT_TRUE(sameBits(values.front(), -0.0));
    EXPECT_EQ(values.back(), 1.0);
    EXPECT_NE(49 * (1.0 / 49), 1.0);
}

TEST(Sampling, CosineSampleOfHalfATurn) {
    Values values;
    ParametricCurve().getCosineCurveSample(1, 0.0, 3.141592653589793, values);
    ASSERT_EQ(values.size(), 3u);
    EXPECT_EQ(values[0], 1.0);
    EXPECT_NEAR(values[1], 0.0, 1e-16);
    EXPECT_EQ(values[2], -1.0);
}

TEST(Sampling, SamplesMatchReferenceBitForBit) {
    RandomCurves make(28);
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const int count = static_cast<int>(make.index(20));
        const double from = make.uniform(-9.0, 9.0);
        const double to = make.uniform(-9.0, 9.0);
        const double h = (to - from) / (count + 1);
        Values cosine;
        Values linear{from};
        for (int k = 0; k <= count + 1; ++k) {
            cosine.push_back(std::cos(from + k * h));
        }
        for (int k = 1; k <= count; ++k) {
            linear.push_back(k * h + from);
        }
        linear.push_back(to);
        Values values;
        ParametricCurve().getCosineCurveSample(count, from, to, values);
        EXPECT_TRUE(sameBitsInAll(values, cosine));
        ParametricCurve().getLinearCurveSample(count, from, to, values);
        EXPECT_TRUE(sameBitsInAll(values, linear));
    }
}

TEST(Sampling, SamplesRefuseANegativeCount) {
    Values values{7.0};
    for (const int count : {-1, std::numeric_limits<int>::min()}) {
        const std::string message =
            "Requested number of points is negative. Count=" + std::to_string(count);
        EXPECT_THAT([&] { ParametricCurve().getCosineCurveSample(count, 0.0, 1.0, values); },
                    throwsInternal("ParametricCurve", "getCosineCurveSample", message));
        EXPECT_THAT([&] { ParametricCurve().getLinearCurveSample(count, 0.0, 1.0, values); },
                    throwsInternal("ParametricCurve", "getLinearCurveSample", message));
        EXPECT_EQ(values, Values({7.0}));
    }
}

} // namespace
