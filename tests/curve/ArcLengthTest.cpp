// Arc length in lanes: the bits of the scalar loop, on every vector unit.

#include "curve/ArcLength.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Paths.h"
#include "support/Shapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

void checkPath(const Points& points) {
    Values s;
    Values expected;
    double length = -1.0;
    qel::calculateArcValue(points, s, length);
    EXPECT_TRUE(sameBits(length, referenceArcValues(points, expected))) << length;
    EXPECT_TRUE(sameBitsInAll(s, expected));

    for (double Point::*component : {&Point::x, &Point::y, &Point::z}) {
        Points along;
        for (const Point& p : points) {
            along.emplace_back(p.*component, 0.0, 0.0);
        }
        qel::calculateArcValue(points, component, s, length);
        EXPECT_TRUE(sameBits(length, referenceArcValues(along, expected))) << length;
        EXPECT_TRUE(sameBitsInAll(s, expected));
    }
}

// Around the block of 32 steps and the lanes of every unit, then far beyond them.
TEST(ArcLength, AnyNumberOfPointsMatchesReferenceBitForBit) {
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
TEST(ArcLength, AMarkedStepHasTheUndefinedLengthInEveryLane) {
    onEveryVectorUnit([] {
        for (std::size_t at = 1; at < 70; ++at) {
            Points points(70);
            points[at].getRef(static_cast<int>(at % 3)) = kMarker;
            checkPath(points);
            points.resize(at + 1); // without the step back
            Values s;
            double length = 0.0;
            qel::calculateArcValue(points, s, length);
            EXPECT_EQ(length, kUndefinedLength);
        }
    });
}

TEST(ArcLength, OnePointHasNoLength) {
    onEveryVectorUnit([] {
        Values s;
        double length = -1.0;
        qel::calculateArcValue({Point(1.0, 2.0, 3.0)}, s, length);
        EXPECT_EQ(length, 0.0);
        EXPECT_EQ(s, Values{1.0});
    });
}

TEST(ArcLength, NamedShapesMatchReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        SCOPED_TRACE(shape);
        const Points points = shape.make(1003);
        onEveryVectorUnit([&] { checkPath(points); });
    }
}

} // namespace
