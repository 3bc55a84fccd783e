#include "spatial/LeafOrder.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "platform/VectorUnit.h"
#include "spatial/GridCells.h"
#include "spatial/NearestSearch.h"
#include "spatial/StatedSearch.h"
#include "support/Bits.h"
#include "support/Samples.h"
#include "support/VectorUnits.h"

using qel::GridCells;
using qel::LeafOrder;
using qel_test::sameBits;
using qel_test::Samples;
using qel_test::StatedSearch;
using Point = qel::TripletBase<float>;

namespace {

// The leaves and their points are those of the tree that grows by insertion.
void checkLeaves(const std::vector<Point>& points, int maxDepth, int capacity) {
    std::vector<std::uint32_t> memory(points.size() * qel::kSortingBytes / sizeof(std::uint32_t));
    const LeafOrder order =
        qel::sortIntoLeaves(points, maxDepth, static_cast<std::size_t>(capacity), memory.data());
    const StatedSearch stated(points, maxDepth, capacity);
    const auto leaves = stated.filledLeaves();
    ASSERT_EQ(order.leaves.size(), leaves.size());
    ASSERT_EQ(order.maxDepthReached, stated.maxDepthReached());
    std::vector<std::vector<std::uint32_t>> members(leaves.size());
    ASSERT_EQ(order.count, points.size());
    for (std::size_t i = 0; i < order.count; ++i) {
        members[order.points[i].group].push_back(order.points[i].index);
    }
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        ASSERT_TRUE(sameBits(order.leaves[i].rectangle.xmin, leaves[i]->xmin));
        ASSERT_TRUE(sameBits(order.leaves[i].rectangle.ymin, leaves[i]->ymin));
        ASSERT_TRUE(sameBits(order.leaves[i].rectangle.xmax, leaves[i]->xmax));
        ASSERT_TRUE(sameBits(order.leaves[i].rectangle.ymax, leaves[i]->ymax));
        std::sort(members[i].begin(), members[i].end());
        ASSERT_EQ(members[i].size(), leaves[i]->objects.size());
        for (std::size_t k = 0; k < members[i].size(); ++k) {
            ASSERT_EQ(members[i][k], leaves[i]->objects[k]->index);
        }
    }
}

} // namespace

TEST(LeafOrder, LeavesAreThoseThatInsertionGrows) {
    Samples<float> samples(501);
    for (int n = 0; n < 600 && !HasFatalFailure(); ++n) {
        SCOPED_TRACE(n);
        std::vector<Point> points(static_cast<std::size_t>(samples.integer(1, 3000)));
        const float squeeze = std::pow(0.1f, static_cast<float>(samples.integer(0, 12)));
        for (Point& p : points) {
            switch (n % 3) {
            case 0:
                p = Point(samples.plain(), squeeze * samples.plain() + 1.0f, 0.0f);
                break;
            case 1: // thickens towards y = 0
                p = Point(samples.plain(), std::pow(std::abs(samples.plain()) / 10.0f, 8.0f), 0.0f);
                break;
            default:
                p = Point(samples.any(), samples.any(), 0.0f);
            }
        }
        const int maxDepth = samples.integer(0, 30), capacity = samples.integer(1, 20);
        qel_test::onEveryVectorUnit([&] { checkLeaves(points, maxDepth, capacity); });
    }
}

TEST(GridCells, CellsAreThoseThatDescentReaches) {
    Samples<float> samples(502);
    for (int n = 0; n < 2000; ++n) {
        const float a = samples.any(), b = samples.any();
        const float low = a < b ? a : b, high = a < b ? b : a;
        const int levels = samples.integer(1, 12);
        const GridCells grid(low, high, levels);
        for (int i = 0; i < 50; ++i) {
            float x = i % 2 == 0
                          ? low + (high - low) * std::abs(samples.plain()) / 10.0f
                          : grid.edge(static_cast<std::uint32_t>(samples.integer(0, 1 << levels)));
            x = i % 3 == 0 ? std::nextafter(x, samples.plain()) : x;
            std::uint32_t first = 0;
            float cellLow = low, cellHigh = high;
            for (std::uint32_t half = grid.cellCount() / 2; half > 0; half /= 2) {
                const float sum = cellLow + cellHigh;
                const float cut = static_cast<float>(0.5 * static_cast<double>(sum));
                const bool isHigh = x >= cut;
                first += isHigh ? half : 0;
                (isHigh ? cellLow : cellHigh) = cut;
            }
            ASSERT_EQ(grid.cellOf(x), first) << low << " " << high << " " << x;
            ASSERT_TRUE(sameBits(grid.edge(first), cellLow));
            ASSERT_TRUE(sameBits(grid.edge(first + 1), cellHigh));
        }
    }
}

TEST(NearestSearch, AnswersAreTheSameOnEveryVectorUnit) {
    Samples<float> samples(503);
    std::vector<Point> points(5000);
    for (Point& p : points) {
        p = Point(static_cast<float>(samples.integer(0, 40)), samples.plain(), 0.0f);
    }
    const qel::NearestIndex index(points, 10, 10);
    for (int i = 0; i < 5000; ++i) {
        const float x = 4.0f * samples.plain(), y = samples.plain();
        qel::forceVectorUnit(qel::VectorUnit::portable);
        const std::size_t expected = index.find(x, y).index;
        for (const auto unit : {qel::VectorUnit::avx2, qel::VectorUnit::avx512}) {
            if (qel::hasVectorUnit(unit)) {
                qel::forceVectorUnit(unit);
                ASSERT_EQ(index.find(x, y).index, expected);
            }
        }
    }
    qel::restoreVectorUnit();
}
