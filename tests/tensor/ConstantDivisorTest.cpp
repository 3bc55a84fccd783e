// Division by a constant without the divider: the quotients of the division, bit for bit.

#include "tensor/ConstantDivisor.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"
#include "support/Bits.h"

namespace {

using qel::ConstantDivisor;
using qel_test::sameBits;

constexpr double kDivisors[] = {1.5, 3.0, 13.5, 27.0};

// As kernels divide, on a unit with fused multiply-add: some C libraries imitate it badly where the
// compiler may not use the processor's.
struct QuotientKernel {
    QEL_KERNEL static double run(double x, double high, double low) {
        ConstantDivisor divisor(1.0);
        divisor.high = high;
        divisor.low = low;
        return x / divisor;
    }
};

double quotient(double x, const ConstantDivisor& d) {
#if defined(QEL_VECTOR_UNITS)
    return qel::runAvx2<QuotientKernel>(x, d.high, d.low);
#else
    return QuotientKernel::run(x, d.high, d.low);
#endif
}

bool hasFusedMultiplyAdd() {
    return qel::hasVectorUnit(qel::VectorUnit::avx2);
}

::testing::AssertionResult dividesLikeTheDivider(double x) {
    for (const double d : kDivisors) {
        for (const double signedX : {x, -x}) {
            if (!sameBits(quotient(signedX, ConstantDivisor(d)), signedX / d)) {
                return ::testing::AssertionFailure() << signedX << " / " << d;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(ConstantDivisor, RandomQuotientsMatchReferenceBitForBit) {
    if (!hasFusedMultiplyAdd()) {
        GTEST_SKIP() << "no unit with fused multiply-add";
    }
    std::mt19937_64 random(81);
    for (int i = 0; i < 1000000; ++i) {
        const std::uint64_t mantissa = random() >> 12;
        const auto exponent = static_cast<int>(random() % 1900) - 930;
        const double x = std::ldexp(1.0 + std::ldexp(static_cast<double>(mantissa), -52), exponent);
        ASSERT_TRUE(dividesLikeTheDivider(x));
    }
}

// Where the quotient is closest to where rounding changes: d times a midpoint, and its neighbours.
TEST(ConstantDivisor, QuotientsNearMidpointsMatchReferenceBitForBit) {
    if (!hasFusedMultiplyAdd()) {
        GTEST_SKIP() << "no unit with fused multiply-add";
    }
    std::mt19937_64 random(82);
    for (int i = 0; i < 300000; ++i) {
        const auto quotient = static_cast<double>((random() >> 12) | (std::uint64_t{1} << 52));
        for (const double d : kDivisors) {
            double x = d * (quotient + 0.5);
            for (int step = 0; step < 4; ++step) {
                ASSERT_TRUE(dividesLikeTheDivider(x));
                x = std::nextafter(x, step < 2 ? HUGE_VAL : 0.0);
            }
        }
    }
}

TEST(ConstantDivisor, SmallWholeNumbersMatchReferenceBitForBit) {
    if (!hasFusedMultiplyAdd()) {
        GTEST_SKIP() << "no unit with fused multiply-add";
    }
    for (int i = 0; i < 1000000; ++i) {
        ASSERT_TRUE(dividesLikeTheDivider(i));
        ASSERT_TRUE(dividesLikeTheDivider(std::ldexp(i, -600)));
    }
}

TEST(ConstantDivisor, SpecialValuesMatchReferenceBitForBit) {
    if (!hasFusedMultiplyAdd()) {
        GTEST_SKIP() << "no unit with fused multiply-add";
    }
    for (const double x : {0.0, HUGE_VAL, static_cast<double>(NAN), 1e-280, 1e300,
                           std::numeric_limits<double>::max()}) {
        EXPECT_TRUE(dividesLikeTheDivider(x));
    }
}

TEST(ConstantDivisor, IsTheReciprocalToTwiceThePrecision) {
    for (const double d : kDivisors) {
        const ConstantDivisor divisor(d);
        EXPECT_EQ(divisor.high, 1.0 / d);
        EXPECT_GT(divisor.low, 0.0) << "an infinity stays one";
        EXPECT_LT(divisor.low, divisor.high * 0x1p-52);
        EXPECT_EQ(std::fma(-d, divisor.high, 1.0), d * divisor.low);
    }
}

} // namespace
