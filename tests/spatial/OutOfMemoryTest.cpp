// A tree is built or the one before stays, and queries need no memory.

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qel/QuadtreeBucket.h>

#include "support/AllocationFailures.h"

namespace {

using namespace qel_test;
using qel::QuadtreeBucket;
using Point = qel::TripletBase<float>;
using Points = std::vector<Point>;

// Points of a spiral, turned by an angle.
Points spiral(std::size_t n, float turn) {
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        const float t = 0.1f * static_cast<float>(i);
        points.emplace_back(t * std::cos(t + turn), t * std::sin(t + turn), t);
    }
    return points;
}

// Leaves points in leaves, which are split or full.
QuadtreeBucket example() {
    QuadtreeBucket bucket(6, 4);
    bucket.construct(spiral(50, 0.0f));
    return bucket;
}

std::vector<std::size_t> answersOf(QuadtreeBucket& bucket) {
    std::vector<std::size_t> answers;
    for (const Point& probe : spiral(20, 1.0f)) {
        answers.push_back(bucket.findNearestPoint(probe));
    }
    return answers;
}

TEST(OutOfMemory, ATreeIsReplacedOrKept) {
    for (const std::size_t n : {1u, 60u, 3000u}) {
        const Points points = spiral(n, 2.0f);
        EXPECT_GT(
            allocationFailures(example, answersOf, [&](QuadtreeBucket& b) { b.construct(points); }),
            0);
    }
}

TEST(OutOfMemory, QueriesAndMovesNeedNone) {
    QuadtreeBucket bucket = example();
    const AllocationLimit limit(0);
    const std::size_t nearest = bucket.findNearestPoint({1, 0, 0});
    QuadtreeBucket moved(std::move(bucket));
    EXPECT_EQ(moved.findNearestPoint({1, 0, 0}), nearest);
}

} // namespace
