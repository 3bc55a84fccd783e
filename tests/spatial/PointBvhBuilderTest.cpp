#include "spatial/PointBvh.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/BuiltQuadtree.h"
#include "spatial/EntryGrid.h"
#include "spatial/SampledCloud.h"

using qel::BvhNode;
using qel::PlanePoint;
using qel::PointBlock;
using qel::QuadRectangle;
using qel_test::BuiltQuadtree;
using qel_test::SampledCloud;
using qel_test::Samples;

namespace {

bool contains(const QuadRectangle& box, const QuadRectangle& inner) {
    return box.xmin <= inner.xmin && box.ymin <= inner.ymin && inner.xmax <= box.xmax &&
           inner.ymax <= box.ymax;
}

// Walks the hierarchy over a cloud and checks what each node says of what is below it.
class Walk {
public:
    explicit Walk(const SampledCloud& cloud, int maxDepth, int capacity)
        : built_(cloud.points, maxDepth, capacity) {
        auto* const source = static_cast<PlanePoint*>(
            bvh_.storage().makeSource(built_.points.size() * sizeof(PlanePoint)));
        std::copy(built_.points.begin(), built_.points.end(), source);
        std::vector<qel::EntryGrid> grids;
        qel::buildPointBvh(source, built_.root, built_.tree, bvh_, grids);
        walk(0, 0);
        for (const qel::BlockRun& run : built_.tree.blocks) {
            for (std::uint32_t i = run.begin; i < run.begin + run.count; ++i) {
                EXPECT_EQ(met_.erase(built_.points[i].index), 1u);
            }
        }
        EXPECT_TRUE(met_.empty());
    }

private:
    struct Below {
        QuadRectangle box = qel::kEmptyRectangle;
        std::uint32_t firstIndex = std::numeric_limits<std::uint32_t>::max();
        std::uint32_t firstLeaf = std::numeric_limits<std::uint32_t>::max();
        std::vector<std::uint32_t> leaves;
    };

    Below walk(std::uint32_t place, int height) {
        EXPECT_LT(height, qel::PointBvh::kMaxHeight);
        const BvhNode& node = bvh_.node(place);
        Below all;
        for (int lane = 0; lane < qel::kLanes; ++lane) {
            const QuadRectangle box = {node.boxes.xmin[lane], node.boxes.ymin[lane],
                                       node.boxes.xmax[lane], node.boxes.ymax[lane]};
            if (node.child[lane] == 0) {
                EXPECT_GT(box.xmin, box.xmax);
                continue;
            }
            const Below below = (node.child[lane] & BvhNode::kBlock) != 0
                                    ? block(node, lane)
                                    : walk(node.child[lane], height + 1);
            EXPECT_TRUE(contains(box, below.box) || below.box.xmin > below.box.xmax);
            qel::extend(all.box, below.box);
            all.firstIndex = std::min(all.firstIndex, below.firstIndex);
            all.firstLeaf = std::min(all.firstLeaf, below.firstLeaf);
            all.leaves.insert(all.leaves.end(), below.leaves.begin(), below.leaves.end());
        }
        EXPECT_EQ(node.firstIndex, all.firstIndex);
        EXPECT_EQ(node.firstLeaf, all.firstLeaf);
        for (const std::uint32_t leaf : all.leaves) {
            EXPECT_TRUE(contains(node.quad.rectangle, built_.tree.leaves[leaf].rectangle) ||
                        !std::isfinite(built_.root.rectangle.xmax - built_.root.rectangle.xmin) ||
                        !std::isfinite(built_.root.rectangle.ymax - built_.root.rectangle.ymin));
        }
        return all;
    }

    Below block(const BvhNode& node, int lane) {
        const PointBlock& block = bvh_.block(node.child[lane] - BvhNode::kBlock);
        const qel::BlockRun& run = built_.tree.blocks[blocks_++];
        EXPECT_EQ(node.leaves.first[lane], run.firstLeaf);
        EXPECT_EQ(node.leaves.begins[lane], run.leafBegins);
        Below below;
        for (unsigned i = 0; i < qel::kLanes; ++i) {
            const unsigned point = std::min(i, run.count - 1u);
            const PlanePoint& p = built_.points[run.begin + point];
            const bool isPoint = i < run.count;
            EXPECT_EQ(block.index[i], p.index);
            EXPECT_EQ(block.x[i], isPoint && !std::isnan(p.x) ? p.x : qel::kEmptyRectangle.xmin);
            EXPECT_EQ(block.y[i], isPoint && !std::isnan(p.y) ? p.y : qel::kEmptyRectangle.ymin);
            if (isPoint) {
                met_.insert(p.index);
                below.firstIndex = std::min(below.firstIndex, p.index);
                below.leaves.push_back(BuiltQuadtree::leafOf(run, i));
                qel::extend(below.box, qel::boxOf(&p, 1));
            }
        }
        below.firstLeaf = run.firstLeaf;
        return below;
    }

    BuiltQuadtree built_;
    qel::PointBvh bvh_;
    std::size_t blocks_ = 0;
    std::set<std::uint32_t> met_;
};

} // namespace

TEST(PointBvhBuilder, NodesTellWhatIsBelowThem) {
    Samples<float> samples(508);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        for (int n = 0; n < 60 && !HasFailure(); ++n) {
            const SampledCloud cloud(kind, samples, samples.integer(1, n % 4 == 0 ? 6000 : 400));
            Walk(cloud, samples.integer(0, 24), samples.integer(0, 30));
        }
    }
}
