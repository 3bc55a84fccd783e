#include "polyline/FarthestFromSegment.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::FarthestFromSegment;
using qel::FarthestVertex3D;
using qel::OrientedBoxBvh;
using qel::Segment;
using qel::VertexArrays;
using qel::VertexRange;

VertexArrays<3> arraysOf(const CurvePoints& curve) {
    VertexArrays<3> vertices(curve.size());
    for (std::size_t i = 0; i < curve.size(); ++i) {
        vertices.axis(0)[i] = curve[i].x;
        vertices.axis(1)[i] = curve[i].y;
        vertices.axis(2)[i] = curve[i].z;
    }
    return vertices;
}

bool isFinite(const CurveShape& shape) {
    return shape.name != std::string("nan_among");
}

// Asked more often than scanning stays cheap, so that the hierarchy answers most of the time.
TEST(FarthestFromSegment, AnswersWithAndWithoutHierarchyMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            if (!isFinite(shape)) {
                continue;
            }
            for (const std::size_t n : std::vector<std::size_t>{3, 70, 514, 515, 1000, 5000}) {
                const VertexArrays<3> vertices = arraysOf(shape.make(n));
                FarthestFromSegment search(vertices);
                ShapeRandom random(n);
                for (int k = 0; k < 100; ++k) {
                    std::size_t from = random.index(n / 3), to = n - 1 - random.index(n / 3);
                    from = k % 2 == 0 ? 0 : from;
                    if (to - from < 2) {
                        from = 0, to = n - 1;
                    }
                    const VertexRange range{from, to};
                    const FarthestVertex3D expected =
                        qel::scanForFarthest(vertices.pointers(), range);
                    const FarthestVertex3D found = search.inRange(range);
                    ASSERT_EQ(found.vertex, expected.vertex) << shape.name << " " << n;
                    ASSERT_EQ(found.d2, expected.d2) << shape.name << " " << n;
                }
            }
        }
    });
}

// No vertex is farther from a segment than a corner of each box that holds it.
void checkBounds(const VertexArrays<3>& vertices, const OrientedBoxBvh& bvh, const Segment& segment,
                 double rounding) {
    const qel::VertexPointers v = vertices.pointers();
    for (std::size_t level = 0; level < bvh.levels(); ++level) {
        const auto& boxes = bvh.level(level);
        for (std::size_t i = 0; i < vertices.vertices(); ++i) {
            const std::size_t node = i / OrientedBoxBvh::verticesOf(level);
            double bound = 0.0;
            for (std::size_t k = 0; k < OrientedBoxBvh::kCorners; ++k) {
                bound = std::fmax(bound, qel::squaredDistance(segment, boxes.corner(k, 0)[node],
                                                              boxes.corner(k, 1)[node],
                                                              boxes.corner(k, 2)[node]));
            }
            const double d2 = qel::squaredDistance(segment, v.x[i], v.y[i], v.z[i]);
            ASSERT_LE(std::sqrt(d2), std::sqrt(bound) + rounding) << "vertex " << i;
        }
    }
}

TEST(OrientedBoxBvh, BoundsTheDistanceOfEachVertexFromAnySegment) {
    for (const CurveShape& shape : curveShapes()) {
        if (shape.name == std::string("nan_among") || shape.name == std::string("denormal")) {
            continue; // not finite, or with squares that vanish
        }
        SCOPED_TRACE(shape.name);
        const VertexArrays<3> vertices = arraysOf(shape.make(3001));
        const OrientedBoxBvh bvh(vertices);
        ASSERT_EQ(bvh.levels(), 3U);
        EXPECT_EQ(bvh.nodes(0), 94U);
        EXPECT_EQ(bvh.nodes(2), 2U);
        ShapeRandom random(5);
        for (int k = 0; k < 20; ++k) {
            const Segment segment(vertices.pointers(), random.index(3001), random.index(3001));
            checkBounds(vertices, bvh, segment, 1e-13 * qel::largestCoordinate(vertices));
        }
    }
}

// What makes it prune where boxes along the axes do not.
TEST(OrientedBoxBvh, FollowsTheDirectionOfARun) {
    CurvePoints curve;
    for (int i = 0; i < 64; ++i) {
        const double across = i % 2 == 0 ? 0.25 : -0.25;
        curve.emplace_back(i - across, i + across, 0.0); // along the diagonal
    }
    const OrientedBoxBvh bvh(arraysOf(curve));
    const auto& level = bvh.level(0);
    for (std::size_t k = 0; k < OrientedBoxBvh::kCorners; ++k) {
        EXPECT_NEAR(std::fabs(level.corner(k, 0)[0] - level.corner(k, 1)[0]), 0.5, 1e-12);
    }
}

} // namespace
