// Vertices in lanes: the index that the plain search finds, ties included.

#include "curve/VertexLanes.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::VertexLanes;

void checkProbes(const Points& path, const Points& probes) {
    const VertexLanes lanes(path);
    for (const Point& probe : probes) {
        ASSERT_EQ(lanes.nearest(probe), referenceNearestVertex(path, probe)) << probe;
    }
}

TEST(VertexLanes, FindTheVertexOfThePlainSearch) {
    onEveryVectorUnit([] {
        RandomCurves random(38);
        for (std::size_t n = 1; n <= 130; ++n) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkProbes(path.points, probesOf(path.points, 12, random));
            }
        }
    });
}

TEST(VertexLanes, TiesOnAGridGoToTheLowestIndex) {
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

TEST(VertexLanes, NoDistanceBelowInfinityGivesTheFirstVertex) {
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
