// The nearest vertex in lanes: the index that the reference finds, on every vector unit.

#include "curve/NearestVertex.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

void checkProbes(const Points& path, const Points& probes) {
    std::vector<std::size_t> nearest(probes.size());
    qel::nearestVertices(path.data(), path.size(), probes.data(), probes.size(), nearest.data());
    for (std::size_t i = 0; i < probes.size(); ++i) {
        const std::size_t expected = referenceNearestVertex(path, probes[i]);
        ASSERT_EQ(qel::nearestVertex(path, probes[i]), expected) << probes[i];
        ASSERT_EQ(nearest[i], expected) << probes[i];
    }
}

// Around the lanes, around 128 and where the last lanes overlap those before.
TEST(NearestVertex, AnyNumberOfPointsMatchesReferenceBitForBit) {
    std::vector<std::size_t> sizes;
    for (std::size_t n = 1; n <= 70; ++n) {
        sizes.push_back(n);
    }
    for (const std::size_t n : std::vector<std::size_t>{127, 128, 135, 136, 137, 144, 255, 256, 263,
                                                        264, 265, 1000, 4099}) {
        sizes.push_back(n);
    }
    onEveryVectorUnit([&] {
        RandomCurves random(33);
        for (const std::size_t n : sizes) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkProbes(path.points, probesOf(path.points, 20, random));
            }
        }
    });
}

// One near vertex at every place: first and last of a block, of the lanes, of the overlap.
TEST(NearestVertex, FindsTheNearestAtEveryPlace) {
    onEveryVectorUnit([] {
        Points points(421, Point(5.0, 0.0, 0.0));
        for (std::size_t at = 0; at < points.size(); ++at) {
            points[at].x = 1.0;
            EXPECT_EQ(qel::nearestVertex(points, Point()), at);
            points[at].x = 5.0;
        }
    });
}

TEST(NearestVertex, TheFirstOfTiedVerticesWinsWhereverTheyLie) {
    onEveryVectorUnit([] {
        Points points(421, Point(5.0, 0.0, 0.0));
        for (std::size_t first = 0; first < points.size(); first += 13) {
            for (std::size_t second = first + 1; second < points.size(); second += 7) {
                points[first] = Point(0.0, 1.0, 0.0);
                points[second] = Point(1.0, 0.0, 0.0);
                EXPECT_EQ(qel::nearestVertex(points, Point()), first);
                points[first] = points[second] = Point(5.0, 0.0, 0.0);
            }
        }
    });
}

TEST(NearestVertex, ANaNDistanceIsTheNearestOnlyAtTheFirstVertex) {
    onEveryVectorUnit([] {
        Points points(421, Point(5.0, 0.0, 0.0));
        points[300].x = 1.0;
        for (std::size_t at = 1; at < points.size(); at += at == 299 ? 2 : 1) {
            points[at].y = kNaN;
            EXPECT_EQ(qel::nearestVertex(points, Point()), 300u);
        }
        points[0].y = kNaN;
        EXPECT_EQ(qel::nearestVertex(points, Point()), 0u);
        EXPECT_EQ(qel::nearestVertex(points, Point(kNaN, 0.0, 0.0)), 0u);
    });
}

// Wherever the points start in memory, as the blocks are laid on the lines of the cache.
TEST(NearestVertex, DoesNotDependOnWhereThePointsStand) {
    onEveryVectorUnit([] {
        RandomCurves random(34);
        for (std::size_t size = 136; size < 160; ++size) {
            std::vector<Points> keepers; // different sizes move the next ones about
            keepers.emplace_back(size % 9 + 1);
            keepers.push_back(probesOf(Points(1), size, random));
            checkProbes(keepers.back(), probesOf(keepers.back(), 20, random));
        }
    });
}

TEST(NearestVertex, TiesOnAGridGoToTheLowestIndex) {
    onEveryVectorUnit([] {
        RandomCurves random(39);
        for (const double origin : {0.0, 1e8, -4.5e15}) {
            Points grid;
            Points probes;
            for (std::size_t i = 0; i < 300; ++i) {
                grid.push_back(random.gridPoint() + Point(origin, origin, origin));
                probes.push_back(random.gridPoint() * 0.5 + Point(origin, origin, origin));
            }
            checkProbes(grid, probes);
        }
    });
}

TEST(NearestVertex, NoDistanceBelowInfinityGivesTheFirstVertex) {
    onEveryVectorUnit([] {
        for (const double far : {1e200, kInfinity, kNaN}) {
            const Points path(40, Point(far, 0.0, 0.0));
            checkProbes(path, {{0.0, 0.0, 0.0}, {-far, 0.0, 0.0}, {kNaN, 0.0, 0.0}});
        }
        Points path(40, Point(1.0, 2.0, 3.0));
        path[0] = {kNaN, 0.0, 0.0}; // nothing is less than its distance
        checkProbes(path, {{0.0, 0.0, 0.0}});
        path[0] = {kInfinity, 0.0, 0.0};
        path[33] = {1.0, 1.0, 1.0};
        checkProbes(path, {{0.0, 0.0, 0.0}});
    });
}

} // namespace
