// The nearest of many points in double precision, beside a search of all of them.

#include <algorithm>
#include <cmath>
#include <random>

#include "points/NearestPoints.h"

#include <gtest/gtest.h>

namespace {

using program::NearestPoints;
using program::Neighbour;
using program::NeighbourLimits;
using program::Point;
using program::Points;

std::vector<std::size_t> plainNearest(const Points& points, const Point& query, bool planar,
                                      const NeighbourLimits& limits) {
    std::vector<std::pair<double, std::size_t>> all;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point d = points[i] - query;
        const double distance = std::hypot(d.x, d.y, planar ? 0.0 : d.z);
        if (distance <= limits.radius) {
            all.emplace_back(distance, i);
        }
    }
    std::sort(all.begin(), all.end());
    std::vector<std::size_t> nearest;
    for (std::size_t i = 0; i < std::min(limits.count, all.size()); ++i) {
        nearest.push_back(all[i].second);
    }
    return nearest;
}

std::vector<std::size_t> indicesOf(const std::vector<Neighbour>& found) {
    std::vector<std::size_t> indices(found.size());
    std::transform(found.begin(), found.end(), indices.begin(),
                   [](const Neighbour& neighbour) { return neighbour.index; });
    return indices;
}

// Whole numbers, so that many distances are equal; times a scale and from an offset on.
Points lattice(std::size_t n, double scale, double offset, std::mt19937& random) {
    std::uniform_int_distribution<int> place(0, 9);
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        const double x = place(random), y = place(random), z = place(random);
        points.emplace_back(x * scale + offset, y * scale + offset, z * scale + offset);
    }
    return points;
}

TEST(NearestPoints, MatchesASearchOfAllPointsWithTies) {
    std::mt19937 random(7);
    for (const double scale : {1.0, 0.1, 1e-170, 1e150}) {
        for (const double offset : {0.0, 1e6 * scale}) {
            for (const bool planar : {true, false}) {
                const Points points = lattice(400, scale, offset, random);
                const Points queries = lattice(50, scale, offset, random);
                const NearestPoints tree(points, queries, planar);
                for (const NeighbourLimits& limits :
                     {NeighbourLimits(), NeighbourLimits{7, 1e300},
                      NeighbourLimits{400, 2.0 * scale}, NeighbourLimits{3, scale},
                      NeighbourLimits{1, 0.0}}) {
                    for (std::size_t i = 0; i < queries.size(); ++i) {
                        ASSERT_EQ(indicesOf(tree.find(i, limits)),
                                  plainNearest(points, queries[i], planar, limits))
                            << "scale " << scale << ", offset " << offset << ", query " << i;
                    }
                }
            }
        }
    }
}

TEST(NearestPoints, OfEqualPointsIsTheFirst) {
    const Points points(1000, Point(1, 2, 3)), queries{{1, 2, 3}, {-1e200, 0, 0}};
    const NearestPoints tree(points, queries, false);
    EXPECT_EQ(tree.find(0, {})[0].index, 0U);
    EXPECT_EQ(tree.find(1, {})[0].index, 0U);
}

} // namespace
