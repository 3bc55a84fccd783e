#include <qel/ViewStatistics.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "arrays/BigInteger.h"
#include "support/AllocationLimit.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace qel_test {
namespace {

using namespace qel;

constexpr std::uint64_t kMaxCount = std::numeric_limits<std::uint64_t>::max();

template <typename T>
constexpr T kInfinityOf = std::numeric_limits<T>::infinity();
template <typename T>
constexpr T kUndefinedOf = std::numeric_limits<T>::max();
template <typename T>
constexpr T kNotANumberOf = std::numeric_limits<T>::quiet_NaN();

template <typename T>
ScalarStatistics<T> oneByOne(const std::vector<T>& values, std::uint64_t firstIndex = 0) {
    ScalarStatistics<T> statistics;
    for (std::size_t i = 0; i < values.size(); ++i) {
        statistics.add(values[i], firstIndex + i);
    }
    return statistics;
}

template <typename T>
TripletStatistics<T> oneByOne(const std::vector<TripletBase<T>>& values) {
    TripletStatistics<T> statistics;
    for (std::size_t i = 0; i < values.size(); ++i) {
        statistics.add(values[i], i);
    }
    return statistics;
}

// What the statistics are by their definition.
template <typename T>
struct Definition {
    std::uint64_t undefined = 0, notANumber = 0;
    std::uint64_t minIndex = 0, maxIndex = 0;
    T min = kNotANumberOf<T>, max = kNotANumberOf<T>;
    bool hasInfinity = false;
    std::uint64_t valid = 0;
    BigInteger sum, squares;

    explicit Definition(const std::vector<T>& values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            take(values[i], i);
        }
    }

    void take(T value, std::uint64_t index) {
        undefined += value == kUndefinedOf<T> ? 1 : 0;
        notANumber += std::isnan(value) ? 1 : 0;
        if (value == kUndefinedOf<T> || std::isnan(value)) {
            return;
        }
        if (valid == 0 || value < min) {
            min = value;
            minIndex = index;
        }
        if (valid == 0 || value > max) {
            max = value;
            maxIndex = index;
        }
        ++valid;
        hasInfinity = hasInfinity || std::isinf(value);
        if (!std::isinf(value)) {
            const BigInteger units = BigInteger::unitsOf(static_cast<double>(value));
            sum += units;
            squares += units * units;
        }
    }
};

template <typename T>
void expectDefinition(const ScalarStatistics<T>& s, const std::vector<T>& values) {
    const Definition<T> d(values);
    EXPECT_EQ(s.getCount(), values.size());
    EXPECT_EQ(s.getUndefined(), d.undefined);
    EXPECT_EQ(s.getNotANumber(), d.notANumber);
    EXPECT_EQ(s.getValid(), d.valid);
    EXPECT_TRUE(sameBits(s.getMin(), d.min)) << s.getMin() << " is not " << d.min;
    EXPECT_TRUE(sameBits(s.getMax(), d.max)) << s.getMax() << " is not " << d.max;
    EXPECT_EQ(s.getMinIndex(), d.minIndex);
    EXPECT_EQ(s.getMaxIndex(), d.maxIndex);
    if (d.hasInfinity || d.valid == 0) {
        return;
    }
    const BigInteger n = BigInteger::of(d.valid);
    const BigInteger one = BigInteger::unitsOf(1.0);
    if (std::isfinite(s.getSum())) {
        EXPECT_TRUE(isRounded(s.getSum(), d.sum, BigInteger::of(1))) << s.getSum();
    }
    EXPECT_TRUE(isRounded(s.getMean(), d.sum, n)) << s.getMean();
    if (std::isfinite(s.getVariance())) {
        EXPECT_TRUE(isRounded(s.getVariance(), n * d.squares - d.sum * d.sum, n * n * one))
            << s.getVariance();
    }
}

// By definition, one by one, and on each vector unit, side by side and with strides.
template <typename T>
void checkStatistics(const std::vector<T>& values) {
    const ScalarStatistics<T> expected = oneByOne(values);
    expectDefinition(expected, values);
    const std::size_t n = values.size();
    std::vector<T> everyThird(3 * n + 1, T{17}), backwards(values.rbegin(), values.rend());
    std::vector<char> unaligned(n * (sizeof(T) + 3) + 1);
    for (std::size_t i = 0; i < n; ++i) {
        everyThird[3 * i + 1] = values[i];
        std::memcpy(&unaligned[i * (sizeof(T) + 3) + 1], &values[i], sizeof(T));
    }
    const auto bytes = static_cast<std::ptrdiff_t>(sizeof(T));
    onEveryVectorUnit([&] {
        EXPECT_TRUE(ScalarStatistics(values) == expected);
        using View = ScalarView<const T>;
        EXPECT_TRUE(ScalarStatistics(View(&everyThird[1], n, 3 * bytes)) == expected);
        if (n > 0) {
            EXPECT_TRUE(ScalarStatistics(View(&backwards[n - 1], n, -bytes)) == expected);
            const auto* const odd = reinterpret_cast<const T*>(&unaligned[1]);
            EXPECT_TRUE(ScalarStatistics(View(odd, n, bytes + 3)) == expected);
        }
    });
}

// Numbers whose magnitudes are spread over so many powers of two below 2^top, of both signs.
template <typename T>
std::vector<T> spreadValues(std::size_t n, int top, int octaves, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<T> fraction(T{0.5}, T{1});
    std::uniform_int_distribution<int> exponent(top - octaves, top);
    std::bernoulli_distribution isNegative;
    std::vector<T> values;
    for (std::size_t i = 0; i < n; ++i) {
        const T value = std::ldexp(fraction(random), exponent(random));
        values.push_back(isNegative(random) ? -value : value);
    }
    return values;
}

template <typename T>
void sprinkle(std::vector<T>& values, double share, std::uint64_t seed) {
    const T special[] = {kUndefinedOf<T>,
                         -kUndefinedOf<T>,
                         kNotANumberOf<T>,
                         kInfinityOf<T>,
                         -kInfinityOf<T>,
                         T{0},
                         -T{0},
                         std::numeric_limits<T>::denorm_min(),
                         std::numeric_limits<T>::min()};
    std::mt19937_64 random(seed);
    std::bernoulli_distribution isChosen(share);
    std::uniform_int_distribution<std::size_t> which(0, std::size(special) - 1);
    for (T& value : values) {
        if (isChosen(random)) {
            value = special[which(random)];
        }
    }
}

template <typename T>
class ScalarStatisticsOf : public ::testing::Test {};
using Types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(ScalarStatisticsOf, Types);

// -- Values ----

TYPED_TEST(ScalarStatisticsOf, NothingHaveNoExtremesAndNoMean) {
    const ScalarStatistics<TypeParam> none;
    EXPECT_EQ(none.getCount(), 0U);
    EXPECT_EQ(none.getValid(), 0U);
    EXPECT_TRUE(std::isnan(none.getMin()));
    EXPECT_TRUE(std::isnan(none.getMax()));
    EXPECT_EQ(none.getMinIndex(), 0U);
    EXPECT_TRUE(sameBits(none.getSum(), 0.0));
    EXPECT_TRUE(std::isnan(none.getMean()));
    EXPECT_TRUE(std::isnan(none.getVariance()));
    EXPECT_TRUE(ScalarStatistics<TypeParam>(ScalarView<const TypeParam>()) == none);
}

TYPED_TEST(ScalarStatisticsOf, AFewNumbersAreThoseByHand) {
    using T = TypeParam;
    const std::vector<T> values = {2, 4, 4, 4, 5, 5, 7, 9, kUndefinedOf<T>, kNotANumberOf<T>};
    const ScalarStatistics s(values, 100);
    EXPECT_EQ(s.getCount(), 10U);
    EXPECT_EQ(s.getValid(), 8U);
    EXPECT_EQ(s.getUndefined(), 1U);
    EXPECT_EQ(s.getNotANumber(), 1U);
    EXPECT_EQ(s.getMin(), T{2});
    EXPECT_EQ(s.getMinIndex(), 100U);
    EXPECT_EQ(s.getMax(), T{9});
    EXPECT_EQ(s.getMaxIndex(), 107U);
    EXPECT_EQ(s.getSum(), 40.0);
    EXPECT_EQ(s.getMean(), 5.0);
    EXPECT_EQ(s.getVariance(), 4.0);
}

TYPED_TEST(ScalarStatisticsOf, UndefinedNumbersAndNaNAloneHaveNoExtremes) {
    using T = TypeParam;
    const std::vector<T> values = {kUndefinedOf<T>, kNotANumberOf<T>, -kNotANumberOf<T>};
    const ScalarStatistics s(values, 5);
    EXPECT_EQ(s.getUndefined(), 1U);
    EXPECT_EQ(s.getNotANumber(), 2U);
    EXPECT_TRUE(std::isnan(s.getMin()));
    EXPECT_EQ(s.getMaxIndex(), 0U);
    EXPECT_TRUE(std::isnan(s.getMean()));
    checkStatistics(values);
}

// An undefined operation of the processor gives a NaN whose sign is set.
TYPED_TEST(ScalarStatisticsOf, ANaNOfEitherSignIsNoExtreme) {
    using T = TypeParam;
    for (const T nan : {kNotANumberOf<T>, -kNotANumberOf<T>}) {
        for (const T number : {T(3), T(-3), kInfinityOf<T>, std::numeric_limits<T>::denorm_min()}) {
            const std::vector<T> values{nan, number, nan};
            const ScalarStatistics<T> statistics{values};
            EXPECT_EQ(statistics.getNotANumber(), 2u);
            EXPECT_EQ(statistics.getMin(), number);
            EXPECT_EQ(statistics.getMax(), number);
            EXPECT_EQ(statistics.getMinIndex(), 1u);
            EXPECT_EQ(statistics.getMaxIndex(), 1u);
        }
    }
}

TYPED_TEST(ScalarStatisticsOf, AnInfinityIsAnExtremeAndTheSum) {
    using T = TypeParam;
    const double inf = kInfinityOf<double>;
    const ScalarStatistics up(std::vector<T>{1, kInfinityOf<T>, 2});
    EXPECT_EQ(up.getValid(), 3U);
    EXPECT_EQ(up.getMax(), kInfinityOf<T>);
    EXPECT_EQ(up.getMaxIndex(), 1U);
    EXPECT_EQ(up.getSum(), inf);
    EXPECT_EQ(up.getMean(), inf);
    EXPECT_TRUE(std::isnan(up.getVariance()));
    const ScalarStatistics down(std::vector<T>{-kInfinityOf<T>});
    EXPECT_EQ(down.getMax(), -kInfinityOf<T>);
    EXPECT_EQ(down.getSum(), -inf);
    const ScalarStatistics both(std::vector<T>{kInfinityOf<T>, -kInfinityOf<T>});
    EXPECT_TRUE(std::isnan(both.getSum()));
    EXPECT_TRUE(std::isnan(both.getMean()));
}

TYPED_TEST(ScalarStatisticsOf, TheNegativeOfTheUndefinedValueIsANumber) {
    using T = TypeParam;
    const ScalarStatistics s(std::vector<T>{-kUndefinedOf<T>, 0});
    EXPECT_EQ(s.getValid(), 2U);
    EXPECT_EQ(s.getSum(), -static_cast<double>(kUndefinedOf<T>));
}

TYPED_TEST(ScalarStatisticsOf, EqualExtremesStandAtTheLowestIndexWhateverTheirSign) {
    using T = TypeParam;
    std::vector<T> values(3000, T{0});
    values[1500] = -T{0};
    const ScalarStatistics zeros(values);
    EXPECT_TRUE(sameBits(zeros.getMin(), T{0}));
    EXPECT_EQ(zeros.getMinIndex(), 0U);
    EXPECT_EQ(zeros.getMaxIndex(), 0U);
    values.assign(3000, T{1});
    values[1023] = values[1024] = values[2999] = T{3};
    EXPECT_EQ(ScalarStatistics(values).getMaxIndex(), 1023U);
    checkStatistics(values);
}

TYPED_TEST(ScalarStatisticsOf, ManyNumbersAreThoseByDefinitionAtEverySpreadAndSize) {
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    std::uint64_t seed = 0;
    for (const int octaves : {0, 10, 23, 24, 25, 27, 28, 29, 60, 120}) {
        for (const std::size_t n : {1U, 31U, 1023U, 1024U, 1025U, 2050U}) {
            for (const int top :
                 {Limits::min_exponent, -97, -98, -30, 1, 40, Limits::max_exponent}) {
                if (n < 1000 || (octaves + top) % 3 == 0) {
                    SCOPED_TRACE(std::to_string(octaves) + " octaves below 2^" +
                                 std::to_string(top) + ", " + std::to_string(n));
                    checkStatistics(spreadValues<T>(n, top, octaves, ++seed));
                }
            }
        }
    }
}

TYPED_TEST(ScalarStatisticsOf, NumbersAtTheEdgesOfTheRangesOfExponentsAreSummedExactly) {
    using T = TypeParam;
    for (const int top : {-450, -425, -400, -399, 0, 499, 500, 501, 511, 512}) {
        if (std::ldexp(T{1}, top) > 0 && std::isfinite(std::ldexp(T{1}, top))) {
            for (const int below : {20, 23, 24, 25, 26, 27, 28, 29}) {
                std::vector<T> values;
                for (const int e : {top, top - below}) {
                    const T power = std::ldexp(T{1}, e);
                    values.insert(values.end(), {power, std::nextafter(power, T{0}),
                                                 -std::nextafter(power, kInfinityOf<T>)});
                }
                checkStatistics(values);
            }
        }
    }
}

TYPED_TEST(ScalarStatisticsOf, SpecialNumbersAmongOthersAreToldApart) {
    using T = TypeParam;
    std::uint64_t seed = 0;
    for (const double share : {0.001, 0.5, 1.0}) {
        for (const std::size_t n : {7U, 1024U, 2500U}) {
            std::vector<T> values = spreadValues<T>(n, 3, 15, ++seed);
            sprinkle(values, share, seed);
            checkStatistics(values);
            for (T& value : values) {
                value = std::isinf(value) ? T{1} : value;
            }
            checkStatistics(values);
        }
    }
}

TYPED_TEST(ScalarStatisticsOf, ARepeatedNumberHasAStrideOfZero) {
    const TypeParam value = TypeParam(0.1);
    const ScalarStatistics s(ScalarView<const TypeParam>(&value, 5000, 0));
    EXPECT_TRUE(s == oneByOne(std::vector<TypeParam>(5000, value)));
    EXPECT_EQ(s.getMean(), static_cast<double>(value));
    EXPECT_EQ(s.getVariance(), 0.0);
}

// -- Merging ----

TYPED_TEST(ScalarStatisticsOf, PartsMergedInAnyOrderHaveTheSameBytes) {
    using T = TypeParam;
    static_assert(std::is_trivially_copyable<ScalarStatistics<T>>::value, "is sent as bytes");
    std::mt19937_64 random(3);
    for (int round = 0; round < 20; ++round) {
        std::vector<T> values = spreadValues<T>(4000, 2, 40, random());
        sprinkle(values, 0.01, random());
        const ScalarStatistics whole(values, 7);
        std::vector<std::size_t> ends = {0, values.size()};
        for (int k = 0; k < 9; ++k) {
            ends.push_back(random() % values.size());
        }
        std::sort(ends.begin(), ends.end());
        std::vector<ScalarStatistics<T>> parts;
        for (std::size_t k = 0; k + 1 < ends.size(); ++k) {
            const std::vector<T> part(values.data() + ends[k], values.data() + ends[k + 1]);
            parts.emplace_back(part, 7 + ends[k]);
        }
        std::shuffle(parts.begin(), parts.end(), random);
        ScalarStatistics<T> merged;
        for (const ScalarStatistics<T>& part : parts) {
            merged.merge(part);
        }
        EXPECT_TRUE(merged == whole);
        EXPECT_FALSE(merged != whole);
        EXPECT_EQ(std::memcmp(&merged, &whole, sizeof(whole)), 0);
    }
}

TYPED_TEST(ScalarStatisticsOf, ZerosOfBothSignsMergeTheSameInEitherOrder) {
    using T = TypeParam;
    ScalarStatistics plus(std::vector<T>{0}, 4), minus(std::vector<T>{-T{0}}, 4);
    const ScalarStatistics<T> otherPlus = plus, otherMinus = minus;
    plus.merge(otherMinus);
    minus.merge(otherPlus);
    EXPECT_TRUE(plus == minus);
}

TYPED_TEST(ScalarStatisticsOf, TwiceTheSameFieldHasTheSameMean) {
    ScalarStatistics s(std::vector<TypeParam>{1, 2, 4});
    s.merge(s);
    EXPECT_EQ(s.getCount(), 6U);
    EXPECT_EQ(s.getSum(), 14.0);
}

TYPED_TEST(ScalarStatisticsOf, MoreNumbersThan64BitsCountAreRefused) {
    using T = TypeParam;
    const T lowest = -kUndefinedOf<T>;
    ScalarStatistics<T> power, all; // 2^k numbers, and 2^k - 1
    power.add(lowest, 0);
    for (int k = 0; k < 63; ++k) {
        all.merge(power);
        power.merge(power);
    }
    const ScalarStatistics<T> before = power;
    EXPECT_THAT([&] { power.merge(before); },
                throwsInvalid("ViewStatistics", "merge",
                              "The count of 9223372036854775808 and 9223372036854775808 elements "
                              "exceeds 64 bits."));
    EXPECT_TRUE(power == before);
    all.merge(power);
    EXPECT_EQ(all.getCount(), kMaxCount);
    EXPECT_EQ(all.getMean(), static_cast<double>(lowest));
    EXPECT_EQ(all.getVariance(), 0.0);
    const ScalarStatistics<T> full = all;
    EXPECT_THAT([&] { all.add(1, 0); },
                throwsInvalid("ViewStatistics", "add",
                              "The count of 18446744073709551615 and 1 elements exceeds 64 bits."));
    EXPECT_TRUE(all == full);
}

TYPED_TEST(ScalarStatisticsOf, IndicesBeyond64BitsAreRefused) {
    const std::vector<TypeParam> two = {1, 2};
    EXPECT_EQ(ScalarStatistics(two, kMaxCount - 1).getMaxIndex(), kMaxCount);
    EXPECT_THAT([&] { ScalarStatistics(two, kMaxCount); },
                throwsInvalid("ViewStatistics", "constructor",
                              "The indices of 2 elements from 18446744073709551615 on exceed 64 "
                              "bits."));
}

// -- Long calls ----

TYPED_TEST(ScalarStatisticsOf, ProgressGrowsToOne) {
    const std::vector<TypeParam> values(1000000, TypeParam{2});
    std::vector<double> reports;
    const ScalarStatistics<TypeParam> s(values, 0, [&](double done) {
        reports.push_back(done);
        return true;
    });
    ASSERT_GT(reports.size(), 2U);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_GE(reports.front(), 0.0);
    EXPECT_EQ(reports.back(), 1.0);
    EXPECT_EQ(s.getSum(), 2e6);
}

TYPED_TEST(ScalarStatisticsOf, AStoppedFieldGivesTheStatisticsOfWhatIsDone) {
    using T = TypeParam;
    const std::vector<T> values = spreadValues<T>(1000000, 1, 8, 5);
    int calls = 0;
    const ScalarStatistics<T> s(values, 3, [&](double) { return ++calls < 2; });
    EXPECT_EQ(calls, 2);
    ASSERT_GT(s.getCount(), 0U);
    ASSERT_LT(s.getCount(), values.size());
    const std::vector<T> front(values.data(), values.data() + s.getCount());
    EXPECT_TRUE(s == oneByOne(front, 3));
}

TYPED_TEST(ScalarStatisticsOf, AnyFieldTakeNoMemory) {
    const std::vector<TypeParam> values = spreadValues<TypeParam>(5000, 1, 60, 6);
    const std::vector<TripletBase<TypeParam>> triplets(2000, {1, 2, 3});
    const AllocationLimit limit(0);
    ScalarStatistics s(values);
    s.merge(ScalarStatistics(values));
    EXPECT_GT(s.getVariance(), 0.0);
    EXPECT_EQ(TripletStatistics(triplets).getX().getMean(), 1.0);
}

TYPED_TEST(ScalarStatisticsOf, OneFieldCanBeReadByManyThreads) {
    using T = TypeParam;
    const std::vector<T> values = spreadValues<T>(50000, 1, 30, 8);
    const ScalarStatistics<T> expected(values);
    std::array<bool, 4> isSame = {};
    std::vector<std::thread> threads;
    for (bool& same : isSame) {
        threads.emplace_back([&] {
            const ScalarStatistics<T> s(values);
            same = s == expected && s.getVariance() == expected.getVariance();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(std::all_of(isSame.begin(), isSame.end(), [](bool same) { return same; }));
}

// -- Triplets ----

template <typename T>
class TripletStatisticsOf : public ::testing::Test {};
TYPED_TEST_SUITE(TripletStatisticsOf, Types);

template <typename T>
std::vector<TripletBase<T>> specialTriplets(std::size_t n) {
    std::vector<T> numbers = spreadValues<T>(3 * n, 2, 30, n);
    sprinkle(numbers, 0.03, n);
    std::vector<TripletBase<T>> triplets;
    for (std::size_t i = 0; i < n; ++i) {
        triplets.push_back({numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]});
    }
    return triplets;
}

// Component k, or the length, of triplets as their statistics take them.
template <typename T>
std::vector<T> quantityOf(const std::vector<TripletBase<T>>& triplets, int k) {
    std::vector<T> values;
    for (const TripletBase<T>& t : triplets) {
        const T length = std::sqrt(t.x * t.x + t.y * t.y + t.z * t.z);
        const std::array<T, 4> quantities = {t.x, t.y, t.z, length};
        T value = quantities[static_cast<std::size_t>(k)];
        if (std::isnan(t.x) || std::isnan(t.y) || std::isnan(t.z)) {
            value = kNotANumberOf<T>;
        }
        const T undefined = kUndefinedOf<T>;
        values.push_back(t.x == undefined || t.y == undefined || t.z == undefined ? undefined
                                                                                  : value);
    }
    return values;
}

TYPED_TEST(TripletStatisticsOf, AFewTripletsAreThoseByHand) {
    using T = TypeParam;
    const std::vector<TripletBase<T>> triplets = {
        {3, 4, 0}, {1, kUndefinedOf<T>, kNotANumberOf<T>}, {kNotANumberOf<T>, 1, 1}, {0, 0, -1}};
    const TripletStatistics s(triplets);
    EXPECT_EQ(s.getX().getValid(), 2U);
    EXPECT_EQ(s.getX().getUndefined(), 1U);
    EXPECT_EQ(s.getZ().getNotANumber(), 1U);
    EXPECT_EQ(s.getY().getMax(), T{4});
    EXPECT_EQ(s.getLength().getMax(), T{5});
    EXPECT_EQ(s.getLength().getMinIndex(), 3U);
    EXPECT_EQ(s.getLength().getSum(), 6.0);
}

TYPED_TEST(TripletStatisticsOf, ManyTripletsAreThoseOfTheirNumbersInEveryLayout) {
    using T = TypeParam;
    for (const std::size_t n : {0U, 1U, 5U, 1024U, 3000U}) {
        const std::vector<TripletBase<T>> triplets = specialTriplets<T>(n);
        std::array<std::vector<T>, 3> columns;
        for (const TripletBase<T>& t : triplets) {
            columns[0].push_back(t.x);
            columns[1].push_back(t.y);
            columns[2].push_back(t.z);
        }
        const TripletView<const T> apart(columns[0], columns[1], columns[2]);
        onEveryVectorUnit([&] {
            const TripletStatistics s(triplets);
            EXPECT_TRUE(s.getX() == oneByOne(quantityOf(triplets, 0)));
            EXPECT_TRUE(s.getY() == oneByOne(quantityOf(triplets, 1)));
            EXPECT_TRUE(s.getZ() == oneByOne(quantityOf(triplets, 2)));
            EXPECT_TRUE(s.getLength() == oneByOne(quantityOf(triplets, 3)));
            EXPECT_TRUE(s == oneByOne(triplets));
            EXPECT_TRUE(TripletStatistics(apart) == s);
        });
    }
}

TYPED_TEST(TripletStatisticsOf, PartsMergeToTheWhole) {
    using T = TypeParam;
    static_assert(std::is_trivially_copyable<TripletStatistics<T>>::value, "is sent as bytes");
    const std::vector<TripletBase<T>> triplets = specialTriplets<T>(3000);
    const TripletView<const T> view(triplets);
    TripletStatistics<T> merged(view.part(1700, 1300), 1700);
    merged.merge(TripletStatistics<T>(view.part(0, 1700)));
    EXPECT_TRUE(merged == TripletStatistics<T>(view));
    EXPECT_TRUE(merged != TripletStatistics<T>(view.part(0, 1700)));
}

TYPED_TEST(TripletStatisticsOf, TooManyTripletsAreRefusedAndChangeNothing) {
    TripletStatistics<TypeParam> s;
    s.add({1, 2, 3}, 0);
    for (int k = 0; k < 63; ++k) {
        s.merge(s);
    }
    const TripletStatistics<TypeParam> before = s;
    EXPECT_THROW(s.merge(before), data::invalid);
    EXPECT_TRUE(s == before);
}

} // namespace
} // namespace qel_test
