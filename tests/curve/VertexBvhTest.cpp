// The hierarchy over vertices, in both orders: the index that the reference finds, ties included.

#include "curve/VertexBvh.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"
#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::VertexBvh;

void checkProbes(const Points& path, const Points& probes, RandomCurves& random) {
    for (const auto order : {VertexBvh::Order::alongCurve, VertexBvh::Order::inSpace}) {
        const VertexBvh bvh(path.data(), path.size(), order);
        VertexBvh::Search search;
        for (const Point& probe : probes) {
            const std::size_t expected = referenceNearestVertex(path, probe);
            ASSERT_EQ(bvh.nearestVertex(probe, search), expected) << probe;
            VertexBvh::Search elsewhere;
            elsewhere.leaf = random.count(0, path.size() - 1) / VertexBvh::kLeaf;
            ASSERT_EQ(bvh.nearestVertex(probe, elsewhere), expected) << probe;
        }
    }
}

TEST(VertexBvh, FindsTheNearestVertexFromAnyLeafMatchesReferenceBitForBit) {
    std::vector<std::size_t> sizes;
    for (std::size_t n = 16; n <= 70; n += 3) {
        sizes.push_back(n);
    }
    // A node of eight leaves, of sixty-four, of 512, and one vertex less or more.
    for (const std::size_t n :
         std::vector<std::size_t>{127, 128, 129, 1023, 1024, 1025, 8191, 8192, 8193}) {
        sizes.push_back(n);
    }
    onEveryVectorUnit([&] {
        RandomCurves random(35);
        for (const std::size_t n : sizes) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkProbes(path.points, probesOf(path.points, 12, random), random);
            }
        }
    });
}

TEST(VertexBvh, FindsTheNearestVertexOfEveryShapeMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        RandomCurves random(40);
        for (const CurveShape& shape : curveShapes()) {
            for (const std::size_t n : std::vector<std::size_t>{16, 300, 5000}) {
                SCOPED_TRACE(std::string(shape.name) + ", " + std::to_string(n) + " points");
                const Points points = shape.make(n);
                checkProbes(points, probesOf(shape, points, 30), random);
            }
        }
    });
}

// Vertex 0 infinitely far away, then whole leaves without a number: nothing is at their distance.
TEST(VertexBvh, PassesOverLeavesOfNaN) {
    onEveryVectorUnit([] {
        RandomCurves random(41);
        for (const double far : {kInfinity, 1e200}) {
            Points points(200, Point(kNaN, kNaN, kNaN));
            points[0] = Point(far, 0.0, 0.0);
            checkProbes(points, {{0, 0, 0}, {1, 2, 3}, {kNaN, 0, 0}, {kInfinity, 0, 0}}, random);
            points[150] = Point(1.0, 2.0, 3.0);
            checkProbes(points, {{0, 0, 0}, {1, 2, 3}, {-far, 0, 0}}, random);
        }
    });
}

// All vertices at distances that round to a few values: the boxes' own rounding must not tell
// them apart.
TEST(VertexBvh, TiesByRoundingGoToTheLowestIndex) {
    onEveryVectorUnit([] {
        RandomCurves random(36);
        Points circle;
        for (std::size_t i = 0; i < 3000; ++i) {
            const double angle = 0.1 * static_cast<double>(i);
            circle.emplace_back(std::cos(angle), std::sin(angle), 0.0);
        }
        Points probes{{0.0, 0.0, 0.0}, {0.0, 0.0, 7.0}, {1e-17, 0.0, 0.0}};
        for (int i = 0; i < 50; ++i) {
            probes.push_back(random.point(1e-16));
            probes.push_back(random.point(1e17)); // every vertex rounds to the same difference
        }
        checkProbes(circle, probes, random);
    });
}

// Grid coordinates far from the origin, where differences lose bits.
TEST(VertexBvh, TiesOnADistantGridGoToTheLowestIndex) {
    onEveryVectorUnit([] {
        RandomCurves random(37);
        for (const double origin : {0.0, 1e8, 1e15, -4.5e15}) {
            Points grid;
            Points probes;
            for (std::size_t i = 0; i < 2000; ++i) {
                grid.push_back(random.gridPoint() + Point(origin, origin, origin));
            }
            for (int i = 0; i < 60; ++i) {
                probes.push_back(random.gridPoint() * 0.7 + Point(origin, origin, origin));
            }
            checkProbes(grid, probes, random);
        }
    });
}

} // namespace
