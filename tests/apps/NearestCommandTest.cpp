// qel nearest
#include <cmath>

#include <gmock/gmock.h>

#include "Program.h"

namespace {

using ::testing::HasSubstr;
using NearestCommand = qel_test::Program;

TEST_F(NearestCommand, FindsTheNearestInThePlane) {
    write("cloud.csv", "x,y,z\n0,0,100\n1,0,0\n0,1,0\n");
    write("queries.csv", "x,y\n0.1,0.1\n3,0\n0,4\n");
    const auto run = qel("nearest cloud.csv queries.csv -o out.csv");
    ASSERT_EQ(run.status, 0) << run.err;
    const auto result = rows(text("out.csv"));
    ASSERT_EQ(result.size(), 3U);
    EXPECT_EQ(result[0][2], 0.0);
    EXPECT_EQ(result[1], (std::vector<double>{3, 0, 1, 1, 0, 2}));
    EXPECT_EQ(result[2], (std::vector<double>{0, 4, 2, 0, 1, 3}));
}

TEST_F(NearestCommand, PrintsWithoutAnOutput) {
    write("cloud.csv", "x,y\n0,0\n");
    const auto run = qel("nearest cloud.csv cloud.csv");
    EXPECT_EQ(run.out, "x,y,nearest,nearest_x,nearest_y,distance\n0,0,0,0,0,0\n");
}

TEST_F(NearestCommand, RefusesPointsThatAreNotFinite) {
    write("cloud.csv", "x,y\n0,0\n1e300,1\n");
    expectRefused("nearest cloud.csv cloud.csv --single", "not finite in single precision");
    EXPECT_EQ(qel("nearest cloud.csv cloud.csv").out,
              "x,y,nearest,nearest_x,nearest_y,distance\n0,0,0,0,0,0\n1e+300,1,1,1e+300,1,0\n");
}

// A grid of stations one metre apart, as map coordinates have them, and probes at irregular places.
TEST_F(NearestCommand, FindsTheNearestOfMapCoordinatesWithoutRounding) {
    constexpr int kSide = 100;
    constexpr double kEast = 1234567.0, kNorth = 5654321.0;
    std::string cloud = "east,north\n", probes = "east,north\n";
    for (int i = 0; i < kSide * kSide; ++i) {
        cloud +=
            std::to_string(kEast + i % kSide) + "," + std::to_string(kNorth + i / kSide) + "\n";
    }
    std::vector<std::size_t> expected;
    for (int i = 0; i < 20000; ++i) {
        const int column = i * 7919 % kSide, row = i * 104729 % 9973 % kSide;
        // Up to 0.49 from the station: six decimal places are written.
        const double dx = (i * 31 % 99 - 49) / 100.0, dy = (i * 17 % 99 - 49) / 100.0;
        probes +=
            std::to_string(kEast + column + dx) + "," + std::to_string(kNorth + row + dy) + "\n";
        expected.push_back(static_cast<std::size_t>(row * kSide + column));
    }
    write("cloud.csv", cloud);
    write("probes.csv", probes);
    ASSERT_EQ(qel("nearest cloud.csv probes.csv -o out.csv").status, 0);
    const auto result = rows(text("out.csv"));
    const auto given = rows(probes);
    ASSERT_EQ(result.size(), expected.size());
    for (std::size_t i = 0; i < result.size(); ++i) {
        ASSERT_EQ(static_cast<std::size_t>(result[i][2]), expected[i]) << "probe " << i;
        ASSERT_EQ(result[i][0], given[i][0]) << "the query is echoed as it is";
    }
}

TEST_F(NearestCommand, MeasuresInSpaceWhereBothFilesHaveZ) {
    write("cloud.csv", "x,y,z\n0,0,100\n9,0,0\n");
    write("space.csv", "x,y,z\n1,0,0\n");
    write("plane.csv", "x,y\n1,0\n");
    EXPECT_EQ(qel("nearest cloud.csv space.csv").out,
              "x,y,z,nearest,nearest_x,nearest_y,nearest_z,distance\n1,0,0,1,9,0,0,8\n");
    const auto run = qel("nearest cloud.csv plane.csv");
    EXPECT_EQ(run.out, "x,y,nearest,nearest_x,nearest_y,distance\n1,0,0,0,0,1\n");
    EXPECT_THAT(run.err, HasSubstr("z plays no part: plane.csv has none"));
}

TEST_F(NearestCommand, TakesTheFirstOfPointsAtEqualDistance) {
    std::string circle = "x,y\n";
    for (int i = 0; i < 500; ++i) {
        for (const char* point : {"3,4\n", "-3,4\n", "4,-3\n", "-5,0\n"}) {
            circle += i == 0 && point[0] == '3' ? "6,0\n" : point;
        }
    }
    write("circle.csv", circle);
    write("centre.csv", "x,y\n0,0\n");
    EXPECT_EQ(rows(qel("nearest circle.csv centre.csv").out)[0],
              (std::vector<double>{0, 0, 1, -3, 4, 5}));
    const auto several = rows(qel("nearest circle.csv centre.csv --k 4").out);
    ASSERT_EQ(several.size(), 4U);
    for (std::size_t i = 0; i < several.size(); ++i) {
        EXPECT_EQ(several[i][3], static_cast<double>(i + 1));
        EXPECT_EQ(several[i].back(), 5.0);
    }
}

TEST_F(NearestCommand, FindsSeveralByNumberOrWithinARadius) {
    write("cloud.csv", "x,y\n0,0\n1,0\n2,0\n3,0\n");
    write("queries.csv", "x,y\n0.25,0\n9,0\n");
    const std::string header = "query,x,y,nearest,nearest_x,nearest_y,distance\n";
    EXPECT_EQ(qel("nearest cloud.csv queries.csv --k 2").out,
              header + "0,0.25,0,0,0,0,0.25\n0,0.25,0,1,1,0,0.75\n1,9,0,3,3,0,6\n1,9,0,2,2,0,7\n");
    const auto within = qel("nearest cloud.csv queries.csv --radius 1.75");
    EXPECT_EQ(within.out, header + "0,0.25,0,0,0,0,0.25\n0,0.25,0,1,1,0,0.75\n"
                                   "0,0.25,0,2,2,0,1.75\n");
    EXPECT_THAT(within.err, HasSubstr("1 of 2 queries have no point within the radius"));
    EXPECT_EQ(qel("nearest cloud.csv queries.csv --radius 1.75 --k 1").out,
              header + "0,0.25,0,0,0,0,0.25\n");
    const auto all = qel("nearest cloud.csv queries.csv --k 9");
    EXPECT_EQ(rows(all.out).size(), 8U);
    EXPECT_THAT(all.err, HasSubstr("the cloud has 4 points only"));
}

TEST_F(NearestCommand, KeepsLabels) {
    write("stations.csv", "name,x,y\nNorth,0,1\n\"South, old\",0,-1\n");
    write("cities.json", R"({"type": "FeatureCollection", "features": [
        {"type": "Feature", "properties": {"name": "A"},
         "geometry": {"type": "Point", "coordinates": [0, 5]}},
        {"type": "Feature", "properties": {}, "geometry": {"type": "Point", "coordinates": [0, -1]}}]})");
    write("probe.csv", "x,y\n0,-2\n0,9\n");
    EXPECT_EQ(qel("nearest stations.csv probe.csv").out,
              "x,y,nearest,nearest_x,nearest_y,nearest_label,distance\n"
              "0,-2,1,0,-1,\"South, old\",1\n0,9,0,0,1,North,8\n");
    EXPECT_EQ(
        qel("nearest cities.json probe.csv").out,
        "x,y,nearest,nearest_x,nearest_y,nearest_label,distance\n0,-2,1,0,-1,,1\n0,9,0,0,5,A,4\n");
}

TEST_F(NearestCommand, HugeAndTinyDistancesAreRanked) {
    write("cloud.csv", "x,y\n1e-200,0\n2e-200,0\n3e-200,0\n");
    write("queries.csv", "x,y\n2.9e-200,0\n1e300,1e300\n");
    const auto result = rows(qel("nearest cloud.csv queries.csv").out);
    EXPECT_EQ(result[0][2], 2.0);
    EXPECT_NEAR(result[0][5] / 1e-201, 1.0, 1e-9);
    EXPECT_EQ(result[1][2], 0.0) << "all are at the same distance";
    EXPECT_EQ(result[1][5], std::hypot(1e300, 1e300));
}

TEST_F(NearestCommand, SingleIsTheQuadtreeInThePlane) {
    write("cloud.csv", "x,y,z\n16777216,0,5\n16777217,0,5\n");
    write("queries.csv", "x,y,z\n16777217,0,0\n");
    const auto run = qel("nearest cloud.csv queries.csv --single");
    EXPECT_EQ(run.out, "x,y,nearest,nearest_x,nearest_y,distance\n16777216,0,0,16777216,0,0\n");
    EXPECT_THAT(run.err, HasSubstr("--single is for the plane"));
    expectRefused("nearest cloud.csv queries.csv --single --k 2", "does not go with --k");
    expectRefused("nearest cloud.csv queries.csv --single --radius 2", "does not go with --k");
}

TEST_F(NearestCommand, RefusesWrongNumbers) {
    write("cloud.csv", "x,y\n0,0\n");
    for (const char* option : {"--k 0", "--k -1", "--k x", "--radius -1", "--radius nan"}) {
        EXPECT_NE(qel(std::string("nearest cloud.csv cloud.csv ") + option).status, 0) << option;
    }
}

} // namespace
