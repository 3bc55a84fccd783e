#include "batch/ArgumentCheck.h"

#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "support/Errors.h"

namespace qel_test {
namespace {

using namespace qel;

TEST(StridedRange, OfOneNumberNeverOverlapsItself) {
    const float number = 0;
    EXPECT_FALSE(StridedRange(&number, 1, 0, sizeof number).overlapsItself());
    EXPECT_FALSE(StridedRange(&number, 0, 0, sizeof number).overlapsItself());
}

TEST(StridedRange, OverlapsItselfByAStrideShorterThanANumber) {
    const double numbers[4] = {};
    EXPECT_TRUE(StridedRange(numbers, 2, 0, 8).overlapsItself());
    EXPECT_TRUE(StridedRange(numbers, 2, 4, 8).overlapsItself());
    EXPECT_TRUE(StridedRange(numbers + 1, 2, -7, 8).overlapsItself());
    EXPECT_FALSE(StridedRange(numbers, 2, 8, 8).overlapsItself());
    EXPECT_FALSE(StridedRange(numbers + 3, 2, -8, 8).overlapsItself());
}

TEST(StridedRange, ColumnsOfOneTableDoNotOverlap) {
    const float table[30] = {};
    const StridedRange first(table, 10, 12, 4);
    const StridedRange second(table + 1, 10, 12, 4);
    const StridedRange backwards(table + 29, 10, -12, 4);
    EXPECT_FALSE(first.overlaps(second));
    EXPECT_FALSE(second.overlaps(first));
    EXPECT_FALSE(first.overlaps(backwards));
    EXPECT_TRUE(first.overlaps(first));
    EXPECT_TRUE(StridedRange(table, 9, 12, 8).overlaps(second));
}

TEST(StridedRange, EmptyRangesOverlapNothing) {
    const float numbers[4] = {};
    EXPECT_FALSE(StridedRange(numbers, 0, 4, 4).overlaps(StridedRange(numbers, 4, 4, 4)));
    EXPECT_FALSE(StridedRange(numbers, 4, 4, 4).overlaps(StridedRange()));
}

// Never misses bytes in common, by the bytes themselves; exact where the strides are equal.
TEST(StridedRange, FindsEveryByteInCommon) {
    std::mt19937 engine(2026);
    const auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(engine);
    };
    std::vector<char> memory(4000);
    int apart = 0;
    for (int round = 0; round < 20000; ++round) {
        struct Groups {
            std::size_t place, count, width;
            std::ptrdiff_t stride;
        };
        Groups groups[2];
        std::set<std::size_t> bytes[2];
        for (int k = 0; k < 2; ++k) {
            groups[k] = {static_cast<std::size_t>(pick(1000, 1200)),
                         static_cast<std::size_t>(pick(1, 12)),
                         static_cast<std::size_t>(pick(1, 12)), pick(-40, 40)};
            for (std::size_t i = 0; i < groups[k].count; ++i) {
                for (std::size_t b = 0; b < groups[k].width; ++b) {
                    bytes[k].insert(static_cast<std::size_t>(
                                        static_cast<std::ptrdiff_t>(groups[k].place) +
                                        static_cast<std::ptrdiff_t>(i) * groups[k].stride) +
                                    b);
                }
            }
        }
        bool common = false;
        for (const std::size_t byte : bytes[0]) {
            common = common || bytes[1].count(byte) > 0;
        }
        const auto range = [&](const Groups& g) {
            return StridedRange(memory.data() + g.place, g.count, g.stride, g.width);
        };
        const bool found = range(groups[0]).overlaps(range(groups[1]));
        EXPECT_EQ(found, range(groups[1]).overlaps(range(groups[0])));
        if (common) {
            ASSERT_TRUE(found) << "round " << round;
        } else {
            apart += found ? 0 : 1;
        }
    }
    EXPECT_GT(apart, 3000); // it does tell ranges apart
}

TEST(ArgumentCheck, TakesOutputsOfTheRightSizeWithMemoryOfTheirOwn) {
    const std::vector<double> in(4);
    std::vector<double> out(4);
    std::vector<TripletBase<double>> triplets(4);
    ArgumentCheck check("Class", "method");
    check.input(ScalarView<const double>(in));
    check.output("first", ScalarView<double>(out), 4);
    check.output("second", TripletView<double>(triplets), 4);
    check.output("none", ScalarView<double>(), 4);
}

TEST(ArgumentCheck, RefusesAnOutputOfAnotherSize) {
    std::vector<double> out(3);
    EXPECT_THAT(
        [&] {
            ArgumentCheck check("Class", "method");
            check.output("foot", ScalarView<double>(out), 4);
        },
        throwsInvalid("Class", "method", "The output foot has 3 elements where 4 are needed."));
}

TEST(ArgumentCheck, RefusesAnOutputThatSharesMemory) {
    std::vector<double> numbers(12);
    const auto checkOutput = [&](const TripletView<double>& out) {
        ArgumentCheck check("Class", "method");
        check.input(ScalarView<const double>(numbers.data(), 4, 24));
        check.output("first", ScalarView<double>(numbers.data() + 1, 4, 24), 4);
        check.output("second", out, 4);
    };
    EXPECT_THAT(
        [&] {
            checkOutput({numbers.data(), 4});
        },
        throwsInvalid("Class", "method", "The output second shares memory with an input."));
    EXPECT_THAT(
        ([&] {
            checkOutput({{numbers.data() + 2, 4, 24},
                         {numbers.data() + 1, 4, 24},
                         {numbers.data() + 2, 4, 24}});
        }),
        throwsInvalid("Class", "method", "The output second shares memory with the output first."));
    EXPECT_THAT(([&] {
                    checkOutput({{numbers.data() + 2, 4, 24},
                                 {numbers.data() + 2, 4, 24},
                                 {numbers.data() + 2, 4, 24}});
                }),
                throwsInvalid("Class", "method",
                              "The output second shares memory with the output second."));
    EXPECT_THAT(
        ([&] {
            checkOutput({numbers.data() + 2, 4, 0, 8});
        }),
        throwsInvalid("Class", "method", "The elements of the output second share memory."));
}

TEST(ArgumentCheck, SeesAllElementsOfTensors) {
    std::vector<float> numbers(40);
    const auto checkTensors = [&](const TensorView<const float>& tensors, std::size_t at) {
        ArgumentCheck check("Class", "method");
        check.input(tensors);
        check.output("out", ScalarView<float>(numbers.data() + at, 4, 40), 4);
    };
    const TensorView<const float> interleaved(numbers.data(), 4, 40);
    for (std::size_t at = 0; at < 9; ++at) {
        EXPECT_THAT(
            [&] { checkTensors(interleaved, at); },
            throwsInvalid("Class", "method", "The output out shares memory with an input."));
        EXPECT_THAT(
            [&] { checkTensors(interleaved.transposed(), at); },
            throwsInvalid("Class", "method", "The output out shares memory with an input."));
    }
    checkTensors(interleaved, 9); // the tenth number of each record
    checkTensors(interleaved.transposed(), 9);
}

} // namespace
} // namespace qel_test
