// Sums in index order where steps round: on every vector unit the doubles of the plain loop.

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "arrays/RandomFields.h"
#include "arrays/RoundedSum.h"
#include "support/Bits.h"
#include "support/VectorUnits.h"

namespace {

using qel_test::sameBits;
using qel_test::Values;
using Field = qel_test::RandomField;

void checkSum(double start, const Values& values) {
    double expected = start;
    for (const float v : values) {
        expected += static_cast<double>(v);
    }
    qel_test::onEveryVectorUnit([&] {
        const double sum = qel::sumInOrder(start, values.data(), values.size());
        EXPECT_TRUE(sameBits(sum, expected)) << sum << " for " << expected << ", from " << start;
    });
}

Field anyField(std::mt19937& random) {
    return {static_cast<int>(random() % 24), static_cast<int>(random() % 60) - 60,
            1 + static_cast<int>(random() % 80), random() % 2 == 0};
}

double anyStart(std::mt19937& random, const Field& field) {
    std::uniform_real_distribution<double> fraction(1.0, 2.0);
    const int above = static_cast<int>(random() % 60);
    const double start = std::ldexp(fraction(random), field.lowest + field.octaves + above);
    switch (random() % 4) {
    case 0:
        return 0.0;
    case 1:
        return -start;
    case 2: // an even last digit, so that halfway values meet both kinds
        return static_cast<double>(static_cast<float>(start));
    default:
        return start;
    }
}

TEST(RoundedSum, IsThatOfThePlainLoopOnRandomFields) {
    std::mt19937 random(21);
    for (int round = 0; round < 20000; ++round) {
        const Field field = anyField(random);
        const double start = anyStart(random, field);
        checkSum(start, field.drawn(random, random() % 200));
    }
}

TEST(RoundedSum, IsThatOfThePlainLoopOnLongFields) {
    std::mt19937 random(22);
    for (int round = 0; round < 100; ++round) {
        const Field field = anyField(random);
        checkSum(0.0, field.drawn(random, 20000));
    }
}

// One grid step is 2: odd values lie halfway, and go up or down with the last digit of the sum.
TEST(RoundedSum, HalfwayValuesGoToTheEvenMultiple) {
    const double start = 0x1p53;
    checkSum(start, Values(100, 1.0f));
    checkSum(start + 2.0, Values(100, 1.0f));
    checkSum(-start - 2.0, Values(100, 1.0f));
    checkSum(start + 0x1p52, Values(100, -1.0f));
    std::mt19937 random(23);
    for (int round = 0; round < 2000; ++round) {
        Values values(random() % 100);
        std::generate(values.begin(), values.end(),
                      [&] { return static_cast<float>(static_cast<int>(random() % 9) - 4); });
        checkSum(start + 0x1p20 + 2.0 * static_cast<double>(random() % 2), values);
        checkSum(-start - 0x1p20 - 2.0 * static_cast<double>(random() % 2), values);
    }
}

// The grid doubles at a power of two and halves below it.
TEST(RoundedSum, ThatCrossesAPowerOfTwo) {
    std::mt19937 random(24);
    for (int round = 0; round < 2000; ++round) {
        const int exponent = 40 + static_cast<int>(random() % 30);
        const Field field = {23, -10 + static_cast<int>(random() % 20), 12, round % 2 == 0};
        const Values values = field.drawn(random, 64);
        double half = 0.0;
        for (std::size_t i = 0; i < 20; ++i) {
            half += static_cast<double>(values[i]);
        }
        const double power = std::ldexp(1.0, exponent);
        for (const double start : {power, power - half, power + half, std::nextafter(power, 0.0)}) {
            checkSum(start, values);
            checkSum(-start, values);
        }
    }
}

TEST(RoundedSum, OfInfinitiesAndExtremes) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kLargest = std::numeric_limits<float>::max();
    constexpr float kSmallest = std::numeric_limits<float>::denorm_min();
    for (const std::size_t at : {0U, 1U, 31U, 32U, 40U, 95U}) {
        Values values(96, 1.0f);
        for (const float special : {kInfinity, -kInfinity, kLargest, -kLargest, kSmallest, -0.0f}) {
            values[at] = special;
            checkSum(0.0, values);
            checkSum(1e30, values);
        }
    }
    checkSum(0.0, Values(100, kSmallest));
    checkSum(0.0, Values(100, -0.0f));
    checkSum(0.0, Values(100, kLargest));
    checkSum(0.0, {});
}

} // namespace
