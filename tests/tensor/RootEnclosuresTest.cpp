// The error bounds that the stand-ins for acos, cos and pow promise, and the enclosures that rest
// on them.

#include "tensor/RootEnclosures.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/SpecialFloats.h"
#include "tensor/Fields.h"
#include "tensor/PointFormulas.h"

namespace {

using qel_test::Tensor;

// What the reference implementation computes, with the C library.
double referenceCosine(double r) {
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

TEST(RootEnclosures, CosineIsWithinAThirdOfItsBound) {
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

TEST(RootEnclosures, CosineEnclosesTheReference) {
    forEachCosine([](double r) {
        const double c = qel::middleCosine(r);
        ASSERT_LE(c - qel::kCosineBound, referenceCosine(r)) << r;
        ASSERT_GE(c + qel::kCosineBound, referenceCosine(r)) << r;
    });
}

TEST(RootEnclosures, CosineOfANanIsANan) {
    EXPECT_TRUE(std::isnan(qel::middleCosine(std::nan(""))));
}

// r may be beyond its range by rounding.
TEST(RootEnclosures, CosineBeyondTheRangeIsThatOfItsEnd) {
    for (const double r : {1.0, -1.0}) {
        EXPECT_EQ(qel::middleCosine(r * 1.0000000000000002), qel::middleCosine(r));
        EXPECT_EQ(qel::middleCosine(r * HUGE_VAL), qel::middleCosine(r));
    }
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
    check(qel::kMinRadicand);
    check(qel::kMaxRadicand);
}

TEST(RootEnclosures, CubeRootIsWithinAFifthOfItsBound) {
    double worst = 0.0;
    forEachRadicand([&](double x) {
        const long double exact = std::cbrt(static_cast<long double>(x));
        const long double error = static_cast<long double>(qel::cubeRoot(x)) / exact - 1.0L;
        worst = std::max(worst, std::fabs(static_cast<double>(error)));
    });
    EXPECT_LT(worst, qel::kCubeRootBound / 5.0);
    EXPECT_GT(worst, 0.0);
}

TEST(RootEnclosures, CubeRootEnclosesTheReference) {
    forEachRadicand([](double x) {
        const double root = qel::cubeRoot(x);
        ASSERT_LE(root * (1.0 - qel::kCubeRootBound), qel::signedCubeRoot(x)) << x;
        ASSERT_GE(root * (1.0 + qel::kCubeRootBound), qel::signedCubeRoot(x)) << x;
    });
}

TEST(RootEnclosures, CubeRootOfZeroIsExact) {
    EXPECT_EQ(qel::cubeRoot(0.0), 0.0);
    EXPECT_FALSE(std::signbit(qel::cubeRoot(0.0)));
    EXPECT_FALSE(std::signbit(qel::signedCubeRoot(-0.0)));
}

TEST(RootEnclosures, CubeRootOfNoNumberIsNone) {
    EXPECT_FALSE(std::isfinite(qel::cubeRoot(HUGE_VAL)));
    EXPECT_TRUE(std::isnan(qel::cubeRoot(std::nan(""))));
}

// -- Results ----

::testing::AssertionResult encloses(float low, float high, float value) {
    const bool areNan = std::isnan(low) && std::isnan(high);
    const bool isOpen = std::isnan(low) != std::isnan(high); // whatever the value, it is recomputed
    if (areNan ? std::isnan(value) : isOpen || (low <= value && value <= high)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << low << " to " << high << " without " << value;
}

qel::Gradient gradientOf(const Tensor& t) {
    return {t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8]};
}

TEST(RootEnclosures, ResultsEncloseTheReference) {
    for (const Tensor& t : qel_test::mixedTensors(200000, 76)) {
        const qel::Gradient gradient = gradientOf(t);
        const auto symmetric = qel::symmetricCubic<double>(gradient);
        const auto lambda2 = qel::encloseMiddleRoot(symmetric);
        ASSERT_TRUE(encloses(lambda2.low, lambda2.high, qel::middleRoot(symmetric)));
        const auto cubic = qel::characteristicCubic<double>(gradient);
        const auto swirl = qel::encloseSwirl(cubic);
        const qel::Swirl expected = qel::swirlOf(cubic);
        ASSERT_TRUE(encloses(swirl.low.strength, swirl.high.strength, expected.strength));
        ASSERT_TRUE(
            encloses(swirl.low.realEigenvalue, swirl.high.realEigenvalue, expected.realEigenvalue));
    }
}

// Recomputing is rare where flows are general, and where they are all of one kind that is no
// number.
TEST(RootEnclosures, FewResultsAreUnresolved) {
    std::mt19937 random(77);
    const auto countUnresolved = [](const std::vector<Tensor>& tensors) {
        int count = 0;
        for (const Tensor& t : tensors) {
            const auto lambda2 = qel::encloseMiddleRoot(qel::symmetricCubic<double>(gradientOf(t)));
            const auto swirl = qel::encloseSwirl(qel::characteristicCubic<double>(gradientOf(t)));
            count += qel::isUnresolved(lambda2.low, lambda2.high) != 0;
            count += qel::isUnresolved(swirl.low, swirl.high) != 0;
        }
        return count;
    };
    std::vector<Tensor> general(10000);
    std::generate(general.begin(), general.end(),
                  [&] { return qel_test::normalTensor(random, 1.0f); });
    EXPECT_LT(countUnresolved(general), 50);
    Tensor none;
    for (const float value : {qel_test::kNan, 0.0f, qel_test::kInf}) {
        none.fill(value);
        EXPECT_EQ(countUnresolved({none}), 0) << value;
    }
}

TEST(RootEnclosures, AreUnresolvedUnlessBothEndsAreOneNumberOrNan) {
    const float nan = std::nanf("");
    EXPECT_EQ(qel::isUnresolved(1.0f, 1.0f), 0);
    EXPECT_EQ(qel::isUnresolved(nan, -nan), 0);
    EXPECT_NE(qel::isUnresolved(0.0f, -0.0f), 0) << "the sign is open";
    EXPECT_NE(qel::isUnresolved(1.0f, nan), 0);
    EXPECT_NE(qel::isUnresolved(nan, 1.0f), 0);
    EXPECT_NE(qel::isUnresolved(1.0f, std::nextafter(1.0f, 2.0f)), 0);
}

} // namespace
