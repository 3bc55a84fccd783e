// The points at many parameters: each the one that the reference implementation finds for it.

#include "curve/BatchEvaluation.h"

#include <algorithm>
#include <cmath>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Shapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

void expectReferencePoints(const Points& p, const Values& s, const Values& parameters,
                           std::size_t expected) {
    Points reference;
    for (const double at : parameters) {
        reference.push_back(referenceAt(p, s, at));
    }
    const Point untouched(1, 2, 3);
    Points points(parameters.size() + 1, untouched);
    qel::BatchEvaluation(p, s, expected)
        .pointsAt(parameters.data(), parameters.size(), points.data());
    EXPECT_EQ(points.back(), untouched);
    points.pop_back();
    EXPECT_TRUE(sameBitsInAll(points, reference));
}

TEST(BatchEvaluation, AnyOrderOfParametersMatchesReferenceBitForBit) {
    RandomCurves make(21);
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const Points& p = curve.getCurve();
        const Values& s = curve.getSvalues();
        Values parameters(1 + make.index(40));
        for (double& at : parameters) {
            at = make.parameter(s);
        }
        expectReferencePoints(p, s, parameters, parameters.size()); // any order
        std::sort(parameters.begin(), parameters.end());
        expectReferencePoints(p, s, parameters, parameters.size());
        expectReferencePoints(p, s, parameters, 0); // searches throughout
        std::reverse(parameters.begin(), parameters.end());
        expectReferencePoints(p, s, parameters, parameters.size());
    }
}

// Jumps farther than a few steps, both ways, and long runs of equal s-values.
TEST(BatchEvaluation, FollowsJumpsAndRuns) {
    RandomCurves make(22);
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
    expectReferencePoints(p, s, parameters, parameters.size());
    std::sort(parameters.begin(), parameters.end());
    expectReferencePoints(p, s, parameters, parameters.size());
}

// Distinct s-values from `from` to 1; the higher the power, the more of them crowd at the front.
Values crowded(RandomCurves& make, std::size_t n, double from, double power) {
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

// Long sorted lists, whose blocks are walked through or searched for: as many parameters as
// s-values, more or fewer, both crowded in places, on s-values and beside them, repeated, beyond
// the ends.
TEST(BatchEvaluation, FindsBlocksOfSortedParameters) {
    RandomCurves make(26);
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
                onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, s.size()); });
            }
        }
    }
}

// In no order, few to a step of s and many, with some on s-values, beyond the ends and NaN.
TEST(BatchEvaluation, FindsBlocksOfUnsortedParameters) {
    RandomCurves make(29);
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
            onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, s.size()); });
        }
    }
}

// Evenly spread parameters, on s-values and between them, from many to a parameter to few.
TEST(BatchEvaluation, FindsBlocksOfEvenParameters) {
    RandomCurves make(28);
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
            onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, n); });
        }
    }
}

// A block with one parameter out of place, NaN or beyond an end among others that are found
// together.
TEST(BatchEvaluation, NoticesAParameterOutOfOrder) {
    RandomCurves make(27);
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
            onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, s.size()); });
        }
    }
}

// Steps near the size at which s-values count as equal, at every decade.
TEST(BatchEvaluation, CountsTheSameStepsAsEqual) {
    RandomCurves make(23);
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
        expectReferencePoints(p, s, parameters, parameters.size());
    }
}

// Every other s-value repeated, some of them often: brackets begin at the first of the equal ones.
TEST(BatchEvaluation, RepeatedSvaluesMatchReferenceBitForBit) {
    RandomCurves make(25);
    for (const std::size_t n : {9u, 60u, 700u}) {
        Values s = crowded(make, n, 0.0, 1.0);
        for (std::size_t i = 1; i + 1 < s.size(); ++i) {
            s[i] = make.chance(0.5) ? s[i - 1] : s[i];
        }
        std::fill(s.begin() + 2, s.begin() + 6, s[6]);
        Points p(s.size());
        for (Point& point : p) {
            point = Point(make.uniform(-1, 1), make.uniform(-1, 1), make.uniform(-1, 1));
        }
        Values parameters = s;
        for (std::size_t i = 1; i < s.size(); ++i) {
            parameters.push_back(0.5 * (s[i - 1] + s[i]));
        }
        for (int round = 0; round < 2; ++round) {
            onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, s.size()); });
            std::sort(parameters.begin(), parameters.end());
        }
    }
}

// A step between negative s-values that is not worth mentioning beside them counts as one at zero.
TEST(BatchEvaluation, StepsThatEndAtZeroMatchReferenceBitForBit) {
    for (const double step : {1e-15, 2.2e-14, 2.3e-14, 1e-12, 1e-6}) {
        const Points p{{0, 1, 0}, {1, 0, 0}, {2, 0, 5}, {3, 1, 1}, {7, 7, 7}};
        const Values s{-1e-3, -step, 0.0, step, 1e-3};
        Values parameters;
        for (int k = -4; k <= 4; ++k) {
            parameters.push_back(0.25 * k * step);
        }
        onEveryVectorUnit([&] { expectReferencePoints(p, s, parameters, s.size()); });
    }
}

TEST(BatchEvaluation, NamedShapesMatchReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        SCOPED_TRACE(shape);
        const ParametricCurve curve(shape.make(600), ParametricCurve::dim3D);
        const Values& s = curve.getSvalues();
        Values parameters = s;
        for (int k = 0; k < 600; ++k) {
            parameters.push_back(k / 599.0);
        }
        onEveryVectorUnit(
            [&] { expectReferencePoints(curve.getCurve(), s, parameters, parameters.size()); });
    }
}

TEST(BatchEvaluation, AgreesWithGetPointAtParameterWhereSvaluesHoldNaN) {
    const Points p{{0, 0, 0}, {1, 2, 3}, {4, 5, 6}, {7, 8, 8}, {9, 9, 9}};
    const Values kinds[] = {{0.0, kNaN, 0.5, 0.7, 1.0},
                            {kNaN, 0.2, 0.5, 0.7, 1.0},
                            {0.0, 0.2, kNaN, 0.1, 1.0},
                            {0.0, 0.2, 0.5, 0.7, kNaN}};
    for (const Values& s : kinds) {
        const ParametricCurve curve(p, s, ParametricCurve::dim3D);
        Values parameters;
        Points expected;
        for (int k = -10; k < 120; ++k) {
            parameters.push_back(0.01 * k);
            expected.push_back(curve.getPointAtParameter(parameters.back()));
        }
        Points points(parameters.size());
        qel::BatchEvaluation(p, s, 100).pointsAt(parameters.data(), points.size(), points.data());
        EXPECT_TRUE(sameBitsInAll(points, expected));
    }
}

} // namespace
