// Points at parameters, steps of s, and lists of numbers; the walk along s-values against a plain
// search for each.

#include <algorithm>
#include <memory>

#include <qel/ParametricCurve.h>

#include "PlainCurve.h"
#include "curve/ParameterWalk.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

const char kTooSmall[] = "Requested size less than 2.";

ParametricCurve withSvalues(const Points& points, const Values& s) {
    return ParametricCurve(points, s, ParametricCurve::dim3D);
}

// -- The fast road ----

// Asks one walk for all parameters, and the plain search for each.
void expectWalkIsPlain(const Points& p, const Values& s, const Values& parameters,
                       std::size_t expected) {
    qel::ParameterWalk walk(p, s, expected);
    Points plain;
    for (const double at : parameters) {
        plain.push_back(plainAt(p, s, at));
        EXPECT_TRUE(sameBits(walk.at(at), plain.back())) << at;
    }
    Points together;
    qel::ParameterWalk(p, s, expected)
        .forEach(
            0, parameters.size(), [&](std::size_t k) { return parameters[k]; },
            [&](std::size_t k, const Point& point) {
                EXPECT_EQ(k, together.size());
                together.push_back(point);
            });
    EXPECT_TRUE(sameBitsInAll(together, plain));
    const Point untouched(1, 2, 3);
    Points ofList(parameters.size() + 1, untouched);
    qel::ParameterWalk(p, s, expected)
        .pointsAt(parameters.data(), parameters.size(), ofList.data());
    EXPECT_EQ(ofList.back(), untouched);
    ofList.pop_back();
    EXPECT_TRUE(sameBitsInAll(ofList, plain));
}

TEST(ParameterWalk, FindsWhatAPlainSearchFinds) {
    CurveMaker make(21);
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const Points& p = curve.getCurve();
        const Values& s = curve.getSvalues();
        Values parameters(1 + make.index(40));
        for (double& at : parameters) {
            at = make.parameter(s);
        }
        expectWalkIsPlain(p, s, parameters, parameters.size()); // any order
        std::sort(parameters.begin(), parameters.end());
        expectWalkIsPlain(p, s, parameters, parameters.size());
        expectWalkIsPlain(p, s, parameters, 0); // searches throughout
        std::reverse(parameters.begin(), parameters.end());
        expectWalkIsPlain(p, s, parameters, parameters.size());
    }
}

// Jumps farther than a few steps, both ways, and long runs of equal s-values.
TEST(ParameterWalk, FollowsJumpsAndRuns) {
    CurveMaker make(22);
    const std::size_t n = 400;
    Points p(n);
    Values s(n);
    for (std::size_t i = 0; i < n; ++i) {
        p[i] = Point(make.uniform(-1, 1), make.uniform(-1, 1), static_cast<double>(i));
        s[i] = std::floor(static_cast<double>(i) / (i % 90 < 45 ? 1.0 : 30.0)) / 400.0;
    }
    std::sort(s.begin(), s.end());
    Values parameters;
    for (int k = 0; k < 4000; ++k) {
        parameters.push_back(make.parameter(s));
    }
    expectWalkIsPlain(p, s, parameters, parameters.size());
    std::sort(parameters.begin(), parameters.end());
    expectWalkIsPlain(p, s, parameters, parameters.size());
}

// Distinct s-values from `from` to 1; the higher the power, the more of them crowd at the front.
Values crowded(CurveMaker& make, std::size_t n, double from, double power) {
    Values s(n);
    for (double& at : s) {
        at = from + (1.0 - from) * std::pow(make.uniform(0.0, 1.0), power);
    }
    s.front() = from;
    s.back() = 1.0;
    std::sort(s.begin(), s.end());
    s.erase(std::unique(s.begin(), s.end()), s.end());
    return s;
}

// Long sorted lists, whose blocks are merged or found in windows: as many parameters as s-values,
// more or fewer, both crowded in places, on s-values and beside them, repeated, beyond the ends.
TEST(ParameterWalk, FindsBlocksOfSortedParameters) {
    CurveMaker make(26);
    for (const std::size_t n : {2u, 3u, 40u, 300u, 3000u, 9000u}) {
        for (const double from : {0.0, -0.0, 0.25, -0.25}) {
            for (const double power : {1.0, 4.0}) {
                SCOPED_TRACE(std::to_string(n) + " s-values from " + std::to_string(from));
                const Values s = crowded(make, n, from, power);
                Points p(s.size());
                for (Point& point : p) {
                    point = Point(make.uniform(-1, 1), make.uniform(-1, 1), make.uniform(-1, 1));
                }
                Values parameters = crowded(make, 1500, from - 0.001, 5.0 - power);
                for (std::size_t k = 0; k < parameters.size(); k += 5) {
                    parameters[k] = s[make.index(s.size())];
                }
                std::sort(parameters.begin(), parameters.end());
                onEveryVectorUnit([&] { expectWalkIsPlain(p, s, parameters, s.size()); });
            }
        }
    }
}

// In no order, few to a step of s and many, with some on s-values, beyond the ends and NaN.
TEST(ParameterWalk, FindsBlocksOfUnsortedParameters) {
    CurveMaker make(29);
    for (const std::size_t n : {2u, 3u, 17u, 300u, 4000u}) {
        for (const double from : {0.0, -0.5, 0.25}) {
            SCOPED_TRACE(std::to_string(n) + " s-values from " + std::to_string(from));
            const Values s = crowded(make, n, from, 3.0);
            Points p(s.size());
            for (Point& point : p) {
                point = Point(make.uniform(-1, 1), make.uniform(-1, 1), make.uniform(-1, 1));
            }
            Values parameters;
            for (std::size_t k = 0; k < 1100; ++k) {
                parameters.push_back(make.parameter(s));
            }
            for (const std::size_t k : {0u, 300u, 301u, 600u, 1099u}) {
                parameters[k] = kNaN;
            }
            onEveryVectorUnit([&] { expectWalkIsPlain(p, s, parameters, s.size()); });
        }
    }
}

// Evenly spread parameters, on s-values and between them, from many to a parameter to few.
TEST(ParameterWalk, FindsBlocksOfEvenParameters) {
    CurveMaker make(28);
    for (const std::size_t n : {17u, 100u, 700u, 2100u}) {
        Points p(n);
        Values s(n);
        for (std::size_t i = 0; i < n; ++i) {
            p[i] = Point(static_cast<double>(i), make.uniform(-1, 1), make.uniform(-1, 1));
            s[i] = static_cast<double>(i) / static_cast<double>(n - 1);
        }
        for (const std::size_t count : {8u, 9u, 99u, 265u, 700u, 1399u, 2100u}) {
            SCOPED_TRACE(std::to_string(n) + " s-values, " + std::to_string(count) + " parameters");
            Values parameters(count);
            for (std::size_t k = 0; k < count; ++k) {
                parameters[k] = static_cast<double>(k) / static_cast<double>(count - 1);
            }
            onEveryVectorUnit([&] { expectWalkIsPlain(p, s, parameters, n); });
        }
    }
}

// A block with one parameter out of place, NaN or beyond an end among others that are found
// together.
TEST(ParameterWalk, NoticesAParameterOutOfOrder) {
    CurveMaker make(27);
    const Values s = crowded(make, 1000, 0.0, 1.0);
    Points p(s.size());
    for (std::size_t i = 0; i < p.size(); ++i) {
        p[i] = Point(static_cast<double>(i), make.uniform(-1, 1), make.uniform(-1, 1));
    }
    const Values sorted = crowded(make, 1100, 0.0, 2.0);
    for (const double wrong : {kNaN, -1.0, 0.0, 0.5, 1.0, 2.0}) {
        for (const std::size_t at :
             {0u,  1u,   7u,   8u,   9u,   10u,  11u,   12u,   13u,   14u,  15u,
              16u, 255u, 256u, 300u, 511u, 512u, 1000u, 1091u, 1092u, 1099u}) {
            Values parameters = sorted;
            parameters[at] = wrong;
            onEveryVectorUnit([&] { expectWalkIsPlain(p, s, parameters, s.size()); });
        }
    }
}

// Steps near the size at which s-values count as equal, at every decade.
TEST(ParameterWalk, CountsTheSameStepsAsEqual) {
    CurveMaker make(23);
    for (int decade = -30; decade <= 30; ++decade) {
        const double base = std::pow(10.0, decade / 2.0);
        Values s{base};
        for (int i = 1; i < 60; ++i) {
            const double tick = 100.0 * qel::NumericalUtils::spacing(s.back());
            s.push_back(s.back() + tick * make.uniform(0.0, 2.0));
        }
        Points p(s.size());
        for (Point& point : p) {
            point = Point(make.uniform(-1, 1), make.uniform(-1, 1), make.uniform(-1, 1));
        }
        Values parameters;
        for (std::size_t i = 1; i < s.size(); ++i) {
            parameters.push_back(s[i - 1] + 0.3 * (s[i] - s[i - 1]));
        }
        expectWalkIsPlain(p, s, parameters, parameters.size());
    }
}

TEST(ParameterWalk, AgreesWithGetPointAtParameterWhereSvaluesHoldNaN) {
    const Points p{{0, 0, 0}, {1, 2, 3}, {4, 5, 6}, {7, 8, 8}, {9, 9, 9}};
    const Values kinds[] = {{0.0, kNaN, 0.5, 0.7, 1.0},
                            {kNaN, 0.2, 0.5, 0.7, 1.0},
                            {0.0, 0.2, kNaN, 0.1, 1.0},
                            {0.0, 0.2, 0.5, 0.7, kNaN}};
    for (const Values& s : kinds) {
        const ParametricCurve curve = withSvalues(p, s);
        qel::ParameterWalk walk(p, s, 100);
        for (double at = -0.1; at < 1.2; at += 0.01) {
            EXPECT_TRUE(sameBits(walk.at(at), curve.getPointAtParameter(at))) << at;
        }
    }
}

// The order of s-values is made sure of in lanes: one out of order must show in each of them.
TEST(ParameterWalk, NeverWalksAlongSvaluesOutOfOrderOnAnyVectorUnit) {
    const std::size_t n = 40;
    CurveMaker make(24);
    Points p(n);
    for (Point& point : p) {
        point = Point(make.uniform(-1, 1), make.uniform(-1, 1), make.uniform(-1, 1));
    }
    for (std::size_t wrong = 1; wrong + 1 < n; ++wrong) {
        for (const double value : {kNaN, -1.0, 2.0}) {
            Values s(n);
            for (std::size_t i = 0; i < n; ++i) {
                s[i] = static_cast<double>(i) / static_cast<double>(n - 1);
            }
            s[wrong] = value;
            onEveryVectorUnit([&] {
                qel::ParameterWalk(p, s, n).forEach(
                    0, n, [&](std::size_t k) { return (static_cast<double>(k) + 0.5) / 40.0; },
                    [&](std::size_t k, const Point& point) {
                        const double at = (static_cast<double>(k) + 0.5) / 40.0;
                        EXPECT_TRUE(sameBits(point, qel::ParameterWalk(p, s, 0).at(at))) << at;
                    });
            });
        }
    }
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

TEST(Sampling, EquidistantIsThatOfThePlainStatement) {
    CurveMaker make(24);
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const int count = 2 + static_cast<int>(make.index(make.index(5) == 0 ? 300 : 12));
        Points expected{curve.getFirstPoint()};
        const double h = 1.0 / (count - 1);
        for (int k = 1; k <= count - 2; ++k) {
            expected.push_back(plainAt(curve.getCurve(), curve.getSvalues(), k * h));
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

TEST(Sampling, BySvaluesIsThatOfThePlainStatement) {
    CurveMaker make(25);
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
                expected.push_back(plainAt(curve.getCurve(), curve.getSvalues(), value));
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

// -- With a largest step of s ----

TEST(Sampling, MinimumSWithFewerThanTwoIsACopy) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.5, 2.0});
    for (const int count : {1, 0, -7}) {
        Points points{{9, 9, 9}};
        Values s;
        curve.getCurveWithMinimumS(points, s, count);
        EXPECT_EQ(points, curve.getCurve());
        EXPECT_EQ(s, curve.getSvalues()); // also the first: no literal zero here
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

TEST(Sampling, MinimumSIsThatOfThePlainStatement) {
    CurveMaker make(26);
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
                expected.push_back(plainAt(p, s, at));
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
    for (const double far : {1e12, 1e300, kInfinity}) {
        Points points{{9, 9, 9}};
        Values s{7.0};
        EXPECT_THROW(withSvalues(p, {0.0, far}).getCurveWithMinimumS(points, s, 2000000000),
                     qel::internal::error);
        EXPECT_EQ(points, Points({{9, 9, 9}}));
        EXPECT_EQ(s, Values({7.0}));
    }
    Points points;
    Values s;
    EXPECT_THAT(
        [&] {
            withSvalues(p, {0.0, 4e9}).getCurveWithMinimumS(points, s, 2);
        },
        throwsInternal("ParametricCurve", "getCurveWithMinimumS",
                       "Requested number of points exceeds 2147483647."));
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

TEST(Sampling, RatiosAreThoseOfThePlainStatement) {
    CurveMaker make(27);
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

TEST(Sampling, CosineSampleOfHalfATurn) {
    Values values;
    ParametricCurve().getCosineCurveSample(1, 0.0, 3.141592653589793, values);
    ASSERT_EQ(values.size(), 3u);
    EXPECT_EQ(values[0], 1.0);
    EXPECT_NEAR(values[1], 0.0, 1e-16);
    EXPECT_EQ(values[2], -1.0);
}

TEST(Sampling, SamplesAreThoseOfThePlainStatement) {
    CurveMaker make(28);
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
