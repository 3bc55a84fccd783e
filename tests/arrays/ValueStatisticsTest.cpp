// The statistics of floats in memory, in doubles: where blocks are added up in lanes and where not
// shows in the last digits of the sum, which the arrays round away.

#include "arrays/Statistics.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "arrays/RandomFields.h"
#include "arrays/ReferenceStatistics.h"
#include "support/Bits.h"
#include "support/SpecialFloats.h"
#include "support/VectorUnits.h"

namespace {

using qel::ValueStatistics;
using qel_test::kInf;
using qel_test::kNan;
using qel_test::kUndef;
using qel_test::RandomField;
using qel_test::sameBits;
using qel_test::Statistics;
using qel_test::valueByValue;
using qel_test::Values;

constexpr std::size_t kBlock = 1024; // values that are looked at together

::testing::AssertionResult same(const ValueStatistics& a, const Statistics& b) {
    if (sameBits(a.min, b.min) && sameBits(a.max, b.max) && sameBits(a.sum, b.sum) &&
        a.count == static_cast<std::size_t>(b.count)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "min " << a.min << " for " << b.min << ", max " << a.max << " for " << b.max
           << ", sum " << a.sum << " for " << b.sum << ", count " << a.count << " for " << b.count;
}

// Side by side and every third, on every vector unit.
void checkStatistics(const Values& values) {
    const Statistics expected = valueByValue(values);
    Values everyThird;
    for (const float v : values) {
        everyThird.insert(everyThird.end(), {v, -1e30f, kNan});
    }
    qel_test::onEveryVectorUnit([&] {
        EXPECT_TRUE(same(qel::statisticsOf(values.data(), 1, values.size()), expected));
        EXPECT_TRUE(same(qel::statisticsOf(everyThird.data(), 3, values.size()), expected));
    });
}

void append(Values& values, const Values& more) {
    values.insert(values.end(), more.begin(), more.end());
}

constexpr int kDigits = 23; // of a float, behind the first

// Octaves of a field whose sum over a block takes up about as many digits as a double has.
int octavesOfBarelyExactSums(std::mt19937& random) {
    constexpr int kDigitsOfDouble = 53, kDigitsOfCount = 10;
    return kDigitsOfDouble - kDigitsOfCount - kDigits + static_cast<int>(random() % 8) - 4;
}

TEST(ValueStatistics, WhereSumsAreBarelyExactMatchReferenceBitForBit) {
    std::mt19937 random(31);
    for (int round = 0; round < 1500; ++round) {
        RandomField field = {kDigits, 0, octavesOfBarelyExactSums(random), round % 3 == 0};
        // Among others where the last digit is that of the least float.
        const int leastLowest = -149 + kDigits;
        field.lowest = round % 4 == 0 ? leastLowest : static_cast<int>(random() % 80) - 60;
        Values values;
        for (auto blocks = 1 + random() % 4; blocks > 0; --blocks) {
            append(values, field.drawn(random, kBlock));
            field.lowest = std::max(field.lowest + static_cast<int>(random() % 9) - 4, leastLowest);
        }
        checkStatistics(values);
    }
}

// The sum so far has digits that the next block has not.
TEST(ValueStatistics, BehindAFinerSumMatchReferenceBitForBit) {
    std::mt19937 random(32);
    for (int round = 0; round < 1000; ++round) {
        const int coarser = static_cast<int>(random() % 60);
        Values values = RandomField{20, -30, 3, round % 2 == 0}.drawn(random, kBlock);
        append(values,
               RandomField{static_cast<int>(random() % 20), coarser - 30, 2, round % 4 < 2}.drawn(
                   random, kBlock));
        checkStatistics(values);
    }
}

// The sum passes 2^53 last digits of the smallest values, which lose theirs when they come one by
// one.
TEST(ValueStatistics, SmallValuesBehindALargeSumAreAddedInOrder) {
    for (const float size : {0.9f, 1.0f, 1.1f, 1.25f, 1.4f, 1.6f, 2.0f, 3.0f}) {
        for (const std::ptrdiff_t count : {1, 2, 3, 100}) {
            for (const int lastDigit : {0, 20, -60, -148, -149}) {
                Values values(kBlock, std::ldexp(size, lastDigit + 43));
                std::fill(values.end() - count, values.end(), std::ldexp(8388609.0f, lastDigit));
                checkStatistics(values);
                std::fill(values.end() - count, values.end(), std::ldexp(1.0f, lastDigit));
                checkStatistics(values);
            }
        }
    }
}

// A zero of either sign is not below the other.
TEST(ValueStatistics, TheFirstOfTheZerosIsTheExtremeInAnyBlock) {
    for (const float first : {0.0f, -0.0f}) {
        for (const std::size_t at : {std::size_t{1}, kBlock - 1, kBlock, kBlock + 1, 2 * kBlock}) {
            Values values(at, first);
            values.resize(3 * kBlock, -first);
            checkStatistics(values);
            for (const float other : {1.0f, -1.0f, kUndef}) {
                Values behind(at, other);
                append(behind, values);
                checkStatistics(behind);
            }
        }
    }
}

TEST(ValueStatistics, OfInfinitiesNaNAndMarkersInAnyBlock) {
    for (const float special : {kInf, -kInf, kNan, -kNan, kUndef, -kUndef}) {
        for (const std::size_t at : {std::size_t{0}, kBlock - 1, kBlock, 2 * kBlock + 5}) {
            Values values(2 * kBlock + 10, 0.1f);
            values[at] = special;
            checkStatistics(values);
            values[kBlock + 7] = -kInf;
            checkStatistics(values);
        }
    }
    checkStatistics(Values(2 * kBlock, kUndef));
    checkStatistics(Values(2 * kBlock, kNan));
    checkStatistics({});
}

} // namespace
