// The pictures of qel curve.
#include <cmath>

#include "Pictures.h"
#include "Program.h"

namespace {

using CurvePicture = qel_test::Program;

TEST_F(CurvePicture, DrawsTheCurveBeforeAndAfter) {
    write("in.csv", "x,y\n0,0\n2,0\n2,2\n");
    ASSERT_EQ(qel("curve in.csv --resample 4 --image p.png").status, 0);
    qel_test::expectPicture((folder / "p.png").string());
    ASSERT_EQ(qel("curve in.csv --resample 4 --image p.svg").status, 0);
    const std::string svg = text("p.svg");
    EXPECT_NE(svg.find("before: 3 points"), std::string::npos);
    EXPECT_NE(svg.find("after: 4 points"), std::string::npos);
    EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

TEST_F(CurvePicture, DrawsSeveralCurvesWithTheirNamesInColours) {
    write("in.txt", "upper side\n0 0\n1 0\nlower\n5 5\n6 5\n");
    ASSERT_EQ(qel("curve in.txt --info --image p.svg").status, 0);
    const std::string svg = text("p.svg");
    EXPECT_NE(svg.find("<desc>upper side: 2 points, lower: 2 points</desc>"), std::string::npos);
    EXPECT_NE(svg.find("#c8281e"), std::string::npos);
    EXPECT_NE(svg.find("#0072b2"), std::string::npos);
    ASSERT_EQ(qel("curve in.txt --resample 3 --image p.svg").status, 0);
    EXPECT_NE(text("p.svg").find("<desc>before: 4 points, upper side: 3 points"),
              std::string::npos);
    // Other coordinates are not drawn over those before.
    ASSERT_EQ(qel("curve in.txt --art 0,0,0 0,0,1 --image p.svg").status, 0);
    EXPECT_EQ(text("p.svg").find("before"), std::string::npos);
    std::string many;
    for (int i = 0; i < 21; ++i) {
        many += std::to_string(i) + " 0\n0 1\n\n";
    }
    write("many.txt", many);
    ASSERT_EQ(qel("curve many.txt --image p.svg").status, 0);
    EXPECT_NE(text("p.svg").find("<desc>21 curves: 42 points</desc>"), std::string::npos);
}

TEST_F(CurvePicture, DrawsACurveInSpaceInABox) {
    std::ostringstream helix;
    for (int i = 0; i < 100; ++i) {
        helix << std::cos(0.1 * i) << " " << std::sin(0.1 * i) << " " << 0.02 * i << "\n";
    }
    write("in.txt", helix.str());
    ASSERT_EQ(qel("curve in.txt --image p.png").status, 0);
    qel_test::expectPicture((folder / "p.png").string());
    ASSERT_EQ(qel("curve in.txt --image space.svg").status, 0);
    ASSERT_EQ(qel("curve in.txt --dim 2 -o flat.csv").status, 0);
    ASSERT_EQ(qel("curve flat.csv --image plane.svg").status, 0);
    // The edges of the box.
    EXPECT_NE(text("space.svg").find("#bebebe"), std::string::npos);
    EXPECT_EQ(text("plane.svg").find("#bebebe"), std::string::npos);
    for (const char* tiny : {"0 0 0\n1e-310 1e-310 1e-310\n", "1e300 0 0\n0 1e300 1e300\n",
                             "1e6 1e6 1e6\n1000000.0000001 1e6 1e6\n", "0 0\n0 0\n"}) {
        write("in.txt", tiny);
        EXPECT_EQ(qel("curve in.txt --image p.svg").status, 0) << tiny;
    }
}

} // namespace
