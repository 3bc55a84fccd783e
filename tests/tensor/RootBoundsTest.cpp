// The error bounds that the vector forms of acos, cos and pow promise.

#include "tensor/BracketedRoots.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "tensor/RootFormulas.h"

namespace {

// What the plain formula computes, with the C library.
double plainCosine(double r) {
    return std::cos((std::acos(r) + 12.566370614359172) / 3.0);
}

// The value meant, to 64 bits.
long double exactCosine(double r) {
    return -std::sin(std::asin(static_cast<long double>(r)) / 3.0L);
}

// Calls check(r) over [-1, 1]: densely, towards the ends, and towards 0.
template <typename Check>
void forEachCosine(const Check& check) {
    constexpr int kSteps = 200000;
    for (int i = -kSteps; i <= kSteps; ++i) {
        check(static_cast<double>(i) / kSteps);
    }
    for (int e = 1; e < 54; ++e) {
        for (int i = 16; i < 32; ++i) {
            const double small = std::ldexp(i / 32.0, -e);
            check(small), check(-small), check(1.0 - small), check(small - 1.0);
        }
    }
    std::mt19937_64 random(71);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (int i = 0; i < kSteps; ++i) {
        check(uniform(random));
    }
}

TEST(RootBounds, CosineIsWithinAThirdOfItsBound) {
    double worst = 0.0;
    forEachCosine([&](double r) {
        const double error =
            static_cast<double>(static_cast<long double>(qel::middleCosine(r)) - exactCosine(r));
        worst = std::max(worst, std::fabs(error));
    });
    // Between the samples the error moves by less than the margin: the fit's error has some 20
    // extremes over the range.
    EXPECT_LT(worst, qel::kCosineBound / 3.0);
    EXPECT_GT(worst, 0.0);
}

TEST(RootBounds, CosineBracketsThePlainFormula) {
    forEachCosine([](double r) {
        const double c = qel::middleCosine(r);
        ASSERT_LE(c - qel::kCosineBound, plainCosine(r)) << r;
        ASSERT_GE(c + qel::kCosineBound, plainCosine(r)) << r;
    });
}

TEST(RootBounds, CosineOfANanIsANan) {
    EXPECT_TRUE(std::isnan(qel::middleCosine(std::nan(""))));
}

// Calls check(x) for positive x over the range of the bound, every binade of it.
template <typename Check>
void forEachRadicand(const Check& check) {
    std::mt19937_64 random(72);
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    for (int e = -962; e <= 962; ++e) {
        for (int i = 0; i < 200; ++i) {
            check(std::ldexp(mantissa(random), e));
        }
    }
    // One period of the first guess, densely.
    for (int i = 0; i < 350000; ++i) {
        check(1.0 + i / 50000.0);
    }
    check(qel::kSmallestRadicand);
    check(qel::kLargestRadicand);
}

TEST(RootBounds, CubeRootIsWithinATenthOfItsBound) {
    double worst = 0.0;
    forEachRadicand([&](double x) {
        const long double exact = std::cbrt(static_cast<long double>(x));
        const long double error = static_cast<long double>(qel::cubeRoot(x)) / exact - 1.0L;
        worst = std::max(worst, std::fabs(static_cast<double>(error)));
    });
    EXPECT_LT(worst, qel::kCubeRootBound / 10.0);
    EXPECT_GT(worst, 0.0);
}

TEST(RootBounds, CubeRootBracketsThePlainFormula) {
    forEachRadicand([](double x) {
        for (const double signedX : {x, -x}) {
            const qel::RootBracket b = qel::cubeRootBracket(signedX);
            ASSERT_LE(b.low, qel::signedCubeRoot(signedX)) << signedX;
            ASSERT_GE(b.high, qel::signedCubeRoot(signedX)) << signedX;
            ASSERT_LT(b.high - b.low, 3e-12 * std::cbrt(x));
        }
    });
}

TEST(RootBounds, CubeRootOfZeroIsPositiveZero) {
    for (const double zero : {0.0, -0.0}) {
        const qel::RootBracket b = qel::cubeRootBracket(zero);
        EXPECT_EQ(b.low, 0.0);
        EXPECT_EQ(b.high, 0.0);
        EXPECT_FALSE(std::signbit(b.low) || std::signbit(b.high));
        EXPECT_FALSE(std::signbit(qel::signedCubeRoot(zero)));
    }
}

TEST(RootBounds, CubeRootBeyondTheRangeIsNoBracket) {
    for (const double x : {1e-300, 5e-324, 1e291, 1e308, HUGE_VAL, std::nan("")}) {
        EXPECT_TRUE(std::isnan(qel::cubeRootBracket(x).low)) << x;
        EXPECT_TRUE(std::isnan(qel::cubeRootBracket(-x).high)) << x;
    }
}

} // namespace
