#include "spatial/BoxTree.h"

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "support/Samples.h"

using qel::BoxTree;
using qel::PointBlock;
using qel_test::Samples;

namespace {

// Numbers its source, takes `step` numbers of it for each block or node, and checks that none was
// overwritten before and that every block holds what was written. True if the tree stayed where the
// source was.
bool buildFromSource(std::size_t blocks, std::size_t step, std::size_t nodesExpected,
                     std::size_t blocksExpected) {
    BoxTree tree;
    const std::size_t count = blocks * step;
    auto* const source =
        static_cast<std::uint32_t*>(tree.makeSourceRoom(count * sizeof(std::uint32_t)));
    std::iota(source, source + count, 0u);
    tree.reserve(nodesExpected, blocksExpected);
    tree.keepSourceFrom(source);
    std::vector<std::uint32_t> nodeLines, blockLines;
    for (std::size_t i = 0; i < blocks; ++i) {
        const std::size_t first = i * step;
        tree.keepSourceFrom(source + first);
        if (i % 10 == 0) {
            nodeLines.push_back(tree.addNode());
            tree.node(nodeLines.back()).child[0] = static_cast<std::uint32_t>(i);
        }
        blockLines.push_back(tree.addBlock());
        PointBlock& block = tree.block(blockLines.back());
        std::fill(block.index, block.index + qel::kLanes, static_cast<std::uint32_t>(i));
        for (std::size_t k = first; k < first + step; ++k) {
            EXPECT_EQ(source[k], k);
        }
    }
    const bool isInPlace = tree.isInPlaceOfSource();
    tree.dropSource();
    for (std::size_t i = 0; i < blocks; ++i) {
        EXPECT_EQ(tree.block(blockLines[i]).index[0], i);
        EXPECT_EQ(tree.block(blockLines[i]).index[qel::kLanes - 1], i);
    }
    for (std::size_t i = 0; i < nodeLines.size(); ++i) {
        EXPECT_EQ(tree.node(nodeLines[i]).child[0], 10 * i);
    }
    return isInPlace;
}

} // namespace

TEST(BoxTree, TakesThePlaceOfItsSource) {
    EXPECT_TRUE(buildFromSource(100, 60, 20, 100));
}

TEST(BoxTree, MovesWhereTheSourceIsTooSmall) {
    EXPECT_FALSE(buildFromSource(100, 5, 20, 100));
}

TEST(BoxTree, MovesWhereItCatchesUpWithItsSource) {
    EXPECT_FALSE(buildFromSource(100, 60, 2, 10));
    EXPECT_FALSE(buildFromSource(100, 20, 10, 60));
}

TEST(BoxTree, KeepsWhatItHoldsAndWhatItReads) {
    Samples<float> samples(431);
    int inPlace = 0;
    for (int n = 0; n < 400; ++n) {
        const auto blocks = static_cast<std::size_t>(samples.integer(1, 80));
        const auto step = static_cast<std::size_t>(samples.integer(5, 200));
        const auto expected = static_cast<std::size_t>(samples.integer(1, 120));
        inPlace += buildFromSource(blocks, step, expected / 10 + 1, expected) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << "tree " << n;
    }
    EXPECT_GT(inPlace, 50);
    EXPECT_LT(inPlace, 350);
}
