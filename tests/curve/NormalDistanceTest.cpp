// How far the vertices between two others lie from the chord between those.

#include <qel/ParametricCurve.h>

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/NumericalUtils.h>

#include "ReferenceCurve.h"
#include "curve/NormalDistance.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using qel::NumericalUtils;

struct Deviation {
    double distance;
    int index;
    bool done;
};

bool operator==(const Deviation& a, const Deviation& b) {
    return sameBits(a.distance, b.distance) && a.index == b.index && a.done == b.done;
}

std::ostream& operator<<(std::ostream& os, const Deviation& d) {
    return os << "{" << d.distance << ", " << d.index << ", " << d.done << "}";
}

Deviation normalDeviation(const ParametricCurve& curve, int i, int j) {
    Deviation d{-1.0, -1, false};
    curve.calculateNormalDistanceFromTwoPoints(i, j, d.distance, d.index, d.done);
    return d;
}

Deviation midpointDeviation(const ParametricCurve& curve, int i, int j) {
    ParametricCurve::tEdge edge;
    edge.first = i;
    edge.second = j;
    qel::measureChordOfNoLength(curve, edge);
    return {edge.distance, edge.farthest, edge.skip};
}

ParametricCurve curveThrough(const Points& points) {
    return {points, ParametricCurve::dim3D};
}

// -- Normal distance ----

TEST(NormalDistance, IsTheLargestDistanceFromTheChord) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1, 1, 0}, {4, -3, 0}, {8, 0, 0}});
    EXPECT_EQ(normalDeviation(curve, 0, 3), (Deviation{3.0, 2, false}));
    EXPECT_EQ(normalDeviation(curve, 0, 2).index, 1);
}

TEST(NormalDistance, BetweenNeighboursIsNothing) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1, 1, 0}, {2, -3, 0}});
    EXPECT_EQ(normalDeviation(curve, 1, 2), (Deviation{0.0, 1, true}));
    EXPECT_EQ(normalDeviation(curve, 1, 1), (Deviation{0.0, 1, true}));
}

TEST(NormalDistance, OfEqualDistancesTheFirstVertexWins) {
    const ParametricCurve curve =
        curveThrough({{0, 0, 0}, {4, 3, 0}, {4, -3, 0}, {4, 0, 3}, {8, 0, 0}});
    EXPECT_EQ(normalDeviation(curve, 0, 4), (Deviation{3.0, 1, false}));
}

TEST(NormalDistance, WithinTheToleranceCountsAsDone) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    EXPECT_EQ(normalDeviation(curve, 0, 3), (Deviation{0.0, 0, true}));
}

// Beside the start of the chord, where the distance loses no digits: 1000 spacings are none yet.
TEST(NormalDistance, CountsBeyondOneThousandSpacings) {
    const auto deviationAt = [](double y, bool single) {
        const Points points = {{0, 0, 0}, {0, y, 0}, {4, 0, 0}};
        return normalDeviation(single ? ParametricCurve(narrowed(points), ParametricCurve::dim3D)
                                      : curveThrough(points),
                               0, 2);
    };
    const double tolerance = 1000 * 0x1p-52;
    const double beyond = std::nextafter(tolerance, 1.0);
    EXPECT_EQ(deviationAt(tolerance, false), (Deviation{0.0, 0, true}));
    EXPECT_EQ(deviationAt(beyond, false), (Deviation{beyond, 1, false}));
    const float single = 1000 * 0x1p-23f;
    const float beyondSingle = std::nextafter(single, 1.0f);
    EXPECT_EQ(deviationAt(single, true), (Deviation{0.0, 0, true}));
    EXPECT_EQ(deviationAt(beyondSingle, true), (Deviation{beyondSingle, 1, false}));
}

// 1e-5 lies between the double and the float tolerance of a chord of length 4.
TEST(NormalDistance, TheToleranceFollowsThePrecisionOfThePoints) {
    const Points points = {{0, 0, 0}, {2, 9.5367431640625e-06, 0}, {4, 0, 0}};
    EXPECT_EQ(normalDeviation(curveThrough(points), 0, 2).index, 1);
    const ParametricCurve fromFloats(narrowed(points), ParametricCurve::dim3D);
    EXPECT_EQ(normalDeviation(fromFloats, 0, 2), (Deviation{0.0, 0, true}));
}

TEST(NormalDistance, OnAChordOfNoLengthItIsMeasuredFromItsMiddle) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {3, 4, 0}, {0, 0, 0}});
    EXPECT_EQ(normalDeviation(curve, 0, 2), (Deviation{5.0, 1, false}));
    EXPECT_EQ(midpointDeviation(curve, 0, 2), (Deviation{5.0, 1, false}));
}

TEST(NormalDistance, BackwardsFindsNothing) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1, 1, 0}, {4, 0, 0}});
    EXPECT_EQ(normalDeviation(curve, 2, 0), (Deviation{0.0, 2, true}));
}

TEST(NormalDistance, AnIndexThatIsNotAPointsIsRefused) {
    const ParametricCurve curve = curveThrough({{0, 0, 0}, {1, 1, 0}, {4, 0, 0}});
    const auto refused = [](int index) {
        return throwsInternal("ParametricCurve", "calculateNormalDistanceFromTwoPoints",
                              "Requested index out of bounds =" + std::to_string(index));
    };
    EXPECT_THAT([&] { normalDeviation(curve, -1, 2); }, refused(-1));
    EXPECT_THAT([&] { normalDeviation(curve, 0, 3); }, refused(3));
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int greatest = std::numeric_limits<int>::max();
    EXPECT_THAT([&] { normalDeviation(curve, least, greatest); }, refused(least));
}

// -- Distance from the midpoint ----

TEST(NormalDistance, FromTheMidpointTakesTheVertexMiddlemostInS) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 5, 0}, {2, 3, 0}, {3, 7, 0}, {4, 0, 0}},
                                {0.0, 0.1, 0.45, 0.8, 1.0}, ParametricCurve::dim3D);
    EXPECT_EQ(midpointDeviation(curve, 0, 4), (Deviation{3.0, 2, false}));
}

TEST(NormalDistance, FromTheMidpointTakesAVertexInBetween) {
    const Points points = {{0, 0, 0}, {1, 5, 0}, {4, 0, 0}, {9, 9, 9}};
    // Nearest in s to the middle is an end of the chord itself.
    const ParametricCurve early(points, {0.0, 0.0, 1.0, 1.0}, ParametricCurve::dim3D);
    EXPECT_EQ(midpointDeviation(early, 0, 2).index, 1);
    const ParametricCurve late(points, {0.0, 0.9, 0.9, 1.0}, ParametricCurve::dim3D);
    EXPECT_EQ(midpointDeviation(late, 0, 2).index, 1);
}

TEST(NormalDistance, FromTheMidpointNeedsARangeOfS) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 5, 0}, {4, 0, 0}}, {0.5, 0.5, 0.5},
                                ParametricCurve::dim3D);
    EXPECT_EQ(midpointDeviation(curve, 0, 2), (Deviation{0.0, 0, true}));
    EXPECT_EQ(midpointDeviation(curve, 0, 1), (Deviation{0.0, 0, true}));
    EXPECT_EQ(midpointDeviation(curve, 1, 1), (Deviation{0.0, 1, true}));
}

// -- Against the reference ----

Deviation referenceMidpointDeviation(const ParametricCurve& curve, int i, int j) {
    const std::vector<double>& s = curve.getSvalues();
    const auto at = [](int index) { return static_cast<std::size_t>(index); };
    if (j == i || j - i == 1 || !(s[at(i)] < s[at(j)])) {
        return {0.0, i, true};
    }
    int index = curve.getClosestToSvaluePoint((s[at(j)] + s[at(i)]) * 0.5);
    index = index == i ? i + 1 : index;
    index = index == j ? j - 1 : index;
    const Points& p = curve.getCurve();
    return {referenceLength(p[at(index)] - (p[at(i)] + p[at(j)]) * 0.5), index, false};
}

Deviation referenceNormalDeviation(const ParametricCurve& curve, int i, int j) {
    Deviation result{0.0, i, true};
    if (j == i || j - i == 1) {
        return result;
    }
    const Points& p = curve.getCurve();
    const Point e = p[static_cast<std::size_t>(i)] - p[static_cast<std::size_t>(j)];
    const double length = referenceLength(e);
    const double tolerance =
        curve.isCurveCreatedAsDouble()
            ? 1000.0 * NumericalUtils::spacing(length)
            : 1000.0 * static_cast<double>(NumericalUtils::spacing(static_cast<float>(length)));
    if (tolerance > length) {
        return referenceMidpointDeviation(curve, i, j);
    }
    for (int k = i + 1; k < j; ++k) {
        const Point w = p[static_cast<std::size_t>(k)] - p[static_cast<std::size_t>(i)];
        const double along = referenceDot(w, e) / length;
        const double h = std::sqrt(referenceLength(w) * referenceLength(w) - along * along);
        if (h > result.distance && h > tolerance) {
            result = {h, k, false};
        }
    }
    return result;
}

TEST(NormalDistance, RandomChordsFollowTheRulesBitForBit) {
    RandomCurves random(61);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = random.curve(40);
        const std::size_t n = curve.getSize();
        for (int chord = 0; chord < 8; ++chord) {
            const int i = static_cast<int>(random.index(n));
            const int j = static_cast<int>(random.index(n));
            ASSERT_EQ(normalDeviation(curve, i, j), referenceNormalDeviation(curve, i, j))
                << i << " " << j;
            ASSERT_EQ(midpointDeviation(curve, i, j), referenceMidpointDeviation(curve, i, j))
                << i << " " << j;
        }
    }
}

} // namespace
