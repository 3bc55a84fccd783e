// qel nearest
#include "Program.h"

namespace {

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
    expectRefused("nearest cloud.csv cloud.csv", "not finite in single precision");
}

} // namespace
