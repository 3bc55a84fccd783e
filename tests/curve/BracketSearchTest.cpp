// The s-values below many parameters: what a search for each of them finds.

#include "curve/BracketSearch.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/Shapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

constexpr std::size_t kBlock = qel::BracketSearch::kBlock;

std::size_t referenceLower(const Values& s, double parameter) {
    const auto above = std::upper_bound(s.begin() + 1, s.end() - 1, parameter);
    return static_cast<std::size_t>(above - s.begin()) - 1;
}

// Asks one search for block after block, which goes on from where the last one ended.
void expectReferenceIndices(const Values& s, const Values& parameters, std::size_t block = kBlock) {
    qel::BracketSearch search(s);
    for (std::size_t first = 0; first < parameters.size(); first += block) {
        const std::size_t count = std::min(block, parameters.size() - first);
        std::size_t lower[kBlock];
        const bool areInside = search.find(&parameters[first], count, lower);
        bool expected = true;
        for (std::size_t k = 0; k < count; ++k) {
            const double at = parameters[first + k];
            expected = expected && at > s.front() && at < s.back();
            if (std::isnan(at)) {
                ASSERT_LT(lower[k], s.size() - 1);
            } else {
                ASSERT_EQ(lower[k], referenceLower(s, at)) << "parameter " << first + k;
            }
        }
        EXPECT_EQ(areInside, expected) << "block from " << first;
    }
}

Values sorted(Values values) {
    std::sort(values.begin(), values.end());
    return values;
}

// In order with repeats, all between 0 and 1 and both of these.
Values svalues(RandomCurves& make, std::size_t n, double power) {
    Values s{0.0, 1.0};
    while (s.size() < n) {
        s.push_back(make.chance(0.1) ? s.back() : std::pow(make.uniform(0.0, 1.0), power));
    }
    return sorted(s);
}

Values parametersFor(RandomCurves& make, const Values& s, std::size_t count, double from,
                     double to) {
    Values parameters(count);
    for (double& at : parameters) {
        at = make.chance(0.1) ? s[make.index(s.size())] : make.uniform(from, to);
    }
    return parameters;
}

// From many s-values to a parameter to many parameters to an s-value, in order and in none, with
// windows that hold a group and such that do not.
TEST(BracketSearch, AnyDensityMatchesReferenceBitForBit) {
    RandomCurves make(51);
    for (const std::size_t n : {2u, 3u, 17u, 40u, 257u, 1000u, 6000u}) {
        for (const double power : {1.0, 6.0}) {
            const Values s = svalues(make, n, power);
            for (const std::size_t count : {1u, 7u, 8u, 31u, 32u, 33u, 255u, 256u, 257u, 2000u}) {
                SCOPED_TRACE(std::to_string(n) + " s-values, " + std::to_string(count) +
                             " parameters");
                const Values any = parametersFor(make, s, count, -0.1, 1.1);
                const Values some = parametersFor(make, s, count, 0.3, 0.4);
                onEveryVectorUnit([&] {
                    expectReferenceIndices(s, any);
                    expectReferenceIndices(s, sorted(any));
                    expectReferenceIndices(s, sorted(some));
                    expectReferenceIndices(s, sorted(any), 96);
                });
            }
        }
    }
}

TEST(BracketSearch, SvaluesOfNamedShapesMatchReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        SCOPED_TRACE(shape);
        const ParametricCurve curve(shape.make(700), ParametricCurve::dim3D);
        const Values& s = curve.getSvalues();
        Values even(900);
        for (std::size_t k = 0; k < even.size(); ++k) {
            even[k] = static_cast<double>(k) / 899.0;
        }
        onEveryVectorUnit([&] {
            expectReferenceIndices(s, s);
            expectReferenceIndices(s, even);
        });
    }
}

TEST(BracketSearch, GoesBackForABlockBeforeTheLast) {
    RandomCurves make(52);
    const Values s = svalues(make, 3000, 1.0);
    Values parameters = sorted(parametersFor(make, s, 1024, 0.0, 1.0));
    std::rotate(parameters.begin(), parameters.begin() + 512, parameters.end());
    onEveryVectorUnit([&] { expectReferenceIndices(s, parameters); });
}

// Steps are looked at in lanes: a single one must show in each of them.
TEST(BracketSearch, NoticesAStepOutOfOrderInEveryLane) {
    const std::size_t n = 100;
    for (std::size_t wrong = 1; wrong + 1 < n; ++wrong) {
        Values even(n);
        for (std::size_t i = 0; i < n; ++i) {
            even[i] = static_cast<double>(i) / static_cast<double>(n - 1);
        }
        Values repeated = even;
        repeated[wrong] = even[wrong - 1];
        onEveryVectorUnit([&] {
            const qel::Steps ofEven = qel::stepsOf(even.data(), n, 1e-6);
            EXPECT_TRUE(ofEven.areInOrder && ofEven.areDistinct);
            const qel::Steps ofRepeated = qel::stepsOf(repeated.data(), n, 1e-6);
            EXPECT_TRUE(ofRepeated.areInOrder && !ofRepeated.areDistinct) << wrong;
            for (const double value : {kNaN, -1.0, 2.0}) {
                Values unordered = even;
                unordered[wrong] = value;
                const qel::Steps steps = qel::stepsOf(unordered.data(), n, 1e-6);
                EXPECT_FALSE(steps.areInOrder || steps.areDistinct) << wrong << ": " << value;
            }
        });
    }
}

TEST(BracketSearch, FindsParametersBesideNaN) {
    RandomCurves make(53);
    const Values s = svalues(make, 500, 1.0);
    for (const std::size_t wrong : {0u, 1u, 7u, 8u, 100u, 254u, 255u}) {
        Values parameters = sorted(parametersFor(make, s, 256, 0.0, 1.0));
        parameters[wrong] = kNaN;
        onEveryVectorUnit([&] { expectReferenceIndices(s, parameters); });
    }
}

} // namespace
