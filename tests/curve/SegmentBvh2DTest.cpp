// Boxes around segments of the plane, and the hierarchy of them.

#include "curve/SegmentBvh2D.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::Box2D;
using qel::Doublet;
using qel::LineSegment2D;
using qel::SegmentBvh2D;

Doublet inPlane(const Point& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

bool overlap(const Box2D& a, const Box2D& b) {
    return a.lowX <= b.highX && b.lowX <= a.highX && a.lowY <= b.highY && b.lowY <= a.highY;
}

// Pairs that meet at chosen parameters, many of them just within the slack, at every scale and
// far from the origin, also nearly parallel. Whenever the segments meet, their boxes overlap.
TEST(SegmentBvh2D, BoxesOverlapWheneverSegmentsMeet) {
    RandomCurves random(77);
    int met = 0;
    for (int round = 0; round < 500000; ++round) {
        const double scale = std::pow(10.0, random.uniform(-14.0, 14.0));
        const Point offset =
            random.point(random.chance(0.5) ? 0.0 : scale * std::pow(10.0, random.uniform(0, 8)));
        const auto parameter = [&] {
            return random.chance(0.4)   ? 1.0 + random.uniform(0.8e-4, 1.01e-4)
                   : random.chance(0.5) ? -random.uniform(0.8e-4, 1.01e-4)
                                        : random.uniform(-0.001, 1.001);
        };
        const Point u = random.point(scale);
        Point v = random.chance(0.2) ? u * random.uniform(-2.0, 2.0) : random.point(scale);
        if (random.chance(0.3)) {
            v *= std::pow(10.0, random.uniform(-6.0, 6.0));
        }
        v += random.point(scale * (random.chance(0.5) ? 1e-7 : 0.0));
        const Point start = offset - u * parameter();
        const Point otherStart = offset - v * parameter();
        const LineSegment2D a(inPlane(start), inPlane(start + u));
        const LineSegment2D b(inPlane(otherStart), inPlane(otherStart + v));
        double t = 0.0;
        if (a.intersectWithLimits(b, t)) {
            ++met;
            ASSERT_TRUE(overlap(qel::boxOf(a), qel::boxOf(b)))
                << a << " and " << b << " in round " << round;
        }
    }
    EXPECT_GT(met, 75000);
}

// Whether a box reaches as far around a segment as crossings on it can lie.
bool reachesAround(const Box2D& box, const Doublet& from, const Doublet& to) {
    const double x0 = from.x;
    const double y0 = from.y;
    const double x1 = to.x;
    const double y1 = to.y;
    const double farthest =
        std::fmax(std::fmax(std::fabs(x0), std::fabs(x1)), std::fmax(std::fabs(y0), std::fabs(y1)));
    const double side = std::fmax(std::fabs(x1 - x0), std::fabs(y1 - y0));
    if (!(std::isfinite(x0 + y0 + x1 + y1) && farthest <= 1e18) || (side > 0.0 && side < 7e-19)) {
        return std::isinf(box.lowX) && std::isinf(box.highX) && std::isinf(box.lowY) &&
               std::isinf(box.highY);
    }
    const double rounding = 41.0 * 0x1p-24 * farthest;
    const double reachX = 1.42e-4 * std::fabs(x1 - x0) + rounding;
    const double reachY = 1.42e-4 * std::fabs(y1 - y0) + rounding;
    return box.lowX <= std::fmin(x0, x1) - reachX && std::fmax(x0, x1) + reachX <= box.highX &&
           box.lowY <= std::fmin(y0, y1) - reachY && std::fmax(y0, y1) + reachY <= box.highY;
}

Points randomPoints(RandomCurves& random, int round) {
    Points points = random.points(round % 2 == 0 ? 300 : 100);
    const double scale = std::pow(10.0, random.uniform(-25.0, 25.0));
    for (Point& p : points) {
        p *= scale;
    }
    return points;
}

TEST(SegmentBvh2D, BoxesReachAsFarAroundSegmentsAsCrossingsCanLie) {
    RandomCurves random(78);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        const Points points = randomPoints(random, round);
        const std::size_t count = points.size() - 1;
        onEveryVectorUnit([&] {
            const SegmentBvh2D bvh(points.data(), count);
            for (std::size_t i = 0; i < count; ++i) {
                const Doublet from = inPlane(points[i]);
                const Doublet to = inPlane(points[i + 1]);
                ASSERT_TRUE(from == to || reachesAround(qel::boxOf({from, to}), from, to));
                std::size_t box = i;
                for (std::size_t level = 1; level <= bvh.top(); ++level) {
                    box /= SegmentBvh2D::kFan;
                    ASSERT_TRUE(from == to || reachesAround(bvh.box(level, box), from, to))
                        << "segment " << i << ", level " << level;
                }
            }
        });
        ASSERT_FALSE(HasFailure());
    }
}

// What a group says of its boxes is what comparing them one by one says.
TEST(SegmentBvh2D, TellsWhichBoxesOfAGroupOverlapABox) {
    RandomCurves random(79);
    for (int round = 0; round < 300; ++round) {
        const Points points = random.points(200);
        const std::size_t count = points.size() - 1;
        const Point from = points[random.count(0, count)] + random.point(0.1);
        const Box2D probe = qel::boxOf({inPlane(from), inPlane(from + random.point(1.0))});
        onEveryVectorUnit([&] {
            const SegmentBvh2D bvh(points.data(), count);
            for (std::size_t group = 0; group * SegmentBvh2D::kFan < count; ++group) {
                const unsigned bits = bvh.overlapping(0, group, probe);
                for (std::size_t k = 0; k < SegmentBvh2D::kFan; ++k) {
                    const std::size_t i = group * SegmentBvh2D::kFan + k;
                    if (i >= count) {
                        ASSERT_EQ(bits >> k & 1u, 0u);
                    } else if (overlap(qel::boxOf(qel::planeSegment(points, i)), probe)) {
                        ASSERT_EQ(bits >> k & 1u, 1u) << "segment " << i;
                    }
                }
            }
        });
        ASSERT_FALSE(HasFailure());
    }
}

} // namespace
