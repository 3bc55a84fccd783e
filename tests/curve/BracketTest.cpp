// The binary search of the standard, and the indices around an s that two of them find.

#include "curve/Bracket.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Curves.h"

namespace {

using namespace qel_test;

// Finds what the standard's search finds, and looks at the same values on the way.
void checkAgainstStandard(const std::vector<double>& values, double limit) {
    std::vector<const double*> expectedPlaces, places;
    const auto expected = std::partition_point(values.begin(), values.end(), [&](const double& v) {
        expectedPlaces.push_back(&v);
        return v < limit;
    });
    const std::size_t found =
        qel::partitionPoint(values.data(), values.size(), [&](const double& v) {
            places.push_back(&v);
            return v < limit;
        });
    ASSERT_EQ(found, static_cast<std::size_t>(expected - values.begin()));
    ASSERT_EQ(places, expectedPlaces);
}

TEST(PartitionPoint, OfAnyCountIsThatOfTheStandard) {
    std::vector<double> values;
    for (int count = 0; count < 70; ++count) {
        for (int limit = -1; limit <= count; ++limit) {
            checkAgainstStandard(values, static_cast<double>(limit));
            ASSERT_FALSE(HasFatalFailure()) << limit << " among " << count;
        }
        values.push_back(static_cast<double>(count));
    }
}

TEST(PartitionPoint, GoesTheStandardsWayThroughValuesInNoOrder) {
    RandomCurves random(41);
    for (int round = 0; round < 2000; ++round) {
        std::vector<double> values = random.svalues(random.count(2, 200));
        const std::size_t at = random.count(0, values.size() - 1);
        if (round % 2 == 0) {
            values[at] = std::numeric_limits<double>::quiet_NaN();
        } else {
            std::reverse(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(at));
        }
        for (int k = 0; k < 20; ++k) {
            checkAgainstStandard(values, random.parameter(values));
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
    }
}

void checkBracket(const std::vector<double>& svalues, double s) {
    if (!(s > svalues.front()) || !(s < svalues.back())) {
        return; // not asked for
    }
    const auto hi = std::upper_bound(svalues.begin(), svalues.end(), s) - svalues.begin();
    auto lo = std::lower_bound(svalues.begin(), svalues.end(), s) - svalues.begin();
    if (lo == hi) {
        --lo;
    }
    const qel::Bracket bracket = qel::bracketOf(svalues, s);
    ASSERT_EQ(bracket.lo, static_cast<std::size_t>(lo)) << s;
    ASSERT_EQ(bracket.hi, static_cast<std::size_t>(hi)) << s;
    ASSERT_LT(bracket.lo, bracket.hi);
    ASSERT_LT(bracket.hi, svalues.size());
}

TEST(Bracket, OfAnSBetweenAtAndAmongRepeatedValues) {
    const std::vector<double> svalues{0.0, 0.0, 0.25, 0.5, 0.5, 0.5, 1.0};
    EXPECT_EQ(qel::bracketOf(svalues, 0.1).lo, 1u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.1).hi, 2u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.25).lo, 2u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.25).hi, 3u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.5).lo, 3u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.5).hi, 6u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.75).lo, 5u);
    EXPECT_EQ(qel::bracketOf(svalues, 0.75).hi, 6u);
}

TEST(Bracket, IsThatOfTheStandardSearches) {
    RandomCurves random(39);
    for (int round = 0; round < 4000; ++round) {
        std::vector<double> svalues = random.svalues(random.count(2, 70));
        if (round % 4 == 0) { // NaN stands in no order
            const std::size_t at = random.count(0, svalues.size() - 1);
            svalues[at] = std::numeric_limits<double>::quiet_NaN();
        }
        for (int k = 0; k < 20; ++k) {
            checkBracket(svalues, random.parameter(svalues));
        }
    }
}

} // namespace
