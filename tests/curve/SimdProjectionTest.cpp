// Projection in lanes: the s of each probe's own projection, and which probes are left unresolved.

#include "curve/SimdProjection.h"

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

struct Lanes {
    std::vector<double> s;
    std::vector<std::uint64_t> resolved;
};

Lanes projectedInLanes(const ParametricCurve& curve, const Points& probes) {
    std::vector<std::size_t> nearest;
    for (const Point& probe : probes) {
        nearest.push_back(qel::nearestVertex(curve.getCurve(), probe));
    }
    Lanes lanes{std::vector<double>(probes.size()), std::vector<std::uint64_t>(probes.size(), 7)};
    projectInLanes(curve.getCurve(), curve.getSvalues(), probes.data(), nearest.data(),
                   probes.size(), lanes.s.data(), lanes.resolved.data());
    return lanes;
}

// Checks what lanes have resolved; returns how much that is.
std::size_t checkResolved(const ParametricCurve& curve, const Points& probes) {
    const Lanes lanes = projectedInLanes(curve, probes);
    std::size_t resolved = 0;
    for (std::size_t i = 0; i < probes.size(); ++i) {
        double s = 0.0;
        curve.projectPoint(probes[i], s);
        EXPECT_LE(lanes.resolved[i], 1u);
        if (lanes.resolved[i] == 1) {
            ++resolved;
            EXPECT_TRUE(sameBits(lanes.s[i], s)) << probes[i] << ": " << lanes.s[i] << ", " << s;
        }
    }
    return resolved;
}

TEST(SimdProjection, ResolvesAllProbesBesideInnerVertices) {
    const ParametricCurve curve(helixPath(200, 1.0), ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        RandomCurves random(41);
        for (std::size_t count = 0; count <= kProjectionChunk; ++count) {
            Points probes;
            for (std::size_t i = 0; i < count; ++i) {
                probes.push_back(curve.getCurve()[random.count(2, 197)] + random.point(0.01));
            }
            EXPECT_EQ(checkResolved(curve, probes), count);
        }
    });
}

TEST(SimdProjection, LeavesTheEndsOfTheCurve) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        const Lanes lanes = projectedInLanes(curve, {{0.1, 1, 0}, {1.1, 1, 0}, {2.1, 1, 0}});
        EXPECT_EQ(lanes.resolved, (std::vector<std::uint64_t>{0, 1, 0}));
        EXPECT_EQ(lanes.s[1], 0.55);
    });
}

// On a vertex and right above one, where the reference compares with spacings.
TEST(SimdProjection, LeavesProbesOnVertices) {
    const ParametricCurve curve(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D);
    onEveryVectorUnit([&] {
        const Lanes lanes = projectedInLanes(curve, {{1, 0, 0}, {1, 1e-9, 0}, {1.1, 0.5, 0}});
        EXPECT_EQ(lanes.resolved, (std::vector<std::uint64_t>{0, 0, 1}));
    });
}

TEST(SimdProjection, ResolvesCurvesOfEveryKindMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        RandomCurves random(42);
        std::size_t resolved = 0;
        for (const std::size_t n : std::vector<std::size_t>{3, 4, 20, 200}) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                const ParametricCurve curve(path.points, ParametricCurve::dim3D);
                for (int round = 0; round < 20; ++round) {
                    resolved +=
                        checkResolved(curve, probesOf(curve.getCurve(), kProjectionChunk, random));
                }
            }
        }
        EXPECT_GT(resolved, 10000u);
    });
}

// Edges and distances of every size beside each other, down to the spacings of each other.
TEST(SimdProjection, DoesNotDecideWhatSpacingsDecide) {
    const auto step = [](RandomCurves& random) {
        return random.point(std::pow(10.0, random.uniform(-12.0, 0.0)));
    };
    onEveryVectorUnit([&] {
        RandomCurves random(43);
        std::size_t resolved = 0;
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
            const std::size_t count = checkResolved(curve, probes);
            resolved += count;
            left += probes.size() - count;
        }
        EXPECT_GT(resolved, 5000u);
        EXPECT_GT(left, 5000u);
    });
}

} // namespace
