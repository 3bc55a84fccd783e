#include "spatial/EntryGrid.h"

#include <limits>

#include <gtest/gtest.h>

using qel::EntryGrid;
using qel::QuadNode;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

QuadNode unitSquare() {
    QuadNode root;
    root.rectangle = {0.0f, 0.0f, 1.0f, 1.0f};
    return root;
}

} // namespace

TEST(EntryGrid, QueriesEnterAtTheLowestNodeAroundThem) {
    const QuadNode root = unitSquare();
    EntryGrid grid(root, 1000, 10);
    const QuadNode right = root.half(true, true);
    const QuadNode upperRight = right.half(false, true);
    grid.add(0, root, 0, 0);
    grid.add(7, right, std::uint64_t{1} << 63, 1);
    grid.add(9, upperRight, std::uint64_t{3} << 62, 2);
    EXPECT_EQ(grid.find(0.2f, 0.9f).node, 0u);
    EXPECT_EQ(grid.find(0.9f, 0.2f).node, 7u);
    EXPECT_EQ(grid.find(0.9f, 0.9f).node, 9u);
    EXPECT_EQ(grid.find(50.0f, 50.0f).node, 9u);
    EXPECT_EQ(grid.find(-50.0f, -50.0f).node, 0u);
}

TEST(EntryGrid, RegionsHaveNoBorderBeyondTheRoot) {
    const QuadNode root = unitSquare();
    EntryGrid grid(root, 1000, 10);
    grid.add(0, root, 0, 0);
    grid.add(9, root.half(true, true).half(false, true), std::uint64_t{3} << 62, 2);
    const qel::QuadRectangle all = grid.find(0.0f, 0.0f).region;
    EXPECT_EQ(all.xmin, -kInfinity);
    EXPECT_EQ(all.ymax, kInfinity);
    const qel::QuadRectangle upperRight = grid.find(1.0f, 1.0f).region;
    EXPECT_EQ(upperRight.xmin, 0.5f);
    EXPECT_EQ(upperRight.ymin, 0.5f);
    EXPECT_EQ(upperRight.xmax, kInfinity);
    EXPECT_EQ(upperRight.ymax, kInfinity);
}

TEST(EntryGrid, NodesBelowTheCellsAreLeftOut) {
    const QuadNode root = unitSquare();
    EntryGrid grid(root, 30, 10); // two by two cells
    grid.add(0, root, 0, 0);
    grid.add(5, root.half(true, false).half(false, false).half(true, false), 0, 3);
    EXPECT_EQ(grid.find(0.1f, 0.1f).node, 0u);
}
