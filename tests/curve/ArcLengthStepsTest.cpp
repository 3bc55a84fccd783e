// Arc length in lanes: the bits of the plain loop, on every vector unit.

#include "curve/ArcLengthSteps.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "PlainCurve.h"
#include "curve/ArcLength.h"
#include "support/Bits.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

void checkPath(const Points& points) {
    const Values distances = plainDistances(points);
    std::vector<double> actual(points.size(), -1.0);
    qel::cumulateSteps(points, actual.data());
    EXPECT_TRUE(sameBitsInAll(actual, distances));

    Values s;
    Values expected;
    double length = -1.0;
    qel::calculateArcValue(points, s, length);
    EXPECT_TRUE(sameBits(length, plainArcValues(points, expected))) << length;
    EXPECT_TRUE(sameBitsInAll(s, expected));
}

// Around the block of 32 steps and the lanes of every unit, then far beyond them.
TEST(ArcLengthSteps, AnyNumberOfPointsGivesTheBitsOfThePlainLoop) {
    onEveryVectorUnit([] {
        RandomCurves random(31);
        for (std::size_t n = 2; n <= 70; ++n) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkPath(path.points);
            }
        }
        for (const std::size_t n : std::vector<std::size_t>{1000, 4099}) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkPath(path.points);
            }
        }
    });
}

// The marker of a difference, not of a point: the marker minus 0 in one component, in every lane.
// The negative one overflows when squared instead.
TEST(ArcLengthSteps, AMarkedStepHasTheUndefinedLengthInEveryLane) {
    onEveryVectorUnit([] {
        for (std::size_t at = 1; at < 70; ++at) {
            Points points(70);
            points[at].getRef(static_cast<int>(at % 3)) = kMarker;
            checkPath(points);
            std::vector<double> distances(points.size());
            qel::cumulateSteps(points, distances.data());
            EXPECT_EQ(distances[at - 1], 0.0);
            EXPECT_EQ(distances[at], kUndefinedLength);
            if (at + 1 < points.size()) {
                EXPECT_TRUE(std::isinf(distances[at + 1]));
            }
        }
    });
}

TEST(ArcLengthSteps, OnePointHasNoSteps) {
    onEveryVectorUnit([] {
        double distance = -1.0;
        qel::cumulateSteps({Point(1.0, 2.0, 3.0)}, &distance);
        EXPECT_EQ(distance, 0.0);
    });
}

TEST(ArcLengthSteps, DividesEveryValue) {
    onEveryVectorUnit([] {
        RandomCurves random(32);
        for (std::size_t n = 0; n <= 70; ++n) {
            std::vector<double> values;
            std::vector<double> expected;
            for (std::size_t i = 0; i < n; ++i) {
                values.push_back(random.chance(0.1) ? random.specialValue()
                                                    : random.uniform(-5.0, 5.0));
                expected.push_back(values.back() / 3.7);
            }
            qel::divideAll(values.data(), n, 3.7);
            EXPECT_TRUE(sameBitsInAll(values, expected));
        }
    });
}

} // namespace
