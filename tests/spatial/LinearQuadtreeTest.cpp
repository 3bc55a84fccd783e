#include "spatial/LinearQuadtree.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/BuiltQuadtree.h"
#include "spatial/PointBvh.h"
#include "spatial/SampledCloud.h"
#include "support/Bits.h"
#include "support/VectorUnits.h"

using qel::BlockRun;
using qel::PlanePoint;
using qel_test::BuiltQuadtree;
using qel_test::sameBits;
using qel_test::SampledCloud;
using qel_test::Samples;

namespace {

void checkLeaves(const BuiltQuadtree& built) {
    const auto leaves = built.reference.filledLeaves();
    ASSERT_EQ(built.tree.maxDepthReached, built.reference.maxDepthReached());
    ASSERT_EQ(built.tree.leaves.size(), leaves.size());
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        const qel::QuadRectangle& r = built.tree.leaves[i].rectangle;
        ASSERT_TRUE(sameBits(r.xmin, leaves[i]->xmin) && sameBits(r.ymin, leaves[i]->ymin));
        ASSERT_TRUE(sameBits(r.xmax, leaves[i]->xmax) && sameBits(r.ymax, leaves[i]->ymax));
    }
}

// Blocks are small and in order, and tell the leaf of each of their points.
void checkBlocks(const BuiltQuadtree& built) {
    const auto leaves = built.reference.filledLeaves();
    std::size_t end = 0;
    std::uint64_t path = 0;
    for (const BlockRun& run : built.tree.blocks) {
        ASSERT_GE(run.begin, end);
        ASSERT_GE(run.path, path);
        ASSERT_GE(run.count, 1);
        ASSERT_LE(run.count, qel::kLanes);
        end = run.begin + run.count;
        path = run.path;
        for (unsigned i = 0; i < run.count; ++i) {
            const auto& members = leaves[BuiltQuadtree::leafOf(run, i)]->objects;
            const std::uint32_t index = built.points[run.begin + i].index;
            ASSERT_TRUE(std::any_of(members.begin(), members.end(),
                                    [=](const auto* member) { return member->index == index; }));
        }
    }
}

// Every finite point is in one block, or else one at its place that comes before it in the list.
void checkPlaces(const BuiltQuadtree& built, const std::vector<qel::TripletBase<float>>& cloud) {
    std::set<std::uint32_t> held;
    for (const BlockRun& run : built.tree.blocks) {
        for (std::uint32_t i = run.begin; i < run.begin + run.count; ++i) {
            const PlanePoint& p = built.points[i];
            ASSERT_TRUE(held.insert(p.index).second) << "twice: " << p.index;
            ASSERT_TRUE(sameBits(p.x, cloud[p.index].x) && sameBits(p.y, cloud[p.index].y));
        }
    }
    std::set<std::pair<float, float>> places;
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        const PlanePoint p = qel::planePoint(cloud[i], i);
        if (qel::isFinite(p) && places.emplace(p.x, p.y).second) {
            ASSERT_EQ(held.count(p.index), 1u) << "in none: " << i;
        }
    }
}

} // namespace

TEST(LinearQuadtree, LeavesMatchReferenceBitForBit) {
    Samples<float> samples(505);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        for (int n = 0; n < 80 && !HasFatalFailure(); ++n) {
            const SampledCloud cloud(kind, samples, samples.integer(1, n % 4 == 0 ? 3000 : 300));
            const int maxDepth = samples.integer(0, 30), capacity = samples.integer(0, 20);
            qel_test::onEveryVectorUnit(
                [&] { checkLeaves(BuiltQuadtree(cloud.points, maxDepth, capacity)); });
        }
    }
}

TEST(LinearQuadtree, BlocksHoldEveryPlaceOnce) {
    Samples<float> samples(506);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        for (int n = 0; n < 80 && !HasFatalFailure(); ++n) {
            const SampledCloud cloud(kind, samples, samples.integer(1, n % 4 == 0 ? 4000 : 200));
            const BuiltQuadtree built(cloud.points, samples.integer(0, 24), samples.integer(0, 30));
            checkBlocks(built);
            checkPlaces(built, cloud.points);
        }
    }
}

// Cuts at infinity never part the places; in the one leaf, they are parted by their box.
TEST(LinearQuadtree, BlocksHoldFarPlacesOfManyPointsOnce) {
    std::vector<qel::TripletBase<float>> cloud = {
        {std::numeric_limits<float>::infinity(), 0.0f, 0.0f}};
    for (int i = 0; i < 1000; ++i) {
        cloud.emplace_back(i % 2 == 0 ? 1.5e30f : 3e38f, i % 3 == 0 ? 2e30f : -3e38f, 0.0f);
    }
    const BuiltQuadtree built(cloud, 3, 10);
    checkBlocks(built);
    checkPlaces(built, cloud);
    EXPECT_LE(built.tree.blocks.size(), 5u);
}
