// Nearest point in the plane.
#include <utility>

#include <qel/QuadtreeBucket.h>

#include "Inputs.h"
#include "Operations.h"

namespace qel_checksums {
namespace {

// Whole coordinates: many points of one place, and probes at equal distances from several.
FloatPoints latticePoints(std::size_t n, Random& random) {
    FloatPoints points;
    for (std::size_t i = 0; i < n; ++i) {
        const auto x = static_cast<float>(random.index(12));
        points.emplace_back(x, static_cast<float>(random.index(12)), 1.0f);
    }
    return points;
}

// A thin layer beside a wall, with points crowded towards it.
FloatPoints layerPoints(std::size_t n, Random& random) {
    FloatPoints points;
    for (std::size_t i = 0; i < n; ++i) {
        const float height = random.floatBetween(0.0f, 1.0f);
        const float x = random.floatBetween(0.0f, 100.0f);
        points.emplace_back(x, 0.01f * height * height * height, 0.0f);
    }
    return points;
}

std::vector<FloatPoints> clouds(Random& random) {
    std::vector<FloatPoints> result;
    for (const std::size_t n :
         {std::size_t{1}, std::size_t{2}, std::size_t{11}, std::size_t{400}, std::size_t{6000}}) {
        FloatPoints uniform;
        for (std::size_t i = 0; i < n; ++i) {
            uniform.push_back(random.floatPointBetween(-10.0f, 10.0f));
        }
        result.push_back(uniform);
        result.push_back(latticePoints(n, random));
        result.push_back(layerPoints(n, random));
        result.push_back(fieldTriplets(n, 91 + n, true));
        result.emplace_back(n, FloatPoint(1.0f, 2.0f, 3.0f));
    }
    return result;
}

FloatPoint probe(const FloatPoints& points, Random& random) {
    const FloatPoint& near = points[random.index(points.size())];
    switch (random.index(4)) {
    case 0:
        return random.floatPointBetween(-20.0f, 20.0f);
    case 1:
        return near;
    case 2: // halfway between places of the lattice
        return {static_cast<float>(random.index(24)) * 0.5f,
                static_cast<float>(random.index(24)) * 0.5f, 0.0f};
    default:
        return near + random.floatPointBetween(-0.1f, 0.1f);
    }
}

void findNearestPoint(Checksum& sum) {
    Random random(92);
    const std::pair<int, int> limits[] = {{10, 10}, {3, 1}, {24, 16}, {0, 5}};
    for (const FloatPoints& points : clouds(random)) {
        for (const auto& [maxDepth, capacity] : limits) {
            qel::QuadtreeBucket bucket(maxDepth, capacity);
            bucket.construct(points);
            sum.add(bucket.getMaxDepthReached());
            for (int k = 0; k < 100; ++k) {
                const FloatPoint p = probe(points, random);
                sum.addOutcome([&] { sum.add(bucket.findNearestPoint(p)); });
                sum.add(bucket.getBestDistance());
            }
        }
    }
    qel::QuadtreeBucket empty;
    sum.addOutcome([&] { empty.construct({}); });
    sum.addOutcome([&] { sum.add(empty.findNearestPoint({})); });
}

} // namespace

void addSpatialOperations(Operations& operations) {
    operations.push_back({"QuadtreeBucket.findNearestPoint", Arithmetic::exact, findNearestPoint});
}

} // namespace qel_checksums
