// The two sharpest corners between two indices.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/NumericalUtils.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using Corner = std::pair<double, std::size_t>;

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

struct Found {
    Corner a{-1.0, 99};
    Corner b{-1.0, 99};
};

Found cornersOf(const Points& points, std::size_t first, std::size_t second) {
    Found found;
    ParametricCurve(points, ParametricCurve::dim3D)
        .findTwoPointsWithMinAngle(first, second, found.a, found.b);
    return found;
}

const Points kStairs{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {3, 1, 0}};

TEST(Corners, AreTheTwoSharpestTheLaterOneFirst) {
    const Found found = cornersOf(kStairs, 0, 4);
    EXPECT_EQ(found.a, Corner(std::acos(0.0), 3));
    EXPECT_EQ(found.b, Corner(std::acos(0.0), 2));
}

TEST(Corners, TakeTheIndicesInEitherOrder) {
    const Found found = cornersOf(kStairs, 3, 1);
    EXPECT_EQ(found.a, Corner(std::acos(0.0), 3));
    EXPECT_EQ(found.b, Corner(std::acos(0.0), 2));
}

TEST(Corners, AngleIsPiOnAStraightRunAndNothingAtAHairpin) {
    const Found found = cornersOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1.5, 0, 0}}, 1, 2);
    EXPECT_EQ(found.a, Corner(0.0, 2));
    EXPECT_EQ(found.b, Corner(std::acos(-1.0), 1));
    EXPECT_DOUBLE_EQ(found.b.first, kPi);
}

TEST(Corners, OfEqualAnglesTheLowerIndicesAreTaken) {
    const Found found =
        cornersOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {3, 2, 0}}, 0, 5);
    EXPECT_EQ(found.b.second, 1U);
    EXPECT_EQ(found.a.second, 2U);
}

// Point 2 coincides with point 1, whose forward direction is then that to point 3; and point 2,
// which would see the same corner, is not measured.
TEST(Corners, PointCrowdingACornerIsNotMeasured) {
    const Found found = cornersOf({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 2, 0}}, 1, 2);
    EXPECT_EQ(found.b, Corner(std::acos(0.0), 1));
    EXPECT_EQ(found.a, Corner(kTwoPi, 2));
}

TEST(Corners, ReachFourNeighboursAndNoFarther) {
    // Points 1 to 5 coincide: from point 1, the fourth neighbour is still the same place.
    const Points points{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0},
                        {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 1, 0}};
    Found found = cornersOf(points, 1, 5);
    EXPECT_EQ(found.b, Corner(kTwoPi, 1));
    EXPECT_EQ(found.a, Corner(kTwoPi, 2));
    // Point 6 sees the first of five coinciding points behind it only as a place beside it.
    found = cornersOf(points, 5, 6);
    EXPECT_EQ(found.b, Corner(kTwoPi, 5)) << "no place within four steps back";
    EXPECT_EQ(found.a, Corner(std::acos(0.0), 6));
}

TEST(Corners, OfOneCoincidentBunchAreNone) {
    const Found found = cornersOf(Points(6, Point(1, 2, 3)), 0, 5);
    EXPECT_EQ(found.b, Corner(kTwoPi, 1));
    EXPECT_EQ(found.a, Corner(kTwoPi, 2));
}

TEST(Corners, IndicesAreCheckedInOrder) {
    const auto refused = [](const std::string& message) {
        return throwsInternal("ParametricCurve", "findTwoPointsWithMinAngle", message);
    };
    EXPECT_THAT([] { cornersOf(kStairs, 5, 7); }, refused("First index out of bounds =5"));
    EXPECT_THAT([] { cornersOf(kStairs, 7, 7); }, refused("First index out of bounds =7"));
    EXPECT_THAT([] { cornersOf(kStairs, 0, 5); }, refused("Requested index out of bounds =5"));
    EXPECT_THAT([] { cornersOf(kStairs, 3, SIZE_MAX); },
                refused("Requested index out of bounds =18446744073709551615"));
    EXPECT_THAT([] { cornersOf(kStairs, 3, 3); },
                refused("First and second index must be different."));
}

TEST(Corners, RefusesFewerThanTwoCandidates) {
    const ParametricCurve curve(kStairs, ParametricCurve::dim3D);
    Corner a(7.0, 7);
    Corner b(8.0, 8);
    const auto refused = [](const std::string& ids) {
        return throwsInternal("ParametricCurve", "findTwoPointsWithMinAngle",
                              "Less than two inner points between indices. " + ids);
    };
    EXPECT_THAT([&] { curve.findTwoPointsWithMinAngle(0, 1, a, b); },
                refused("First id=0, Second id=1"));
    EXPECT_THAT([&] { curve.findTwoPointsWithMinAngle(4, 3, a, b); },
                refused("First id=4, Second id=3"));
    EXPECT_EQ(a, Corner(7.0, 7));
    EXPECT_EQ(b, Corner(8.0, 8));
    EXPECT_THAT(
        [] {
            cornersOf({{0, 0, 0}, {1, 0, 0}}, 0, 1);
        },
        refused("First id=0, Second id=1"));
    EXPECT_THAT(
        [] {
            cornersOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, 2, 0);
        },
        refused("First id=2, Second id=0"));
}

// -- Against the reference ----

bool isFar(const Point& v) {
    const double length = referenceLength(v);
    return length > 100.0 * qel::NumericalUtils::spacing(length);
}

Found referenceCorners(const Points& p, std::size_t first, std::size_t second) {
    const std::size_t lo = std::min(first, second);
    const std::size_t hi = std::max(first, second);
    std::vector<bool> mask(p.size(), true);
    std::vector<Corner> results;
    for (std::size_t k = std::max<std::size_t>(lo, 1); k <= std::min(hi, p.size() - 2); ++k) {
        Corner corner(kTwoPi, k);
        if (mask[k]) {
            Point backward;
            Point forward;
            bool hasBackward = false;
            bool hasForward = false;
            for (std::size_t d = 1; d <= 4 && d <= k && !hasBackward; ++d) {
                backward = p[k - d] - p[k];
                hasBackward = isFar(backward);
            }
            for (std::size_t e = 1; e <= 4 && k + e < p.size() && !hasForward; ++e) {
                forward = p[k + e] - p[k];
                hasForward = isFar(forward);
                mask[k + e] = mask[k + e] && hasForward;
            }
            if (hasBackward && hasForward) {
                double c = referenceDot(forward, backward) /
                           (referenceLength(forward) * referenceLength(backward));
                c = c > 1.0 ? 1.0 : c;
                c = c < -1.0 ? -1.0 : c;
                corner.first = std::acos(c);
            }
        }
        results.push_back(corner);
    }
    // By insertion, NaN last.
    std::vector<Corner> sorted;
    for (const Corner& corner : results) {
        auto place = sorted.end();
        while (place != sorted.begin() &&
               (std::prev(place)->first > corner.first ||
                (std::isnan(std::prev(place)->first) && !std::isnan(corner.first)))) {
            --place;
        }
        sorted.insert(place, corner);
    }
    const bool isInOrder = sorted[0].second > sorted[1].second;
    return isInOrder ? Found{sorted[0], sorted[1]} : Found{sorted[1], sorted[0]};
}

TEST(Corners, MatchReferenceBitForBit) {
    RandomCurves random(41);
    int compared = 0;
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(round);
        Points points = random.points(12);
        if (random.chance(0.3)) { // points a few spacings beside their neighbours
            for (std::size_t i = 1; i < points.size(); ++i) {
                if (random.chance(0.4)) {
                    points[i] = points[i - 1];
                    points[i].x = std::nextafter(points[i].x, 1e300);
                }
            }
        }
        const std::size_t first = random.count(0, points.size() - 1);
        const std::size_t second = random.count(0, points.size() - 1);
        const std::size_t start = std::max<std::size_t>(std::min(first, second), 1);
        const std::size_t end = std::min(std::max(first, second), points.size() - 2);
        if (first == second || end < start + 1) {
            continue;
        }
        ++compared;
        const Found actual = cornersOf(points, first, second);
        const Found expected = referenceCorners(points, first, second);
        ASSERT_TRUE(sameBits(actual.a.first, expected.a.first));
        ASSERT_TRUE(sameBits(actual.b.first, expected.b.first));
        ASSERT_EQ(actual.a.second, expected.a.second);
        ASSERT_EQ(actual.b.second, expected.b.second);
    }
    EXPECT_GT(compared, 5000);
}

} // namespace
