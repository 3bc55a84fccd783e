// The search of NearestIndex, in clouds too large for the reference of QuadtreeBucket.

#include <algorithm>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/BuiltQuadtree.h"
#include "spatial/NearestIndex.h"
#include "support/Shapes.h"
#include "support/VectorUnits.h"

using qel::NearestIndex;
using qel_test::BuiltQuadtree;
using qel_test::CloudPoints;

namespace {

// Looks at every point: the least distance, then the least rank of a leaf, then the first in the
// list. Points behind another one at their place are in no block and never win.
std::uint32_t leastInOrder(const BuiltQuadtree& built, const NearestIndex& index, float x,
                           float y) {
    using Order = std::tuple<float, std::uint64_t, std::uint32_t>;
    Order least(std::numeric_limits<float>::max(), 0, 0);
    for (const qel::BlockRun& run : built.tree.blocks) {
        for (unsigned i = 0; i < run.count; ++i) {
            const qel::PlanePoint& p = built.points[run.begin + i];
            const float dx = x - p.x, dy = y - p.y;
            const float distance = dx * dx + dy * dy;
            if (distance <= std::get<0>(least)) { // false for a NaN
                const std::uint64_t rank = index.rankOfLeaf(BuiltQuadtree::leafOf(run, i), x, y);
                least = std::min(least, Order(distance, rank, p.index));
            }
        }
    }
    return std::get<2>(least);
}

void checkShape(const qel_test::CloudShape& shape, std::size_t count) {
    const CloudPoints points = shape.make(count);
    for (const int maxDepth : {4, 10, 24}) {
        const NearestIndex index(points, {maxDepth, 10});
        const BuiltQuadtree built(points, maxDepth, 10);
        for (const CloudPoints& queries : {qel_test::queriesAnywhere(shape, points, 6),
                                           qel_test::queriesNearPoints(shape, points, 6),
                                           qel_test::queriesFarOff(shape, points, 6)}) {
            for (const auto& q : queries) {
                const std::uint32_t expected = leastInOrder(built, index, q.x, q.y);
                qel_test::onEveryVectorUnit(
                    [&] { ASSERT_EQ(index.find(q.x, q.y).index, expected) << q; });
            }
        }
    }
}

} // namespace

TEST(NearestSearch, MatchesReferenceBitForBit) {
    for (const qel_test::CloudShape& shape : qel_test::cloudShapes()) {
        SCOPED_TRACE(shape);
        checkShape(shape, 500);
        checkShape(shape, 40000);
    }
}
