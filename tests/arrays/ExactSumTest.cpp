#include "arrays/ExactSum.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "arrays/BigInteger.h"
#include "support/Bits.h"

namespace qel_test {
namespace {

template <typename T>
class Accumulator {
public:
    void add(T value) {
        qel::FixedPointSum(sum_.data(), sum_.size(), Format::kSumUnit).addNumber(value);
        qel::FixedPointSum(squares_.data(), squares_.size(), Format::kSquareUnit).addSquare(value);
    }

    qel::FixedPoint sum() const { return {sum_.data(), sum_.size(), Format::kSumUnit}; }
    qel::FixedPoint squares() const {
        return {squares_.data(), squares_.size(), Format::kSquareUnit};
    }

    bool operator==(const Accumulator& other) const {
        return sum_ == other.sum_ && squares_ == other.squares_;
    }

private:
    using Format = qel::ExactFormat<T>;
    std::array<std::uint64_t, Format::kSumLimbs> sum_ = {};
    std::array<std::uint64_t, Format::kSquareLimbs> squares_ = {};
};

template <typename T>
Accumulator<T> sumOf(const std::vector<T>& values) {
    Accumulator<T> sum;
    for (const T value : values) {
        sum.add(value);
    }
    return sum;
}

template <typename T>
double roundedSumOf(const std::vector<T>& values) {
    return qel::rounded(sumOf(values).sum());
}

// Numbers of all magnitudes that are left when the others cancel.
template <typename T>
std::vector<T> spreadValues(std::size_t n, std::uint64_t seed) {
    using Limits = std::numeric_limits<T>;
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<T> fraction(-1, 1);
    std::uniform_int_distribution<int> exponent(Limits::min_exponent - Limits::digits,
                                                Limits::max_exponent);
    std::vector<T> values;
    for (std::size_t i = 0; i < n; ++i) {
        const T value = std::ldexp(fraction(random), exponent(random));
        values.push_back(value);
        if (i % 3 == 0) {
            values.push_back(-value);
        }
    }
    return values;
}

template <typename T>
void expectExact(const std::vector<T>& values, std::uint64_t count) {
    const Accumulator<T> sums = sumOf(values);
    BigInteger sum, squares;
    for (const T value : values) {
        const BigInteger units = BigInteger::unitsOf(static_cast<double>(value));
        sum += units;
        squares += units * units;
    }
    const BigInteger n = BigInteger::of(count);
    const double mean = qel::roundedMean(sums.sum(), count);
    EXPECT_TRUE(isRounded(mean, sum, n)) << mean;
    const double variance = qel::roundedVariance(sums.sum(), sums.squares(), count);
    if (std::isfinite(variance)) {
        const BigInteger one = BigInteger::unitsOf(1.0);
        EXPECT_TRUE(isRounded(variance, n * squares - sum * sum, n * n * one)) << variance;
    }
}

TEST(ExactSum, OfNothingIsPositiveZero) {
    EXPECT_TRUE(sameBits(roundedSumOf<float>({}), 0.0));
    EXPECT_TRUE(sameBits(roundedSumOf<double>({-0.0, -0.0}), 0.0));
}

TEST(ExactSum, KeepsWhatRoundingWouldLose) {
    EXPECT_EQ(roundedSumOf<double>({1e308, 1.0, -1e308}), 1.0);
    EXPECT_EQ(roundedSumOf<float>({1e30f, 1e-40f, -1e30f}), static_cast<double>(1e-40f));
    EXPECT_EQ(roundedSumOf<double>({1e308, 1e308, -1e308}), 1e308);
}

TEST(ExactSum, HoldsTheSmallestAndTheLargestNumbers) {
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double huge = std::numeric_limits<double>::max();
    EXPECT_EQ(roundedSumOf<double>({tiny, tiny, tiny}), 3 * tiny);
    EXPECT_EQ(roundedSumOf<double>({huge, tiny, -huge}), tiny);
    EXPECT_EQ(roundedSumOf<double>({-huge, -huge}), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(roundedSumOf<double>({huge, std::ldexp(1.0, 969)}), huge);
    EXPECT_EQ(roundedSumOf<double>({huge, std::ldexp(1.0, 970)}),
              std::numeric_limits<double>::infinity());
}

TEST(ExactSum, RoundsTiesToEvenAndNothingElse) {
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double half = std::ldexp(1.0, -53);
    EXPECT_EQ(roundedSumOf<double>({1.0, half}), 1.0);
    EXPECT_EQ(roundedSumOf<double>({1.0, half, tiny}), 1.0 + 2 * half);
    EXPECT_EQ(roundedSumOf<double>({1.0 + 2 * half, half}), 1.0 + 4 * half);
    EXPECT_EQ(roundedSumOf<double>({-1.0, -half, -tiny}), -1.0 - 2 * half);
    EXPECT_EQ(roundedSumOf<double>({1.0 + 2 * half, half, -tiny}), 1.0 + 2 * half);
}

TEST(ExactSum, IsTheSameInAnyOrder) {
    std::vector<double> values = spreadValues<double>(300, 1);
    const Accumulator<double> first = sumOf(values);
    std::shuffle(values.begin(), values.end(), std::mt19937(2));
    EXPECT_TRUE(sumOf(values) == first);
}

TEST(ExactSum, OfFloatsGivesMeanAndVarianceRoundedOnce) {
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        const std::vector<float> values = spreadValues<float>(1 + seed, seed);
        expectExact(values, values.size());
        expectExact(values, 0xfedcba9876543210);
    }
}

TEST(ExactSum, OfDoublesGivesMeanAndVarianceRoundedOnce) {
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        std::vector<double> values = spreadValues<double>(1 + seed, seed);
        expectExact(values, values.size());
        for (double& value : values) { // squares that do not overflow
            value = std::ldexp(value, -600);
        }
        expectExact(values, values.size());
        expectExact(values, 0xfedcba9876543210);
    }
}

TEST(ExactSum, OfAlmostEqualNumbersHasTheirVariance) {
    const double next = std::nextafter(1e6, 2e6);
    expectExact<double>({1e6, 1e6, next}, 3);
    expectExact<double>({1e6, 1e6, 1e6}, 3);
    expectExact<float>({0.1f, 0.1f, std::nextafter(0.1f, 1.0f)}, 3);
    expectExact<float>({std::numeric_limits<float>::denorm_min(), 0.0f}, 2);
}

} // namespace
} // namespace qel_test
