// Statistics of the float arrays: the values, and that the fast ways of computing them give what
// the loop value by value gives.

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>

#include "arrays/ReferenceStatistics.h"
#include "support/Bits.h"
#include "support/SpecialFloats.h"
#include "support/VectorUnits.h"

namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel_test::kInf;
using qel_test::kNan;
using qel_test::kUndef;
using qel_test::sameBits;
using qel_test::Statistics;
using qel_test::valueByValue;
using Values = std::vector<float>;

::testing::AssertionResult has(const FloatQELVector& v, const Statistics& s) {
    const float sum = static_cast<float>(s.sum);
    if (sameBits(v.getMin(), s.min) && sameBits(v.getMax(), s.max) && sameBits(v.getSum(), sum) &&
        v.getNvalid() == s.count) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "min " << v.getMin() << " for " << s.min << ", max " << v.getMax() << " for " << s.max
           << ", sum " << v.getSum() << " for " << sum << ", count " << v.getNvalid() << " for "
           << s.count;
}

// On both kinds and every vector unit of this machine.
void checkStatistics(const Values& values) {
    const Statistics expected = valueByValue(values);
    const FloatQELVectorConcrete owning(values.data() == nullptr ? &kUndef : values.data(),
                                        values.size());
    qel::TripletQELVector triplets;
    for (const float v : values) {
        triplets.push_back({-v, v, 7.0f});
    }
    const FloatQELVectorComponent view(triplets, 1);
    qel_test::onEveryVectorUnit([&] {
        owning.invalidateCache();
        view.invalidateCache();
        EXPECT_TRUE(has(owning, expected));
        EXPECT_TRUE(has(view, expected));
    });
}

TEST(FloatStatistics, OfANewArray) {
    const FloatQELVectorConcrete v;
    EXPECT_EQ(v.getMin(), kUndef);
    EXPECT_EQ(v.getMax(), kUndef);
    EXPECT_EQ(v.getSum(), 0.0f);
    EXPECT_EQ(v.getNvalid(), 0);
    checkStatistics({});
}

TEST(FloatStatistics, LeaveOutUndefinedValues) {
    const float values[] = {1, kUndef, -2};
    const FloatQELVectorConcrete v(values, 3);
    EXPECT_EQ(v.getMin(), -2.0f);
    EXPECT_EQ(v.getMax(), 1.0f);
    EXPECT_EQ(v.getSum(), -1.0f);
    EXPECT_EQ(v.getNvalid(), 2);
    checkStatistics({kUndef, kUndef, kUndef});
    checkStatistics(Values(1000, kUndef));
}

TEST(FloatStatistics, StartAfreshEachTime) {
    const float values[] = {5, 6};
    FloatQELVectorConcrete v(values, 2);
    EXPECT_EQ(v.getNvalid(), 2);
    v.redefine(values, 1);
    EXPECT_EQ(v.getNvalid(), 1);
    EXPECT_EQ(v.getMax(), 5.0f);
    EXPECT_EQ(v.getSum(), 5.0f);
}

TEST(FloatStatistics, SumIsDoubleAndRoundedAtTheEnd) {
    Values values(1, 16777216.0f);
    values.insert(values.end(), 64, 1.0f); // each too small for a sum of floats
    EXPECT_EQ(FloatQELVectorConcrete(values.data(), values.size()).getSum(), 16777280.0f);
    checkStatistics(values);
    checkStatistics({3e38f, 3e38f, 3e38f});
}

TEST(FloatStatistics, AFirstNanStaysTheExtreme) {
    checkStatistics({kNan, 1, 2});
    checkStatistics({kUndef, kNan, 1, 2});
    checkStatistics({1, kNan, 2, 0});
    const float values[] = {kNan, 1};
    const FloatQELVectorConcrete v(values, 2);
    EXPECT_TRUE(std::isnan(v.getMin()));
    EXPECT_TRUE(std::isnan(v.getMax()));
    EXPECT_EQ(v.getNvalid(), 2);
}

TEST(FloatStatistics, TheFirstOfTwoZerosIsTheExtreme) {
    for (std::size_t n = 1; n < 200; n += 7) {
        Values values(n, 0.0f);
        values.back() = -0.0f;
        checkStatistics(values);
        for (float& v : values) {
            v = -v;
        }
        checkStatistics(values);
        values.insert(values.begin(), 3.0f);
        checkStatistics(values);
        values.insert(values.begin(), -3.0f);
        checkStatistics(values);
    }
}

TEST(FloatStatistics, ASumOfNegativeZerosIsZero) {
    // The sum starts at +0.
    checkStatistics(Values(1, -0.0f));
    checkStatistics(Values(5000, -0.0f));
}

// Places where a block of the fast path may end.
const std::size_t kLengths[] = {1,   2,   7,   8,   15,  16,  17,   31,   33,   63,   64,  65,
                                127, 128, 129, 255, 256, 257, 1000, 1024, 1025, 4096, 5001};

Values drawn(std::mt19937& random, std::size_t n, float centre, float spread) {
    std::uniform_real_distribution<float> around(-spread, spread);
    Values values(n);
    for (float& v : values) {
        v = centre + around(random);
    }
    return values;
}

TEST(FloatStatistics, OfFieldsOfManyKinds) {
    std::mt19937 random(11);
    for (const std::size_t n : kLengths) {
        checkStatistics(drawn(random, n, 101325.0f, 500.0f)); // a pressure
        checkStatistics(drawn(random, n, 0.0f, 1.0f));
        checkStatistics(drawn(random, n, 0.0f, 3e38f));
        checkStatistics(drawn(random, n, 0.0f, 1e-40f));
        Values wide = drawn(random, n, 0.0f, 1.0f);
        for (float& v : wide) {
            v = std::ldexp(v, static_cast<int>(random() % 250) - 125);
        }
        checkStatistics(wide);
    }
}

TEST(FloatStatistics, OfFieldsWithSpecialValues) {
    std::mt19937 random(12);
    const float special[] = {kUndef, -kUndef, kInf, -kInf, kNan, 0.0f, -0.0f, 1e-45f, 3e38f};
    for (const std::size_t n : kLengths) {
        for (const unsigned share : {1u, 10u, 100u}) {
            for (const unsigned kinds : {1u, 2u, 4u, 5u, 9u}) {
                Values values = drawn(random, n, 1000.0f, 2000.0f);
                for (float& v : values) {
                    if (random() % share == 0) {
                        v = special[random() % kinds];
                    }
                }
                checkStatistics(values);
            }
        }
    }
}

// The order of a sum shows where it rounds: large and small terms that do not share 53 bits.
TEST(FloatStatistics, SumsThatRoundKeepTheOrder) {
    std::mt19937 random(13);
    for (int round = 0; round < 50; ++round) {
        Values values = drawn(random, 3000, 0.0f, 1e-10f);
        for (int k = 0; k < 10; ++k) {
            const float large = std::ldexp(1.0f, 20 + static_cast<int>(random() % 60));
            values[random() % values.size()] = large;
            values[random() % values.size()] = -large;
        }
        checkStatistics(values);
    }
}

// The same, where one block is coarse and large and the next fine: only the total tells.
TEST(FloatStatistics, AnInexactTotalIsFoundOut) {
    for (const int exponent : {29, 30, 40, 52, 53, 54, 100}) {
        Values values(2048, std::ldexp(1.0f, exponent));
        values.insert(values.end(), 2048, std::ldexp(1.0f, -20) * 1.2345678f);
        values.insert(values.end(), 2048, -std::ldexp(1.0f, exponent));
        checkStatistics(values);
    }
}

} // namespace
