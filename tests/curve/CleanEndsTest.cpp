// The trimming of a caller's points and s-values at both ends.

#include <cmath>

#include <qel/ParametricCurve.h>

#include "support/Bits.h"
#include "support/Curves.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;

Points along(std::size_t n) {
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        points.emplace_back(static_cast<double>(i), 0.5, -0.5);
    }
    return points;
}

auto refusesEnds(const char* message) {
    return throwsInternal("ParametricCurve", "getCurveCleanEnds", message);
}

TEST(CleanEnds, DropsRepeatsAtBothEnds) {
    Points points = along(6);
    Values s{0, 0, 0.2, 0.5, 1, 1};
    ParametricCurve().getCurveCleanEnds(points, s, 0.1, 0.9);
    const Points all = along(6);
    EXPECT_EQ(points, Points(all.begin() + 1, all.begin() + 5));
    EXPECT_EQ(s, Values({0, 0.2, 0.5, 1})); // outside the range already, and not narrowed
}

TEST(CleanEnds, OnlyWidens) {
    Points points = along(4);
    Values s{0.2, 0.3, 0.6, 0.8};
    ParametricCurve().getCurveCleanEnds(points, s, 0.1, 0.9);
    EXPECT_EQ(s, Values({0.1, 0.3, 0.6, 0.9}));
    EXPECT_EQ(points, along(4)); // the points do not move
}

// The walks pass over steps without a rise: a rise behind them is kept with all in between.
TEST(CleanEnds, DoesNotStopAtTheFirstStepWithoutARise) {
    Points points = along(8);
    Values s{0.3, 0.1, 0.3, 0.5, 0.5, 0.4, 0.6, 0.6};
    ParametricCurve().getCurveCleanEnds(points, s, 0.4, 0.6);
    EXPECT_EQ(s, Values({0.1, 0.3, 0.5, 0.5, 0.4, 0.6}));
    EXPECT_EQ(points.front(), along(8)[1]);
}

// Both forms refuse, and leave the caller's lists as they were.
template <typename Refusal>
void expectRefused(const Points& points, const Values& s, double from, double to,
                   const Refusal& refused) {
    Points wide = points;
    FloatPoints narrow = narrowed(points);
    Values svalues = s;
    EXPECT_THAT([&] { ParametricCurve().getCurveCleanEnds(wide, svalues, from, to); }, refused);
    EXPECT_THAT([&] { ParametricCurve().getCurveCleanEnds(narrow, svalues, from, to); }, refused);
    EXPECT_TRUE(sameBitsInAll(wide, points));
    EXPECT_TRUE(sameBitsInAll(narrow, narrowed(points)));
    EXPECT_TRUE(sameBitsInAll(svalues, s));
}

TEST(CleanEnds, RefusesInTheStatedOrder) {
    const auto refusesPoints = [](const char* message) {
        return throwsInternal("ParametricCurve", "Constructor", message);
    };
    const auto tooFew = refusesEnds("Cleaning ends in the curve resulted in less than two points.");
    expectRefused({}, {}, 1.0, 1.0, refusesPoints("Curve is empty"));
    expectRefused(along(1), {}, 1.0, 1.0, refusesPoints("Curve has only one point in it."));
    expectRefused(along(3), {0.0}, 0.5, 0.5,
                  refusesEnds("Start and end parametric value are identical."));
    expectRefused(along(3), {0.0}, 0.6, 0.5,
                  refusesEnds("Parametric start value greater than end value ."));
    expectRefused(along(3), {0.0}, 0.1, 0.5,
                  refusesEnds("Vectors of points and sValues must have the same size."));
    expectRefused(along(3), {0.5, 0.5, 0.5}, 0.1, 0.5, tooFew);
    expectRefused(along(3), {0.7, 0.5, 0.3}, 0.1, 0.5, tooFew);
}

// The reference implementation; an empty result where it is refused.
Values referenceCleanEnds(const Points& p, const Values& s, double from, double to, Points& kept) {
    const double middle = (from + to) * 0.5;
    std::size_t c = 0;
    for (std::size_t i = 1; i < s.size(); ++i) {
        if ((s[i] - middle) * (s[i] - middle) < (s[c] - middle) * (s[c] - middle)) {
            c = i;
        }
    }
    std::size_t lo = c;
    std::size_t hi = c;
    for (std::size_t j = c + 1; j < s.size(); ++j) {
        hi = s[j] > s[j - 1] ? j : hi;
    }
    for (int j = static_cast<int>(c) - 1; j >= 0; --j) {
        const auto i = static_cast<std::size_t>(j);
        lo = s[i + 1] > s[i] ? i : lo;
    }
    kept.clear();
    Values result;
    for (std::size_t i = lo; hi > lo && i <= hi; ++i) {
        kept.push_back(p[i]);
        result.push_back(s[i]);
    }
    if (!result.empty()) {
        result.front() = result.front() > from ? from : result.front();
        result.back() = to > result.back() ? to : result.back();
    }
    return result;
}

TEST(CleanEnds, MatchesReferenceBitForBit) {
    RandomCurves make(14);
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        Points points = make.points();
        Values s(points.size());
        for (double& value : s) { // any order: it is the caller's list
            value = 0.125 * std::floor(make.uniform(0.0, 9.0));
        }
        const double from = make.uniform(-0.2, 0.6);
        const double to = from + make.uniform(0.01, 0.6);
        Points kept;
        const Values expected = referenceCleanEnds(points, s, from, to, kept);
        FloatPoints narrow = narrowed(points);
        Values narrowS = s;
        if (expected.empty()) {
            expectRefused(
                points, s, from, to,
                refusesEnds("Cleaning ends in the curve resulted in less than two points."));
            continue;
        }
        ParametricCurve().getCurveCleanEnds(points, s, from, to);
        EXPECT_TRUE(sameBitsInAll(points, kept));
        EXPECT_TRUE(sameBitsInAll(s, expected));
        ParametricCurve().getCurveCleanEnds(narrow, narrowS, from, to);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(kept)));
        EXPECT_TRUE(sameBitsInAll(narrowS, expected));
    }
}

} // namespace
