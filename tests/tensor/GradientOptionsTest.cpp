// What the analysis of views does beyond the formulas: noise floor, policy for what is no number,
// scaling.

#include <qel/GradientAnalysis.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "tensor/AllFields.h"
#include "tensor/Fields.h"

namespace {

using namespace qel_test;
using qel::analyzeGradients;
using qel::GradientOptions;
using qel::GradientReport;

// -- Noise floor ----

TEST(GradientOptions, TheNoiseFloorIsRelativeToEachQuantitysOwnPower) {
    // A shear with a rotation of strength epsilon across it: |T|^2 = 1 + epsilon^2 or so, the pair
    // of eigenvalues is +- i sqrt(epsilon).
    const auto shear = [](float epsilon) { return Tensor{0, 1, 0, -epsilon, 0, 0, 0, 0, 0}; };
    const std::vector<Tensor> tensors = {shear(1e-4f), shear(1e-7f)};
    for (const bool isScaled : {false, true}) {
        AllFields<float> plain(2), floored(2);
        GradientOptions options;
        options.isScaled = isScaled;
        analyzeGradients(viewOf(tensors), plain.views(false), options);
        options.noiseFloor = 1e-6;
        const GradientReport report =
            analyzeGradients(viewOf(tensors), floored.views(false), options);
        EXPECT_EQ(report.belowFloor, 1U);
        for (const std::size_t field : {std::size_t{3}, std::size_t{4}, std::size_t{5}}) {
            EXPECT_NE(plain.numbers[field][0], 0.0f);
            EXPECT_NE(plain.numbers[field][1], 0.0f);
            EXPECT_EQ(floored.numbers[field][0], plain.numbers[field][0]);
            EXPECT_EQ(floored.numbers[field][1], 0.0f);
        }
        EXPECT_EQ(floored.numbers[6], plain.numbers[6]) << "the eigenvalue stays";
        EXPECT_EQ(floored.numbers[10][1], 0.0f) << "as elsewhere without swirl";
        EXPECT_EQ(floored.triples[1][1], Triplet(0, 0, 0));
        EXPECT_EQ(floored.numbers[0], plain.numbers[0]) << "Q is as it is";
    }
}

TEST(GradientOptions, TheNoiseFloorLeavesWhatIsNoNumber) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<Tensor> tensors(3, Tensor{nan, 1, 2, 3, 4, 5, 6, 7, 8});
    AllFields<float> fields(3);
    GradientOptions options;
    options.noiseFloor = 0.5;
    EXPECT_EQ(analyzeGradients(viewOf(tensors), fields.views(false), options).belowFloor, 0U);
    EXPECT_TRUE(std::isnan(fields.numbers[3][0]));
}

// -- What is no number ----

TEST(GradientOptions, ASwirlStrengthThatIsNegligibleButNoNumberCanBeMadeZero) {
    std::vector<Tensor> tensors;
    std::mt19937 random(17);
    std::normal_distribution<float> normal;
    for (int k = 0; k < 20000; ++k) { // with a double eigenvalue
        const float a = normal(random), b = normal(random);
        tensors.push_back({a, normal(random), normal(random), 0, a, normal(random), 0, 0, b});
    }
    AllFields<float> kept(tensors.size()), zeroed(tensors.size());
    analyzeGradients(viewOf(tensors), kept.views(false));
    GradientOptions options;
    options.notANumber = GradientOptions::NotANumber::zeroNegligible;
    const GradientReport report = analyzeGradients(viewOf(tensors), zeroed.views(false), options);
    std::size_t changed = 0;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const float before = kept.numbers[5][k], after = zeroed.numbers[5][k];
        if (std::isnan(before) && after == 0.0f) {
            ++changed;
        } else {
            EXPECT_TRUE(sameBits(before, after));
        }
    }
    EXPECT_GT(changed, 0U);
    EXPECT_EQ(report.madeZero, changed);
}

TEST(GradientOptions, ASwirlStrengthOfNoNumbersStaysNoNumber) {
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<Tensor> tensors = {{inf, 1, 2, 3, inf, 5, 6, 7, 8},
                                         {std::nanf(""), 0, 0, 0, 0, 0, 0, 0, 0}};
    AllFields<float> kept(2), zeroed(2);
    analyzeGradients(viewOf(tensors), kept.views(false));
    GradientOptions options;
    options.notANumber = GradientOptions::NotANumber::zeroNegligible;
    EXPECT_EQ(analyzeGradients(viewOf(tensors), zeroed.views(false), options).madeZero, 0U);
    expectSameFields(zeroed, kept);
}

// -- Scaling ----

// Powers of the unit of the scalars and triplets of AllFields.
const int kPowers[] = {2, 2, 1, 6, 2, 1, 1, 1, 1, 1, 1, 1, 1};

TEST(GradientOptions, ScaledResultsOfTinyAndHugeGradientsAreThoseOfOrdinaryOnes) {
    std::mt19937 random(18);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 500; ++k) {
        tensors.push_back(normalTensor(random, 1.0f));
    }
    AllFields<float> ordinary(500);
    GradientOptions options;
    options.isScaled = true;
    const Velocities velocities = velocitiesOf(500);
    analyzeGradients(viewOf(tensors), velocities, ordinary.views(true), options);
    for (const int exponent : {-60, -40, 10, 60, 100}) {
        std::vector<Tensor> moved = tensors;
        for (Tensor& t : moved) {
            for (float& v : t) {
                v = std::ldexp(v, exponent);
            }
        }
        AllFields<float> fields(500);
        analyzeGradients(viewOf(moved), velocities, fields.views(true), options);
        for (std::size_t i = 0; i < fields.numbers.size(); ++i) {
            for (std::size_t k = 0; k < 500; ++k) {
                const float expected = std::ldexp(ordinary.numbers[i][k], exponent * kPowers[i]);
                if (expected == 0.0f || std::fabs(expected) > 1e-37f) {
                    ASSERT_TRUE(sameBits(fields.numbers[i][k], expected))
                        << "scalar " << i << " at " << k << " times 2^" << exponent;
                }
            }
        }
    }
}

TEST(GradientOptions, ScalingChangesOrdinaryGradientsByRoundingAtMost) {
    const std::vector<Tensor> tensors = [] {
        std::mt19937 random(19);
        std::vector<Tensor> t;
        for (int k = 0; k < 2000; ++k) {
            t.push_back(normalTensor(random, 30.0f));
        }
        return t;
    }();
    AllFields<float> plain(2000), scaled(2000);
    analyzeGradients(viewOf(tensors), plain.views(false));
    GradientOptions options;
    options.isScaled = true;
    analyzeGradients(viewOf(tensors), scaled.views(false), options);
    for (std::size_t i = 0; i < 5; ++i) { // no powers with a fraction in these
        EXPECT_TRUE(sameBitsInAll(scaled.numbers[i], plain.numbers[i])) << "scalar " << i;
    }
    for (std::size_t k = 0; k < 2000; ++k) {
        EXPECT_FLOAT_EQ(scaled.numbers[5][k], plain.numbers[5][k]);
    }
}

TEST(GradientOptions, ScaledDiscriminantsBeyondTheRangeAreInfinitiesOfTheirSign) {
    const std::vector<Tensor> tensors = {{0, -1e30f, 0, 1e30f, 0, 0, 0, 0, 0},
                                         {1e30f, 0, 0, 0, -1e30f, 0, 0, 0, 0}};
    AllFields<float> fields(2);
    GradientOptions options;
    options.isScaled = true;
    analyzeGradients(viewOf(tensors), fields.views(false), options);
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(fields.numbers[3], (std::vector<float>{inf, -inf}));
    EXPECT_FLOAT_EQ(fields.numbers[5][0], 1e30f);
}

TEST(GradientOptions, ScalingKeepsWhatIsNotFiniteAndWhatIsZero) {
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<Tensor> tensors = {Tensor{},
                                         {inf, 0, 0, 0, 0, 0, 0, 0, 0},
                                         {1, std::nanf(""), 0, 0, 2, 0, 0, 0, 3},
                                         {1e-45f, 0, 0, 0, 0, 0, 0, 0, 0},
                                         {kUndef, 0, 0, 0, 0, 0, 0, 0, 0}};
    AllFields<float> plain(5), scaled(5);
    analyzeGradients(viewOf(tensors), plain.views(false));
    GradientOptions options;
    options.isScaled = true;
    analyzeGradients(viewOf(tensors), scaled.views(false), options);
    EXPECT_TRUE(sameBitsInAll(scaled.numbers[2], plain.numbers[2])) << "divergence";
    for (std::size_t i = 0; i < plain.numbers.size(); ++i) {
        EXPECT_TRUE(sameBits(scaled.numbers[i][0], plain.numbers[i][0])) << "zero, scalar " << i;
    }
}

} // namespace
