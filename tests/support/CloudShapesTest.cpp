// Each named cloud is what its name promises.
#include "support/Shapes.h"

#include <cfloat>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/Bits.h"

using namespace qel_test;

namespace {

constexpr std::size_t kCount = 10000;

CloudPoints made(const char* name) {
    return cloudShape(name).make(kCount);
}

// How many points stand at each place.
std::map<std::pair<float, float>, int> places(const CloudPoints& points) {
    std::map<std::pair<float, float>, int> places;
    for (const CloudPoint& p : points) {
        ++places[{p.x, p.y}];
    }
    return places;
}

template <typename Condition>
std::size_t countIf(const CloudPoints& points, const Condition& condition) {
    std::size_t count = 0;
    for (const CloudPoint& p : points) {
        count += condition(p) ? 1 : 0;
    }
    return count;
}

bool isFinite(const CloudPoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

class CloudShapeTest : public testing::TestWithParam<CloudShape> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(Shapes, CloudShapeTest, testing::ValuesIn(cloudShapes()), nameOfShape);

TEST_P(CloudShapeTest, HasAsManyPointsAsAskedInThePlane) {
    for (const std::size_t n : {0u, 1u, 2u, 3u, 16u, 100u, 1001u}) {
        const CloudPoints points = GetParam().make(n);
        EXPECT_EQ(points.size(), n);
        EXPECT_EQ(countIf(points, [](const CloudPoint& p) { return p.z == 0.0f; }), n);
    }
}

TEST_P(CloudShapeTest, IsTheSameEachTime) {
    const CloudPoints points = GetParam().make(kCount);
    EXPECT_TRUE(sameBitsInAll(points, GetParam().make(kCount)));
    for (const auto queries : {queriesAnywhere, queriesNearPoints, queriesFarOff}) {
        EXPECT_TRUE(
            sameBitsInAll(queries(GetParam(), points, 50), queries(GetParam(), points, 50)));
    }
}

TEST_P(CloudShapeTest, HasFiniteQueriesForEverySize) {
    for (const std::size_t n : {1u, 2u, 1000u}) {
        const CloudPoints points = GetParam().make(n);
        for (const auto queries : {queriesAnywhere, queriesNearPoints, queriesFarOff}) {
            EXPECT_EQ(countIf(queries(GetParam(), points, 50), isFinite), 50u);
        }
    }
}

TEST_P(CloudShapeTest, HasQueriesInItsBoxAndFarOutsideIt) {
    const CloudPoints points = GetParam().make(kCount);
    const cloud_shapes::Box box = cloud_shapes::boxOf(points);
    for (const CloudPoint& q : queriesAnywhere(GetParam(), points, 100)) {
        EXPECT_GE(q.x, box.low.x);
        EXPECT_LE(q.x, box.high.x + 0.5f); // a query between places of a lattice
        EXPECT_GE(q.y, box.low.y);
        EXPECT_LE(q.y, box.high.y + 0.5f);
    }
    const float extent = std::fmax(box.high.x - box.low.x, box.high.y - box.low.y);
    for (const CloudPoint& q : queriesFarOff(GetParam(), points, 100)) {
        EXPECT_GE(std::fmax(std::abs(q.x - box.low.x), std::abs(q.y - box.low.y)), 7e5f * extent);
    }
}

TEST(CloudShapes, HaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const CloudShape& shape : cloudShapes()) {
        EXPECT_TRUE(names.insert(shape.name).second) << shape;
        EXPECT_EQ(&cloudShape(shape.name), &shape);
    }
}

TEST(CloudShapes, NoQueriesNearNoPoints) {
    EXPECT_TRUE(queriesNearPoints(cloudShape("even"), {}, 10).empty());
}

TEST(CloudShapes, EvenFillsAllQuarters) {
    const std::size_t left = countIf(made("even"), [](const CloudPoint& p) { return p.x < 0.5f; });
    const std::size_t low = countIf(made("even"), [](const CloudPoint& p) { return p.y < 0.5f; });
    EXPECT_NEAR(static_cast<double>(left), kCount / 2.0, kCount / 20.0);
    EXPECT_NEAR(static_cast<double>(low), kCount / 2.0, kCount / 20.0);
}

TEST(CloudShapes, TheGridHasOnePointAPlaceAndTheMassTiesMany) {
    EXPECT_EQ(places(made("grid")).size(), kCount);
    EXPECT_EQ(places(made("mass_ties")).size(), 256u);
    EXPECT_EQ(places(made("equal_points")).size(), 1u);
    const std::size_t clusters = places(made("equal_clusters")).size();
    EXPECT_GT(clusters, 90u);
    EXPECT_LE(clusters, 100u);
    EXPECT_EQ(places(made("huge_offset")).size(), 17u * 17u);
}

TEST(CloudShapes, LatticesAreShuffled) {
    const CloudPoints grid = made("grid");
    EXPECT_GT(countIf(grid, [&](const CloudPoint& p) { return p.x != grid[0].x; }), kCount / 2);
    EXPECT_NE(grid[1].x - grid[0].x, 1.0f);
}

TEST(CloudShapes, TheLayerSpansFiveDecades) {
    for (const float y : {1e-5f, 1e-4f, 1e-3f, 1e-2f, 1e-1f}) {
        EXPECT_GT(countIf(made("wall_layer"),
                          [y](const CloudPoint& p) { return p.y >= y && p.y <= 10.0f * y; }),
                  kCount / 6);
    }
}

TEST(CloudShapes, TheCentreOfTheCircleIsAsFarFromAllPoints) {
    const CloudPoints points = made("circle");
    for (const CloudPoint& p : points) {
        EXPECT_NEAR(p.x * p.x + p.y * p.y, 1.0f, 3e-7f);
    }
    EXPECT_TRUE(sameBits(queriesAnywhere(cloudShape("circle"), points, 2)[1],
                         CloudPoint(0.0f, 0.0f, 0.0f)));
}

TEST(CloudShapes, ClustersAndScalesAreWhereTheyShouldBe) {
    EXPECT_GE(countIf(made("cluster"), [](const CloudPoint& p) { return p.x <= 1e-3f; }),
              kCount - kCount / 100);
    EXPECT_GE(countIf(made("two_scales"), [](const CloudPoint& p) { return p.x <= 1e-5f; }),
              kCount / 2);
}

TEST(CloudShapes, LinesAreStraight) {
    EXPECT_EQ(countIf(made("line"), [](const CloudPoint& p) { return p.y == 2.0f * p.x; }), kCount);
    EXPECT_EQ(countIf(made("equal_x"), [](const CloudPoint& p) { return p.x == 0.5f; }), kCount);
}

TEST(CloudShapes, DenormalMeansDenormal) {
    EXPECT_EQ(countIf(made("denormal"),
                      [](const CloudPoint& p) { return p.x < FLT_MIN && p.y < FLT_MIN; }),
              kCount);
    EXPECT_GT(places(made("denormal")).size(), kCount / 2);
}

TEST(CloudShapes, OneInAHundredIsNaN) {
    EXPECT_EQ(countIf(made("nan_among"), isFinite), kCount - kCount / 100);
}
