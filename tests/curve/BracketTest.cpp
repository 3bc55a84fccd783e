// The indices around an s: what the standard's two binary searches find.

#include "curve/Bracket.h"

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "support/Curves.h"

namespace {

using namespace qel_test;

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
