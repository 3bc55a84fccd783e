// Feet in lanes: the s of each probe's own projection, and where that is left to it.

#include "curve/ProjectionLanes.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "curve/NearestVertex.h"
#include "support/Bits.h"
#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::kProjectionChunk;
using qel::ParametricCurve;

struct Lanes {
    std::vector<double> s;
    std::vector<std::uint64_t> settled;
};

Lanes projectedInLanes(const ParametricCurve& curve, const Points& probes) {
    std::vector<std::size_t> nearest;
    for (const Point& probe : probes) {
        nearest.push_back(qel::nearestVertex(curve.getCurve(), probe));
    }
    Lanes lanes{std::vector<double>(probes.size()), std::vector<std::uint64_t>(probes.size(), 7)};
    projectInLanes(curve.getCurve(), curve.getSvalues(), probes.data(), nearest.data(),
                   probes.size(), lanes.s.data(), lanes.settled.data());
    return lanes;
}

// Checks what lanes have settled; returns how much that is.
std::size_t checkSettled(const ParametricCurve& curve, const Points& probes) {
    const Lanes lanes = projectedInLanes(curve, probes);
    std::size_t settled = 0;
    for (std::size_t i = 0; i < probes.size(); ++i) {
        double s = 0.0;
        curve.projectPoint(probes[i], s);
        EXPECT_LE(lanes.settled[i], 1u);
        if (lanes.settled[i] == 1) {
            ++settled;
            EXPECT_TRUE(sameBits(lanes.s[i], s)) << probes[i] << ": " << lanes.s[i] << ", " << s;
        }
    }
    return settled;
}

TEST(ProjectionLanes, SettleAllProbesBesideInnerVertices) {
    const ParametricCurve curve(helixPath(200, 1.0), ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        RandomCurves random(41);
        for (std::size_t count = 0; count <= kProjectionChunk; ++count) {
            Points probes;
            for (std::size_t i = 0; i < count; ++i) {
                probes.push_back(curve.getCurve()[random.count(2, 197)] + random.point(0.01));
            }
            EXPECT_EQ(checkSettled(curve, probes), count);
        }
    });
}

TEST(ProjectionLanes, LeaveTheEndsOfTheCurve) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        const Lanes lanes = projectedInLanes(curve, {{0.1, 1, 0}, {1.1, 1, 0}, {2.1, 1, 0}});
        EXPECT_EQ(lanes.settled, (std::vector<std::uint64_t>{0, 1, 0}));
        EXPECT_EQ(lanes.s[1], 0.55);
    });
}

// On a vertex and right above one, where the plain statement compares with spacings.
TEST(ProjectionLanes, LeaveProbesOnVertices) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        const Lanes lanes = projectedInLanes(curve, {{1, 0, 0}, {1, 1e-9, 0}, {1.1, 0.5, 0}});
        EXPECT_EQ(lanes.settled, (std::vector<std::uint64_t>{0, 0, 1}));
    });
}

TEST(ProjectionLanes, SettleNothingElseOnCurvesOfEveryKind) {
    onEveryVectorUnit([] {
        RandomCurves random(42);
        std::size_t settled = 0;
        for (const std::size_t n : std::vector<std::size_t>{3, 4, 20, 200}) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                const ParametricCurve curve(path.points, ParametricCurve::dim3D);
                for (int round = 0; round < 20; ++round) {
                    settled +=
                        checkSettled(curve, probesOf(curve.getCurve(), kProjectionChunk, random));
                }
            }
        }
        EXPECT_GT(settled, 10000u);
    });
}

// Edges and distances of every size beside each other, down to the spacings of each other.
TEST(ProjectionLanes, DoNotDecideWhatSpacingsDecide) {
    const auto step = [](RandomCurves& random) {
        return random.point(std::pow(10.0, random.uniform(-12.0, 0.0)));
    };
    onEveryVectorUnit([&] {
        RandomCurves random(43);
        std::size_t settled = 0;
        std::size_t left = 0;
        for (int round = 0; round < 2000; ++round) {
            Points path{random.point(1.0)};
            while (path.size() < 12) {
                path.push_back(path.back() + step(random));
            }
            const ParametricCurve curve(path, ParametricCurve::dim3D);
            Points probes;
            while (probes.size() < 20) {
                probes.push_back(path[random.count(1, 10)] + step(random));
            }
            const std::size_t count = checkSettled(curve, probes);
            settled += count;
            left += probes.size() - count;
        }
        EXPECT_GT(settled, 5000u);
        EXPECT_GT(left, 5000u);
    });
}

} // namespace
