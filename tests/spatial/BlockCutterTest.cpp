#include "spatial/BlockCutter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/BlockFill.h"
#include "spatial/KeyRuns.h"
#include "support/Bits.h"
#include "support/Samples.h"

using qel::BlockRun;
using qel::LeafOrder;
using qel::PlanePoint;
using qel_test::sameBits;
using qel_test::Samples;
using Point = qel::TripletBase<float>;

namespace {

constexpr float kMax = std::numeric_limits<float>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

enum CloudKind { plainCloud, thickCloud, repeatedCloud, hugeCloud, tinyCloud, kinds };

Point sampledPoint(Samples<float>& samples, CloudKind kind) {
    const auto power = [&] { return std::pow(0.5f, static_cast<float>(samples.integer(0, 148))); };
    switch (kind) {
    case thickCloud: // thickens towards a corner at every scale that there is
        return Point(power(), power(), 0.0f);
    case repeatedCloud:
        return Point(static_cast<float>(samples.integer(0, 2)), 1.0f, 0.0f);
    case hugeCloud:
        return Point(samples.plain() / 10.0f * kMax, samples.integer(0, 1) == 0 ? kMax : -kMax,
                     0.0f);
    case tinyCloud:
        return Point(static_cast<float>(samples.integer(0, 40)) * 1.4e-45f, -1.4e-45f, 0.0f);
    default:
        return Point(samples.plain(), samples.plain(), 0.0f);
    }
}

std::vector<Point> sampledCloud(Samples<float>& samples, CloudKind kind, int count) {
    std::vector<Point> points;
    for (int i = 0; i < count; ++i) {
        points.push_back(sampledPoint(samples, kind));
    }
    return points;
}

// The first points in the list at every place that is there.
std::set<std::uint32_t> firstOnes(const std::vector<Point>& points) {
    std::set<std::pair<float, float>> places;
    std::set<std::uint32_t> firsts;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (places.emplace(points[i].x, points[i].y).second) {
            firsts.insert(static_cast<std::uint32_t>(i));
        }
    }
    return firsts;
}

// Blocks are parts of one cell, or each all of a part that bits of the cells make.
void checkParts(const std::vector<BlockRun>& blocks, const std::vector<std::uint32_t>& cells) {
    std::uint32_t farthest = 0;
    bool wasInOneCell = true;
    for (const BlockRun& run : blocks) {
        const std::uint32_t first = cells[run.begin], last = cells[run.begin + run.count - 1];
        const bool isInOneCell = first == last;
        if (run.begin > 0 && !(isInOneCell && wasInOneCell && first == farthest)) {
            ASSERT_GT(first, farthest);
        }
        ASSERT_EQ(run.key >> qel::kBitsInCell, first);
        const int freeBits = qel::bitWidth(first ^ last);
        const std::uint32_t mask = (std::uint32_t{1} << freeBits) - 1;
        if (run.begin > 0 && !isInOneCell) {
            ASSERT_GT(first & ~mask, farthest);
        }
        farthest = last | mask;
        wasInOneCell = isInOneCell;
    }
}

// Blocks are small and in order, and hold every point but those behind another at its place.
void checkBlocks(const std::vector<Point>& points) {
    std::vector<std::uint32_t> memory(points.size() * qel::kSortingBytes / sizeof(std::uint32_t));
    LeafOrder order = qel::sortIntoLeaves(points, 10, 10, memory.data());
    const std::vector<std::uint32_t> cells(order.cells, order.cells + order.count);
    const std::vector<BlockRun> blocks = qel::cutIntoBlocks(order);
    checkParts(blocks, cells);
    std::set<std::uint32_t> held;
    std::uint64_t lastKey = 0;
    for (const BlockRun& run : blocks) {
        ASSERT_GE(run.count, 1u);
        ASSERT_LE(run.count, static_cast<std::uint32_t>(qel::kLanes));
        ASSERT_GE(run.key, lastKey);
        lastKey = run.key;
        for (std::uint32_t i = run.begin; i < run.begin + run.count; ++i) {
            const PlanePoint& p = order.points[i];
            ASSERT_TRUE(held.insert(p.index).second) << "held twice: " << p.index;
            ASSERT_EQ(p.x, points[p.index].x);
            ASSERT_EQ(p.y, points[p.index].y);
        }
    }
    for (const std::uint32_t first : firstOnes(points)) {
        ASSERT_EQ(held.count(first), 1u) << "not held: " << first;
    }
}

} // namespace

TEST(BlockCutter, BlocksHoldEveryPlaceOnce) {
    Samples<float> samples(506);
    for (int n = 0; n < 1000 && !HasFatalFailure(); ++n) {
        SCOPED_TRACE(n);
        checkBlocks(sampledCloud(samples, static_cast<CloudKind>(n % kinds),
                                 samples.integer(1, n % 7 == 0 ? 4000 : 200)));
    }
}

TEST(BlockFill, BlockHoldsThePointsAndTheirBox) {
    Samples<float> samples(507);
    for (int n = 0; n < 500; ++n) {
        const int count = 1 + n % qel::kLanes;
        PlanePoint points[qel::kLanes];
        qel::QuadRectangle box = {kInfinity, kInfinity, -kInfinity, -kInfinity};
        for (int i = 0; i < count; ++i) {
            // Numbers of all bits: some spell a NaN, which must not reach the box.
            points[i] = {samples.plain(), samples.plain(),
                         ~static_cast<std::uint32_t>(samples.integer(0, 1 << 23)),
                         static_cast<std::uint32_t>(samples.integer(0, 1 << 30))};
            extend(box, {points[i].x, points[i].y, points[i].x, points[i].y});
        }
        qel::PointBlock block;
        std::memset(&block, 0x5a, sizeof(block));
        for (const qel::QuadRectangle& filled :
             {qel::fillBlock(block, points, count),
              qel::boxOf(points, static_cast<std::size_t>(count))}) {
            ASSERT_TRUE(sameBits(filled.xmin, box.xmin) && sameBits(filled.ymin, box.ymin));
            ASSERT_TRUE(sameBits(filled.xmax, box.xmax) && sameBits(filled.ymax, box.ymax));
        }
        for (int i = 0; i < qel::kLanes; ++i) {
            ASSERT_TRUE(sameBits(block.x[i], i < count ? points[i].x : kInfinity));
            ASSERT_TRUE(sameBits(block.y[i], i < count ? points[i].y : kInfinity));
            ASSERT_EQ(block.index[i], points[std::min(i, count - 1)].index);
            ASSERT_EQ(block.leaf[i], points[std::min(i, count - 1)].group);
        }
    }
}
