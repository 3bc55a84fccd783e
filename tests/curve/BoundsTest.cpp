// The extremes of points: those of a loop from the first point to the last.

#include "curve/Bounds.h"

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Curves.h"
#include "support/Shapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

std::size_t referenceIndex(const Points& points, std::size_t side) {
    const auto component = [&](std::size_t i) {
        const Values values{points[i].x, points[i].y, points[i].z};
        return values[side % 3];
    };
    std::size_t index = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const bool isBeyond =
            side < 3 ? component(index) > component(i) : component(i) > component(index);
        index = isBeyond ? i : index;
    }
    return index;
}

void expectReferenceExtremes(const Points& points) {
    const auto bounds = qel::boundsOf(points);
    for (std::size_t side = 0; side < qel::kSides; ++side) {
        SCOPED_TRACE("side " + std::to_string(side));
        const std::size_t index = referenceIndex(points, side);
        EXPECT_EQ(qel::indexOfExtreme(points, static_cast<qel::Side>(side)), index);
        EXPECT_TRUE(sameBits(bounds[side], points[index].getRef(static_cast<int>(side % 3))));
    }
}

TEST(Bounds, RandomPointsMatchReferenceBitForBit) {
    RandomCurves make(61);
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        Points points = make.points(make.chance(0.1) ? 1000 : 40);
        for (std::size_t k = make.index(4); k > 0; --k) {
            points[make.index(points.size())].getRef(static_cast<int>(make.index(3))) =
                make.specialValue();
        }
        onEveryVectorUnit([&] { expectReferenceExtremes(points); });
    }
}

TEST(Bounds, NamedShapesMatchReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        SCOPED_TRACE(shape);
        for (const std::size_t n : {1u, 2u, 15u, 16u, 17u, 255u, 256u, 257u, 1001u}) {
            const Points points = shape.make(n);
            onEveryVectorUnit([&] { expectReferenceExtremes(points); });
        }
    }
}

// Zeros of both signs are equal: the first one stays, in whichever lane and block it is.
TEST(Bounds, OfZerosTheFirstOneStays) {
    for (const std::size_t n : {9u, 40u, 600u}) {
        for (std::size_t at = 0; at < n; ++at) {
            for (const double first : {0.0, -0.0}) {
                Points points(n, Point(-first, first, -first));
                std::fill(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(at),
                          Point(1.0, -1.0, -1.0));
                points[at] = Point(first, -first, first);
                onEveryVectorUnit([&] { expectReferenceExtremes(points); });
            }
        }
    }
}

TEST(Bounds, OfEqualPointsTheFirstOneIsFound) {
    Points points(700, Point(1, 2, 3));
    points[300] = points[301] = points[650] = Point(-1, 20, -30);
    points[301].z = 30;
    onEveryVectorUnit([&] { expectReferenceExtremes(points); });
}

TEST(Bounds, ANaNCountsOnlyAtTheFirstPoint) {
    for (const std::size_t n : {3u, 30u, 300u}) {
        Points points(n, Point(1, 2, 3));
        points[0] = Point(kNaN, kNaN, kNaN);
        onEveryVectorUnit([&] { expectReferenceExtremes(points); });
        points[0] = Point(1, 2, 3);
        points[1] = Point(kNaN, kNaN, kNaN);
        onEveryVectorUnit([&] { expectReferenceExtremes(points); });
    }
}

} // namespace
