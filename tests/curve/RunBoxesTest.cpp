// Boxes over runs of vertices: the index that the plain search finds, ties included.

#include "curve/RunBoxes.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::RunBoxes;

void checkProbes(const Points& path, const Points& probes, RandomCurves& random) {
    const RunBoxes boxes(path);
    std::size_t previous = 0;
    for (const Point& probe : probes) {
        const std::size_t expected = referenceNearestVertex(path, probe);
        ASSERT_EQ(boxes.nearestVertex(probe, previous), expected) << probe;
        ASSERT_EQ(boxes.nearestVertex(probe, random.count(0, path.size() - 1)), expected) << probe;
        previous = expected;
    }
}

TEST(RunBoxes, FindTheVertexOfThePlainSearchFromAnyGuess) {
    std::vector<std::size_t> sizes;
    for (std::size_t n = 16; n <= 70; ++n) {
        sizes.push_back(n);
    }
    // One box of eight runs, of sixty-four, of 512, and one vertex less or more.
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

// All vertices at distances that round to a few values: the boxes' own rounding must not tell
// them apart.
TEST(RunBoxes, TiesByRoundingGoToTheLowestIndex) {
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
TEST(RunBoxes, TiesOnADistantGridGoToTheLowestIndex) {
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
