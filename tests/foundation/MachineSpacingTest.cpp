#include <qel/NumericalUtils.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"

namespace {

using qel::NumericalUtils;

constexpr double kEpsilon = 2.220446049250313e-16;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The decade by comparison with powers of ten in single precision, spelled out entry by entry.
double decade(double x) {
    double scale = 1.0;
    if (x >= 1.0) {
        while (x > 1e9) {
            x /= 1e9;
            scale *= 1e9;
        }
        float power = 10.0f;
        for (int entry = 0; entry < 9 && x > static_cast<double>(power); ++entry) {
            scale *= 10.0;
            power *= 10.0f; // exact up to 1e9
        }
        return scale;
    }
    while (static_cast<double>(1e-9f) > x) {
        x /= static_cast<double>(1e-9f);
        scale *= static_cast<double>(1e-9f);
    }
    for (const float power : {0.1f, 0.01f, 0.001f, 1e-4f, 1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f}) {
        if (!(static_cast<double>(power) > x)) {
            return scale;
        }
        scale *= 0.1;
    }
    return scale;
}

TEST(MachineSpacing, OfZeroIsTheMachineEpsilon) {
    EXPECT_EQ(NumericalUtils::spacing(0.0), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(-0.0), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(0.0f), 1.1920929e-7f);
    EXPECT_EQ(NumericalUtils::spacing(-0.0f), 1.1920929e-7f);
}

TEST(MachineSpacing, OfOneAndTenIsTheSame) {
    EXPECT_EQ(NumericalUtils::spacing(1.0), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(10.0), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(0.5), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(10.0f), 1.1920929e-7f);
}

TEST(MachineSpacing, GrowsTenfoldAboveAPowerOfTen) {
    EXPECT_EQ(NumericalUtils::spacing(10.5), 10.0 * kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(std::nextafter(10.0, 11.0)), 10.0 * kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(100.0), 10.0 * kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(100.5), 100.0 * kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(2.5e9), 1e9 * kEpsilon);
}

TEST(MachineSpacing, IsThatOfTheMagnitude) {
    EXPECT_EQ(NumericalUtils::spacing(-5.0), NumericalUtils::spacing(5.0));
    EXPECT_EQ(NumericalUtils::spacing(-5e7f), NumericalUtils::spacing(5e7f));
}

// The table holds 0.1 as a float, 0.100000001490116...: 0.1 itself lies below it.
TEST(MachineSpacing, ComparesWithPowersInSinglePrecision) {
    EXPECT_EQ(NumericalUtils::spacing(0.1), 0.1 * kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(static_cast<double>(0.1f)), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(0.1f), 1.1920929e-7f);
    EXPECT_EQ(NumericalUtils::spacing(0.05), 0.1 * kEpsilon);
}

TEST(MachineSpacing, OfAnInfinityIsNaN) {
    EXPECT_TRUE(std::isnan(NumericalUtils::spacing(kInfinity)));
    EXPECT_TRUE(std::isnan(NumericalUtils::spacing(-kInfinity)));
    EXPECT_TRUE(std::isnan(NumericalUtils::spacing(std::numeric_limits<float>::infinity())));
}

TEST(MachineSpacing, OfNaNIsTheMachineEpsilon) {
    EXPECT_EQ(NumericalUtils::spacing(std::nan("")), kEpsilon);
    EXPECT_EQ(NumericalUtils::spacing(std::nanf("")), 1.1920929e-7f);
}

TEST(MachineSpacing, FollowsTheComparisonsAtEveryDecade) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::pow(10.0, exponent);
        for (const double x : {std::nextafter(power, 0.0), power, std::nextafter(power, 1e308),
                               3.0 * power, static_cast<double>(static_cast<float>(power))}) {
            if (x == 0.0 || std::isinf(x)) {
                continue;
            }
            EXPECT_TRUE(qel_test::sameBits(NumericalUtils::spacing(x), decade(x) * kEpsilon)) << x;
        }
    }
    for (int exponent = -45; exponent <= 38; ++exponent) {
        const auto power = static_cast<float>(std::pow(10.0, exponent));
        for (const float x : {std::nextafter(power, 0.0f), power, std::nextafter(power, 1e38f)}) {
            if (x == 0.0f) {
                continue;
            }
            EXPECT_TRUE(qel_test::sameBits(
                NumericalUtils::spacing(x),
                static_cast<float>(decade(static_cast<double>(x)) * 1.1920928955078125e-7)))
                << x;
        }
    }
}

// Where a decade of the table, or the table itself, begins and ends.
TEST(MachineSpacing, FollowsTheComparisonsBesidePowersOfTwoAndTen) {
    std::vector<double> borders;
    for (int exponent = -64; exponent <= 64; ++exponent) {
        borders.push_back(std::ldexp(1.0, exponent));
    }
    for (int exponent = -19; exponent <= 19; ++exponent) {
        borders.push_back(static_cast<double>(std::pow(10.0f, static_cast<float>(exponent))));
        borders.push_back(std::pow(10.0, exponent));
    }
    for (const double border : borders) {
        double x = border;
        for (int step = 0; step < 3; ++step) {
            x = std::nextafter(x, 0.0);
        }
        for (int step = 0; step < 6; ++step, x = std::nextafter(x, 1e300)) {
            EXPECT_TRUE(qel_test::sameBits(NumericalUtils::spacing(x), decade(x) * kEpsilon)) << x;
            EXPECT_TRUE(qel_test::sameBits(NumericalUtils::spacing(-x), decade(x) * kEpsilon));
        }
    }
}

TEST(MachineSpacing, FollowsTheComparisonsForRandomNumbers) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> exponent(-40.0, 40.0);
    for (int round = 0; round < 100000; ++round) {
        const double x = std::exp2(exponent(random));
        ASSERT_TRUE(qel_test::sameBits(NumericalUtils::spacing(x), decade(x) * kEpsilon)) << x;
    }
}

TEST(MachineSpacing, EndsForTheSmallestAndLargestNumbers) {
    EXPECT_GE(NumericalUtils::spacing(std::numeric_limits<double>::denorm_min()), 0.0);
    EXPECT_GT(NumericalUtils::spacing(DBL_MAX), 1e291);
    EXPECT_GT(NumericalUtils::spacing(FLT_MAX), 1e30f);
    EXPECT_GE(NumericalUtils::spacing(std::numeric_limits<float>::denorm_min()), 0.0f);
}

} // namespace
