// Statistics of triplet arrays: what they are, what they start from, and when they expire.

#include <qel/TripletQELVector.h>

#include <cmath>
#include <functional>
#include <random>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "arrays/LengthErrors.h"
#include "support/Bits.h"
#include "support/SpecialFloats.h"
#include "support/StandardStreams.h"

namespace {

using qel::TripletQELVector;
using qel_test::kInf;
using qel_test::kNan;
using qel_test::kUndef;
using qel_test::sameBits;
using Triplet = qel::TripletBase<float>;
using Triplets = std::vector<Triplet>;

struct Statistics {
    float min = kUndef, max = kUndef, sum = kUndef;
    Triplet minExtents{kUndef, kUndef, kUndef}, maxExtents{kUndef, kUndef, kUndef};
    int count = 0;

    void update(const TripletQELVector& v) {
        for (const Triplet& t : v) {
            if (!(t.x == kUndef || t.y == kUndef || t.z == kUndef)) {
                const float m = std::sqrt(t.x * t.x + t.y * t.y + t.z * t.z);
                if (m != kUndef) {
                    min = min == kUndef || min > m ? m : min;
                    max = max == kUndef || m > max ? m : max;
                    sum += m;
                    count += 1;
                }
            }
            for (int i = 0; i < 3; ++i) {
                const float c = t.getRef(i);
                float& low = minExtents.getRef(i);
                float& high = maxExtents.getRef(i);
                low = low == kUndef || low > c ? c : low;
                high = high == kUndef || c > high ? c : high;
            }
        }
    }
};

void expectStatistics(const TripletQELVector& v, const Statistics& s) {
    EXPECT_TRUE(sameBits(v.getMin(), s.min)) << v.getMin() << " " << s.min;
    EXPECT_TRUE(sameBits(v.getMax(), s.max)) << v.getMax() << " " << s.max;
    EXPECT_TRUE(sameBits(v.getSum(), s.sum)) << v.getSum() << " " << s.sum;
    EXPECT_TRUE(sameBits(v.getMinExtents(), s.minExtents)) << v.getMinExtents();
    EXPECT_TRUE(sameBits(v.getMaxExtents(), s.maxExtents)) << v.getMaxExtents();
    EXPECT_EQ(v.getNvalid(), s.count);
}

TEST(TripletStatistics, OfANewArrayAreUndefined) {
    expectStatistics(TripletQELVector(), Statistics());
}

TEST(TripletStatistics, SumStartsAtTheMarkerAndStaysThere) {
    TripletQELVector v(Triplets{{3, 4, 0}, {0, 0, 2}});
    EXPECT_EQ(v.getSum(), kUndef);
    EXPECT_EQ(v.getMin(), 2.0f);
    EXPECT_EQ(v.getMax(), 5.0f);
    EXPECT_EQ(v.getNvalid(), 2);
    EXPECT_EQ(v.getMinExtents(), Triplet(0, 0, 0));
    EXPECT_EQ(v.getMaxExtents(), Triplet(3, 4, 2));
}

TEST(TripletStatistics, AskingTwiceChangesNothing) {
    TripletQELVector v(Triplets{{3, 4, 0}, {1e31f, 0, 0}});
    const float sum = v.getSum();
    EXPECT_EQ(v.getSum(), sum);
    EXPECT_EQ(v.getNvalid(), 2);
    EXPECT_EQ(v.getNvalid(), 2);
}

TEST(TripletStatistics, AccessByIndexAddsMagnitudesAndCountAgain) {
    // Large enough to move a sum that starts at the marker.
    TripletQELVector v(Triplets{{4e31f, 0, 0}, {0, 5e31f, 0}});
    Statistics expected;
    for (int round = 1; round <= 3; ++round) {
        expected.update(v);
        expectStatistics(v, expected);
        EXPECT_EQ(v.getNvalid(), 2 * round);
        v[0] = v[0];
    }
    EXPECT_NE(expected.sum, kUndef);
}

TEST(TripletStatistics, NarrowerValuesDoNotNarrowTheExtents) {
    TripletQELVector v(Triplets{{-5, 0, 0}, {7, 1, 1}});
    EXPECT_EQ(v.getMinExtents(), Triplet(-5, 0, 0));
    v.redefine(Triplets{{1, 1, 1}});
    EXPECT_EQ(v.getMinExtents(), Triplet(-5, 0, 0));
    EXPECT_EQ(v.getMaxExtents(), Triplet(7, 1, 1));
    EXPECT_EQ(v.getNvalid(), 3);
}

TEST(TripletStatistics, AnUndefinedComponentPushesTheExtentWhichTheNextReplaces) {
    TripletQELVector v(Triplets{{5, 1, 1}, {kUndef, 2, 0}});
    EXPECT_EQ(v.getMaxExtents(), Triplet(kUndef, 2, 1));
    EXPECT_EQ(v.getMinExtents(), Triplet(5, 1, 0));
    EXPECT_EQ(v.getNvalid(), 1);
    v.push_back({1, 0, 0});
    // The walk begins again with 5, then the marker, then 1.
    EXPECT_EQ(v.getMaxExtents(), Triplet(1, 2, 1));
    EXPECT_EQ(v.getNvalid(), 3);
}

TEST(TripletStatistics, SpecialValuesFollowTheStatedLoop) {
    const Triplets special = {{kNan, 1, 2},      {1, 2, 3},
                              {-kInf, 0, 0},     {kUndef, kNan, 1},
                              {-0.0f, 0, 0},     {0, -0.0f, -0.0f},
                              {1e38f, 3e38f, 0}, {kInf, -kUndef, 2},
                              {1e-45f, 0, 0},    {kUndef, kUndef, kUndef},
                              {kNan, kNan, kNan}};
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        Triplets list;
        for (auto i = random() % 9; i > 0; --i) {
            list.push_back(special[random() % special.size()]);
        }
        TripletQELVector v(list);
        Statistics expected;
        for (int again = 0; again < 3; ++again) {
            expected.update(v);
            expectStatistics(v, expected);
            v.push_back(special[random() % special.size()]);
        }
    }
}

TEST(TripletStatistics, MagnitudesThatOverflowCount) {
    const TripletQELVector v(Triplets{{1e30f, 0, 0}});
    EXPECT_EQ(v.getMax(), kInf);
    EXPECT_EQ(v.getSum(), kInf);
    EXPECT_EQ(v.getNvalid(), 1);
}

TEST(TripletStatistics, OfALongArrayWithHugeMagnitudesFollowTheStatedLoop) {
    for (const float huge : {4e18f, 1.8e19f, 1e30f}) {
        Triplets list(1000, Triplet{1, 2, 3});
        list[700] = {0, huge, 0};
        const TripletQELVector v(list);
        Statistics expected;
        expected.update(v);
        expectStatistics(v, expected);
    }
}

TEST(TripletStatistics, OfAllUndefinedTripletsAreTheExtentsAlone) {
    const TripletQELVector v(Triplets{{kUndef, 1, -2}, {3, kUndef, 4}});
    EXPECT_EQ(v.getMin(), kUndef);
    EXPECT_EQ(v.getMax(), kUndef);
    EXPECT_EQ(v.getSum(), kUndef);
    EXPECT_EQ(v.getNvalid(), 0);
    EXPECT_EQ(v.getMinExtents(), Triplet(3, 1, -2));
    EXPECT_EQ(v.getMaxExtents(), Triplet(3, kUndef, 4));
}

// -- Expiry, seen in the count: each new computation adds to it ----

using Action = std::function<void(TripletQELVector&)>;

int countAfter(const Action& action) {
    TripletQELVector v(Triplets{{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(v.getNvalid(), 2);
    action(v);
    return v.getNvalid();
}

TEST(TripletStatistics, WhatExpiresThem) {
    const float flat[] = {1, 2, 3};
    Triplets plain = {{1, 1, 1}, {2, 2, 2}, {3, 3, 3}};
    EXPECT_EQ(countAfter([](TripletQELVector& v) { static_cast<void>(v[0]); }), 4);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.push_back({1, 1, 1}); }), 5);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.pop_back(); }), 3);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.resize(2); }), 4);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.clear(); }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.normalize(); }), 4);
    EXPECT_EQ(countAfter([&](TripletQELVector& v) { v.redefine(flat, 3); }), 3);
    EXPECT_EQ(countAfter([&](TripletQELVector& v) { v.redefine(plain); }), 5);
    EXPECT_EQ(countAfter([&](TripletQELVector& v) { v.swap(plain); }), 5);
    EXPECT_EQ(countAfter([](TripletQELVector& v) {
                  std::ostringstream os;
                  qel_test::standardOutputOf([&] { v.write(os, 0, 0); });
              }),
              4);
    EXPECT_EQ(
        countAfter([](TripletQELVector& v) { qel_test::standardOutputOf([&] { v.dbprint(); }); }),
        4);
    EXPECT_EQ(countAfter([](TripletQELVector& v) {
                  qel_test::standardOutputOf([&] { v.dbprint(5, 1); });
              }),
              4)
        << "also where the range is bad";
}

TEST(TripletStatistics, ExpireBeforeAChangeOfLengthThatFails) {
    EXPECT_EQ(countAfter([](TripletQELVector& v) {
                  EXPECT_THROW(v.resize(qel_test::kEndlessLength), std::length_error);
              }),
              4);
}

TEST(TripletStatistics, WhatLeavesThemInForce) {
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.reserve(100); }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.front().x = 9; }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.back().x = 9; }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.begin()->x = 9; }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) { v.toString(); }), 2);
    EXPECT_EQ(countAfter([](TripletQELVector& v) {
                  const TripletQELVector& c = v;
                  static_cast<void>(c[0]);
              }),
              2);
    const float flat[4] = {};
    for (const float* const list : {static_cast<const float*>(nullptr), flat}) {
        EXPECT_EQ(countAfter([&](TripletQELVector& v) {
                      EXPECT_THROW(v.redefine(list, 4), qel::data::invalid);
                  }),
                  2);
    }
    EXPECT_EQ(countAfter([](TripletQELVector& v) {
                  EXPECT_THROW(v.reserve(qel_test::kEndlessLength), std::length_error);
              }),
              2);
}

TEST(TripletStatistics, SwapOfTwoArraysExpiresBoth) {
    TripletQELVector a(Triplets{{1, 2, 3}});
    TripletQELVector b(Triplets{{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(a.getNvalid(), 1);
    EXPECT_EQ(b.getNvalid(), 2);
    a.swap(b);
    // Each adds the elements it got to the count it had.
    EXPECT_EQ(a.getNvalid(), 3);
    EXPECT_EQ(b.getNvalid(), 3);
}

TEST(TripletStatistics, CopiesTakeThemAlong) {
    TripletQELVector v(Triplets{{1, 2, 3}, {5e31f, -6, 7}});
    Statistics expected;
    expected.update(v);
    expectStatistics(v, expected);
    v.begin()->x = 100;
    TripletQELVector assigned;
    expectStatistics(TripletQELVector(v), expected); // in force: not computed again
    assigned = v;
    expectStatistics(assigned, expected);

    static_cast<void>(v[0]);
    expected.update(v);
    expectStatistics(TripletQELVector(v), expected); // expired: goes on from the copied values
    assigned = v;
    expectStatistics(assigned, expected);
}

} // namespace
