#include "spatial/NearestIndex.h"

#include <vector>

#include <gtest/gtest.h>

#include "spatial/ReferenceSearch.h"
#include "spatial/SampledCloud.h"

using qel::NearestIndex;
using qel_test::ReferenceSearch;
using qel_test::SampledCloud;
using qel_test::Samples;

TEST(NearestIndex, LeavesRankFromTheQueryOutwards) {
    // Two leaves, left and right of x = 5.
    const std::vector<qel::TripletBase<float>> points = {{0, 0, 0}, {10, 0, 0}};
    const NearestIndex index(points, {1, 1});
    EXPECT_EQ(index.maxDepthReached(), 1);
    EXPECT_EQ(index.rankOfLeaf(0, 4.0f, 0.0f), 0u);
    EXPECT_GT(index.rankOfLeaf(1, 4.0f, 0.0f), 0u);
    EXPECT_EQ(index.rankOfLeaf(1, 5.0f, 0.0f), 0u);
    EXPECT_GT(index.rankOfLeaf(1, 3.0f, 0.0f), index.rankOfLeaf(1, 4.0f, 0.0f));
}

TEST(NearestIndex, NodesRankNoHigherThanTheirLeaves) {
    Samples<float> samples(509);
    for (int n = 0; n < 20000; ++n) {
        const NearestIndex index({{0, 0, 0}, {10, 10, 0}}, {10, 1});
        qel::QuadNode node;
        node.rectangle = {-1.0f, -1.0f, 11.0f, 11.0f};
        qel::QuadNode leaf = node;
        const int nodeDepth = samples.integer(0, 6), leafDepth = nodeDepth + samples.integer(0, 6);
        for (int depth = 0; depth < leafDepth; ++depth) {
            leaf = leaf.half(depth % 2 == 0, samples.integer(0, 1) != 0);
            node = depth < nodeDepth ? leaf : node;
        }
        const auto first = static_cast<std::uint32_t>(samples.integer(0, 100));
        const auto number = first + static_cast<std::uint32_t>(samples.integer(0, 100));
        const float x = 2.0f * samples.plain(), y = 2.0f * samples.plain();
        ASSERT_LE(index.leastRank(node, first, x, y), index.leastRank(leaf, number, x, y));
    }
}

TEST(NearestIndex, DepthReachedMatchesReferenceBitForBit) {
    Samples<float> samples(510);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        for (int n = 0; n < 40; ++n) {
            const SampledCloud cloud(kind, samples, samples.integer(1, 500));
            const int maxDepth = samples.integer(0, 40), capacity = samples.integer(1, 20);
            const NearestIndex index(cloud.points, {maxDepth, static_cast<std::size_t>(capacity)});
            const ReferenceSearch reference(cloud.points, maxDepth, capacity);
            ASSERT_EQ(index.maxDepthReached(), reference.maxDepthReached());
        }
    }
}
