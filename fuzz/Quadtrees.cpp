// Nearest points of a cloud, compared with a quadtree of nodes that is built and searched point by
// point, and with all distances.

#include <cstddef>
#include <utility>
#include <vector>

#include <qel/QuadtreeBucket.h>

#include "Input.h"
#include "Refusals.h"
#include "spatial/ReferenceSearch.h"
#include "support/Bits.h"

namespace {

using namespace qel_fuzz;
using qel::QuadtreeBucket;
using qel_test::ReferenceSearch;
using qel_test::sameBits;
using Point = qel::TripletBase<float>;

std::size_t nearestOf(QuadtreeBucket& bucket, const Point& probe) {
    std::size_t nearest = ReferenceSearch::kNone;
    refuses("Quadtree", [&] { nearest = bucket.findNearestPoint(probe); });
    return nearest;
}

float squaredDistance(const Point& a, const Point& b) {
    const float dx = a.x - b.x, dy = a.y - b.y;
    return dx * dx + dy * dy;
}

void checkProbe(QuadtreeBucket& bucket, ReferenceSearch& reference,
                const std::vector<Point>& points, const Point& probe) {
    const std::size_t expected = reference.find(probe);
    require(nearestOf(bucket, probe) == expected, "the nearest point is that of the reference");
    require(bucket.getBestDistance() == reference.bestDistance(), "so is its distance");
    const qel::QuadtreeObject* best = bucket.getBestObject();
    require((best == nullptr) == (expected == ReferenceSearch::kNone),
            "there is a best point if one was found");
    if (best == nullptr) {
        return;
    }
    require(best->index == expected && sameBits(best->point, points[expected]),
            "the best point is the one found");
    const float distance = squaredDistance(points[expected], probe);
    require(bucket.getBestDistance() == distance, "its distance is that of the probe");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const int maxDepth = input.integer(0, 12);
    const int capacity = input.integer(1, 12);
    QuadtreeBucket bucket(maxDepth, capacity);
    const bool isTame = input.flag();
    const std::vector<Point> points =
        isTame ? input.moderateTriplets<float>(0, 80) : input.triplets<float>(0, 80);
    if (points.empty()) {
        require(refuses("Quadtree", [&] { bucket.construct(points); }), "no cloud is refused");
        require(nearestOf(bucket, Point()) == ReferenceSearch::kNone, "there is no tree then");
        return 0;
    }
    bucket.construct(points);
    if (input.flag()) {
        bucket = QuadtreeBucket(std::move(bucket));
    }
    ReferenceSearch reference(points, maxDepth, capacity);
    require(bucket.getMaxDepthReached() == reference.maxDepthReached(),
            "the depth reached is that of the reference");
    for (int probes = 0; input.hasMore() && probes < 20; ++probes) {
        const Point probe = input.integer(0, 3) == 0 ? points[input.count(0, points.size() - 1)]
                                                     : input.triplet<float>();
        checkProbe(bucket, reference, points, probe);
    }
    return 0;
}
