// Contents and text of triplet arrays; their statistics are in TripletStatisticsTest.cpp.

#include <qel/TripletQELVector.h>

#include <cmath>
#include <iostream>
#include <sstream>
#include <type_traits>

#include <gmock/gmock.h>

#include "arrays/LengthErrors.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/SpecialFloats.h"
#include "support/StandardStreams.h"

namespace {

using qel::TripletQELVector;
using qel_test::kEndlessLength;
using qel_test::kInf;
using qel_test::kNan;
using qel_test::kUndef;
using qel_test::lengthErrorOf;
using qel_test::sameBitsInAll;
using qel_test::standardOutputOf;
using qel_test::throwsInvalid;
using Triplet = qel::TripletBase<float>;
using Triplets = std::vector<Triplet>;

static_assert(std::has_virtual_destructor<TripletQELVector>::value, "deletable through the base");

Triplets countedTriplets(std::size_t n) {
    Triplets list;
    for (std::size_t i = 0; i < n; ++i) {
        const float v = static_cast<float>(i);
        list.push_back({v, v + 0.25f, v + 0.5f});
    }
    return list;
}

// -- Building ----

TEST(TripletQELVector, FromAFlatList) {
    const float flat[] = {1, 2, 3, 4, 5, 6};
    const TripletQELVector v(flat, 6);
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), Triplets{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(v.size(), 2u);
    EXPECT_FALSE(v.empty());
}

TEST(TripletQELVector, FromAStandardArray) {
    const TripletQELVector v(countedTriplets(3));
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), countedTriplets(3)));
}

TEST(TripletQELVector, RedefineWithNoElementsGivesAnEmptyArray) {
    const float flat[] = {1, 2, 3};
    TripletQELVector v(flat, 3);
    v.redefine(flat, 0);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.size(), 0u);
}

TEST(TripletQELVector, RedefineRefusesWhatIsNotDivisibleByThree) {
    const float flat[7] = {};
    TripletQELVector v(countedTriplets(2));
    EXPECT_THAT([&] { v.redefine(flat, 7); },
                throwsInvalid("TripletQELVector", "constructor",
                              "Number of elements provided (7) not divisible by three."));
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), countedTriplets(2)));
}

TEST(TripletQELVector, RedefineRefusesANullPointerFirst) {
    TripletQELVector v(countedTriplets(2));
    for (const std::size_t n : {std::size_t{0}, std::size_t{6}, std::size_t{7}}) {
        EXPECT_THAT([&] { v.redefine(nullptr, n); },
                    throwsInvalid("TripletQELVector", "constructor", "Null pointer to p_list."));
    }
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), countedTriplets(2)));
}

TEST(TripletQELVector, ConstructorRefusesTheSame) {
    const float flat[4] = {};
    EXPECT_THAT([&] { TripletQELVector(nullptr, 3); },
                throwsInvalid("TripletQELVector", "constructor", "Null pointer to p_list."));
    EXPECT_THAT([&] { TripletQELVector(flat, 4); },
                throwsInvalid("TripletQELVector", "constructor",
                              "Number of elements provided (4) not divisible by three."));
}

TEST(TripletQELVector, RedefineShrinksAndGrows) {
    TripletQELVector v(countedTriplets(4));
    const float flat[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    v.redefine(flat, 3);
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), Triplets{{1, 2, 3}}));
    v.redefine(flat, 15);
    EXPECT_EQ(v.size(), 5u);
    EXPECT_EQ(v[4], Triplet(13, 14, 15));
    v.redefine(countedTriplets(2));
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), countedTriplets(2)));
}

TEST(TripletQELVector, RedefineFromItsOwnElements) {
    TripletQELVector v(countedTriplets(4));
    v.redefine(&v.getInternals()[1].x, 9);
    const Triplets all = countedTriplets(4);
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), Triplets(all.begin() + 1, all.end())));
    v.redefine(v.getInternals());
    EXPECT_EQ(v.size(), 3u);
}

TEST(TripletQELVector, CopiesAreDeep) {
    TripletQELVector v(countedTriplets(2));
    const TripletQELVector copy(v);
    TripletQELVector assigned;
    assigned = v;
    v[0].x = 100.0f;
    EXPECT_TRUE(sameBitsInAll<Triplets>(copy.getInternals(), countedTriplets(2)));
    EXPECT_TRUE(sameBitsInAll<Triplets>(assigned.getInternals(), countedTriplets(2)));
}

TEST(TripletQELVector, SwapsInConstantTime) {
    Triplets plain = countedTriplets(3);
    const Triplet* const storage = plain.data();
    TripletQELVector v;
    v.swap(plain);
    EXPECT_TRUE(plain.empty());
    EXPECT_EQ(v.getInternals().data(), storage);
    TripletQELVector other;
    other.swap(v);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(other.getInternals().data(), storage);
    other.swap(other);
    EXPECT_EQ(other.size(), 3u);
}

// -- Length and access ----

TEST(TripletQELVector, PopBackOfAnEmptyArrayDoesNothing) {
    TripletQELVector v;
    v.pop_back();
    EXPECT_TRUE(v.empty());
}

TEST(TripletQELVector, ChangesOfLength) {
    TripletQELVector v;
    v.push_back({1, 2, 3});
    v.resize(3);
    EXPECT_TRUE(
        sameBitsInAll<Triplets>(v.getInternals(), Triplets{{1, 2, 3}, {0, 0, 0}, {0, 0, 0}}));
    v.pop_back();
    EXPECT_EQ(v.size(), 2u);
    v.reserve(50);
    EXPECT_GE(v.getInternals().capacity(), 50u);
    EXPECT_EQ(v.size(), 2u);
    v.clear();
    EXPECT_TRUE(v.empty());
}

TEST(TripletQELVector, LengthsBeyondTheMaximumLeaveTheElements) {
    TripletQELVector v(countedTriplets(2));
    EXPECT_EQ(lengthErrorOf([&] { v.resize(kEndlessLength); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { v.reserve(kEndlessLength); }), "vector<T> too long");
    EXPECT_TRUE(sameBitsInAll<Triplets>(v.getInternals(), countedTriplets(2)));
}

TEST(TripletQELVector, EveryWayToTheElements) {
    TripletQELVector v(countedTriplets(3));
    const TripletQELVector& c = v;
    EXPECT_EQ(&v[1], &c[1]);
    EXPECT_EQ(&v.front(), &c[0]);
    EXPECT_EQ(&c.front(), &c[0]);
    EXPECT_EQ(&v.back(), &c[2]);
    EXPECT_EQ(&c.back(), &c[2]);
    EXPECT_EQ(&*v.begin(), &c[0]);
    EXPECT_EQ(c.end() - c.begin(), 3);
    EXPECT_EQ(v.end() - v.begin(), 3);
    EXPECT_EQ(&c.getInternals()[2], &c[2]);
}

TEST(TripletQELVectorDeathTest, IndexAtTheSizeIsFatal) {
    TripletQELVector v(countedTriplets(2));
    const TripletQELVector& c = v;
    EXPECT_DEATH(v[2].x = 0, "");
    EXPECT_DEATH(static_cast<void>(c[2]), "");
    TripletQELVector empty;
    EXPECT_DEATH(static_cast<void>(empty.front()), "");
    EXPECT_DEATH(static_cast<void>(empty.back()), "");
}

// -- normalize ----

TEST(TripletQELVector, NormalizeLeavesZeroAndScalesTheRest) {
    TripletQELVector v(Triplets{{0, 0, 0}, {3, 4, 0}, {-0.0f, 0, 0}});
    v.normalize();
    EXPECT_TRUE(sameBitsInAll<Triplets>(
        v.getInternals(), Triplets{{0, 0, 0}, {3.0f / 5.0f, 4.0f / 5.0f, 0}, {-0.0f, 0, 0}}));
    EXPECT_EQ(v[1], Triplet(0.6f, 0.8f, 0.0f));
}

TEST(TripletQELVector, NormalizeDividesUndefinedTripletsByTheMarker) {
    TripletQELVector v(Triplets{{kUndef, 2, -kUndef}, {1, 2, kUndef}});
    v.normalize();
    EXPECT_TRUE(sameBitsInAll<Triplets>(
        v.getInternals(), Triplets{{1, 2.0f / kUndef, -1}, {1 / kUndef, 2 / kUndef, 1}}));
}

TEST(TripletQELVector, NormalizeDividesByTheRoundedLengthInSinglePrecision) {
    const Triplets list = {
        {1, 2, 3},         {1e-30f, 2e-30f, 0}, {1e30f, 1, 2},           {kInf, 1, 2},
        {kNan, 1, kUndef}, {kNan, 1, 2},        {1e-20f, 3e-23f, 1e-44f}};
    TripletQELVector v(list);
    v.normalize();
    for (std::size_t i = 0; i < list.size(); ++i) {
        Triplet expected = list[i];
        const bool undefined = expected.x == kUndef || expected.y == kUndef || expected.z == kUndef;
        const float m = undefined ? kUndef
                                  : std::sqrt(expected.x * expected.x + expected.y * expected.y +
                                              expected.z * expected.z);
        if (m != 0.0f) {
            expected = {expected.x / m, expected.y / m, expected.z / m};
        }
        EXPECT_TRUE(qel_test::sameBits(v[i], expected)) << i << ": " << v[i];
    }
}

// -- Text ----

TEST(TripletQELVector, ToStringIsScientificAndSeparatedByCommas) {
    TripletQELVector v(Triplets{{1, 2.5f, -3}, {1, kUndef, 2}});
    EXPECT_EQ(v.toString(), "1.000000e+00, 2.500000e+00, -3.000000e+00, UNDEF, UNDEF, UNDEF");
    EXPECT_EQ(TripletQELVector().toString(), "");
}

struct Written {
    std::string stream;
    std::string standardOutput;
};

Written written(const TripletQELVector& v, std::size_t from, std::size_t to) {
    std::ostringstream os;
    const std::string out = standardOutputOf([&] { v.write(os, from, to); });
    return {os.str(), out};
}

TEST(TripletQELVector, WriteSplitsItsOutput) {
    const TripletQELVector v(Triplets{{1, 2, 3}, {4, kUndef, 6.5f}});
    const Written w = written(v, 0, 1);
    EXPECT_EQ(w.stream, "size=2\n(1, 2, 3),(4, UNDEF, 6.5),");
    EXPECT_EQ(w.standardOutput, "0:\n");
}

TEST(TripletQELVector, WriteBreaksLinesAfterEveryFourthElement) {
    const TripletQELVector v(Triplets(10, Triplet(1, 1, 1)));
    EXPECT_EQ(written(v, 0, 9).standardOutput, "0:\n4:\n8:\n");
    // No break where only the last element would follow.
    EXPECT_EQ(written(v, 0, 8).standardOutput, "0:\n4:\n");
    EXPECT_EQ(written(v, 0, 4).standardOutput, "0:\n");
    EXPECT_EQ(written(v, 0, 5).standardOutput, "0:\n4:\n");
    EXPECT_EQ(written(v, 6, 9).standardOutput, "6:\n8:\n");
    EXPECT_EQ(written(v, 6, 9).stream, "size=10\n(1, 1, 1),(1, 1, 1),(1, 1, 1),(1, 1, 1),");
}

TEST(TripletQELVector, WriteWithToZeroGoesToTheEnd) {
    const TripletQELVector v(countedTriplets(3));
    EXPECT_EQ(written(v, 0, 0).stream, written(v, 0, 2).stream);
    EXPECT_EQ(written(v, 1, 0).stream, "size=3\n(1, 1.25, 1.5),(2, 2.25, 2.5),");
}

TEST(TripletQELVector, WriteSaysABadRangeOnStandardOutput) {
    const TripletQELVector v(countedTriplets(3));
    EXPECT_EQ(written(v, 2, 1).stream, "size=3\n");
    EXPECT_EQ(written(v, 2, 1).standardOutput, "1<2\n");
    EXPECT_EQ(written(v, 0, 3).stream, "size=3\n");
    EXPECT_EQ(written(v, 0, 3).standardOutput, "3>= size 3\n");
    const TripletQELVector empty;
    EXPECT_EQ(written(empty, 0, 0).stream, "size=0\n");
    EXPECT_EQ(written(empty, 0, 0).standardOutput, "18446744073709551615>= size 0\n");
}

TEST(TripletQELVector, WriteKeepsTheStreamsFormatting) {
    std::ostringstream os;
    os.precision(2);
    const TripletQELVector v(Triplets{{1.2345f, 2, 3}});
    standardOutputOf([&] { v.write(os, 0, 0); });
    EXPECT_EQ(os.str(), "size=1\n(1.2, 2, 3),");
}

TEST(TripletQELVector, DbprintWritesTheWholeArray) {
    const TripletQELVector v(countedTriplets(3));
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(); }),
              "size=3\n0:(0, 0.25, 0.5),(1, 1.25, 1.5),(2, 2.25, 2.5),\n");
    EXPECT_EQ(standardOutputOf([] { TripletQELVector().dbprint(); }),
              "size=0\n18446744073709551615>= size 0\n");
}

TEST(TripletQELVector, DbprintOfARangeExtendsTheSign) {
    const TripletQELVector v(countedTriplets(3));
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(1, 1); }), "size=3\n1:(1, 1.25, 1.5),\n");
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(0, -1); }),
              "size=3\n18446744073709551615>= size 3\n");
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(-2, 1); }), "size=3\n1<18446744073709551614\n");
}

// -- Moving, and braces ----

static_assert(std::is_nothrow_move_constructible<TripletQELVector>::value, "cheap to return");
static_assert(std::is_nothrow_move_assignable<TripletQELVector>::value, "cheap to replace");

TEST(TripletQELVector, IsBuiltFromBraces) {
    const TripletQELVector v = {{1, 2, 3}, {4, 5, 6}};
    EXPECT_EQ(v.getInternals(), Triplets({{1, 2, 3}, {4, 5, 6}}));
    EXPECT_TRUE(TripletQELVector{}.empty());
}

TEST(TripletQELVector, IsMovedWithItsStatistics) {
    TripletQELVector source = {{3, 4, 0}, {0, 0, 2}};
    EXPECT_EQ(source.getMax(), 5.0f);
    const Triplet* const storage = source.getInternals().data();
    TripletQELVector moved(std::move(source));
    EXPECT_EQ(moved.getInternals().data(), storage);
    EXPECT_EQ(moved.getNvalid(), 2); // not counted again
    EXPECT_TRUE(source.empty());
    EXPECT_EQ(source.getNvalid(), 0);
    EXPECT_EQ(source.getMax(), kUndef);

    TripletQELVector assigned = {{1, 0, 0}};
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getInternals().data(), storage);
    EXPECT_EQ(assigned.getNvalid(), 2);
    EXPECT_TRUE(moved.empty());
    TripletQELVector& itself = assigned;
    assigned = std::move(itself);
    EXPECT_EQ(assigned.size(), 2U);
    EXPECT_EQ(assigned.getMax(), 5.0f);
}

} // namespace
