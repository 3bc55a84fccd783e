#include "polyline/EdgeBvh.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"

namespace {

using namespace qel_test;
using qel::EdgeBvh;
using qel::kEdgeLanes;
using qel::VertexArrays;

template <int kDimensions>
VertexArrays<kDimensions> arraysOf(const CurvePoints& curve) {
    VertexArrays<kDimensions> vertices(curve.size());
    for (std::size_t i = 0; i < curve.size(); ++i) {
        for (int d = 0; d < kDimensions; ++d) {
            vertices.axis(d)[i] = curve[i].getRef(d);
        }
    }
    return vertices;
}

// Edge by edge, at many t each: a + (b - a) * t as computed.
template <int kDimensions>
void expectFeetInside(const VertexArrays<kDimensions>& vertices, std::size_t edge,
                      const qel::EdgeBvhNode<kDimensions>& node, std::size_t lane) {
    for (int d = 0; d < kDimensions; ++d) {
        const double a = vertices.axis(d)[edge], b = vertices.axis(d)[edge + 1];
        const double low = node.low[d][lane], high = node.high[d][lane];
        ASSERT_TRUE(low <= a && a <= high && low <= b && b <= high);
        for (const double t : {0x1p-60, 0.1, 1.0 / 3.0, 0.5, 0.7, 1.0 - 0x1p-53}) {
            const double foot = a + (b - a) * t;
            ASSERT_TRUE(low <= foot && foot <= high) << "edge " << edge << " at " << t;
        }
    }
}

template <int kDimensions>
void checkTree(const CurvePoints& curve) {
    const VertexArrays<kDimensions> vertices = arraysOf<kDimensions>(curve);
    const EdgeBvh<kDimensions> bvh(vertices);
    const std::size_t runs = (vertices.edges() + kEdgeLanes - 1) / kEdgeLanes;
    ASSERT_EQ(bvh.nodes(bvh.levels() - 1), 1U);
    std::vector<int> taken(runs);
    for (std::size_t k = 0; k < bvh.nodes(0) * kEdgeLanes; ++k) {
        const auto& node = bvh.node(0, k / kEdgeLanes);
        const std::size_t lane = k % kEdgeLanes;
        if (k >= runs) { // an empty box
            ASSERT_GT(node.low[0][lane], node.high[0][lane]);
            continue;
        }
        const std::size_t first = bvh.firstEdge(k / kEdgeLanes, lane);
        ASSERT_EQ(first % kEdgeLanes, 0U);
        ++taken.at(first / kEdgeLanes);
        for (std::size_t i = first; i < std::min(first + kEdgeLanes, vertices.edges()); ++i) {
            expectFeetInside(vertices, i, node, lane);
        }
    }
    EXPECT_EQ(std::count(taken.begin(), taken.end(), 1), static_cast<std::ptrdiff_t>(runs));
}

template <int kDimensions>
void checkParents(const EdgeBvh<kDimensions>& bvh) {
    for (int level = 1; level < bvh.levels(); ++level) {
        ASSERT_EQ(bvh.nodes(level), (bvh.nodes(level - 1) + kEdgeLanes - 1) / kEdgeLanes);
        for (std::size_t i = 0; i < bvh.nodes(level) * kEdgeLanes; ++i) {
            const auto& parent = bvh.node(level, i / kEdgeLanes);
            const std::size_t lane = i % kEdgeLanes;
            for (int d = 0; d < kDimensions; ++d) {
                if (i >= bvh.nodes(level - 1)) {
                    ASSERT_GT(parent.low[d][lane], parent.high[d][lane]);
                    continue;
                }
                const auto& child = bvh.node(level - 1, i);
                ASSERT_EQ(parent.low[d][lane],
                          *std::min_element(child.low[d], child.low[d] + kEdgeLanes));
                ASSERT_EQ(parent.high[d][lane],
                          *std::max_element(child.high[d], child.high[d] + kEdgeLanes));
            }
        }
    }
}

TEST(EdgeBvh, HoldsEachRunOnceInBoxesOfAllItsFeet) {
    for (const CurveShape& shape : curveShapes()) {
        if (std::string(shape.name) == "nan_among") {
            continue;
        }
        for (const std::size_t edges :
             std::vector<std::size_t>{1, 7, 8, 9, 63, 64, 65, 511, 512, 513, 4097, 5000}) {
            SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(edges));
            const CurvePoints curve = shape.make(edges + 1);
            checkTree<2>(curve);
            checkTree<3>(curve);
        }
    }
}

TEST(EdgeBvh, ParentsHoldTheirChildren) {
    for (const std::size_t edges : std::vector<std::size_t>{8, 9, 64, 65, 520, 4096, 4097, 40000}) {
        checkParents(EdgeBvh<3>(arraysOf<3>(curveShape("spiral").make(edges + 1))));
        checkParents(EdgeBvh<2>(arraysOf<2>(curveShape("equal_points").make(edges + 1))));
    }
}

// Neighbours along the curve need not be neighbours in space: the boxes just above the runs of a
// spiral are no larger than if they covered the disc without overlap, give or take.
TEST(EdgeBvh, SortsRunsInSpace) {
    const std::size_t edges = 64000;
    const EdgeBvh<2> bvh(arraysOf<2>(curveShape("spiral").make(edges + 1)));
    double area = 0.0;
    for (std::size_t i = 0; i < bvh.nodes(0); ++i) {
        const auto& node = bvh.node(1, i / kEdgeLanes);
        const std::size_t lane = i % kEdgeLanes;
        area += (node.high[0][lane] - node.low[0][lane]) * (node.high[1][lane] - node.low[1][lane]);
    }
    const auto& root = bvh.root();
    const double extent = *std::max_element(root.high[0], root.high[0] + kEdgeLanes) -
                          *std::min_element(root.low[0], root.low[0] + kEdgeLanes);
    EXPECT_LT(area, 3.0 * extent * extent);
}

} // namespace
