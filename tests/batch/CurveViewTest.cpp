#include <qel/CurveView.h>

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Errors.h"

namespace qel_test {
namespace {

using namespace qel;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Point = TripletBase<double>;

const std::vector<Point> kPoints = {{0, 0, 0}, {3, 4, 0}, {3, 4, 12}};

TEST(CurveView, ShowsACurveWithItsSvalues) {
    const ParametricCurve curve(kPoints, {0.0, 0.5, 2.0}, ParametricCurve::dim3D);
    const CurveView view = curve;
    EXPECT_EQ(view.size(), 3U);
    EXPECT_EQ(view[1], Point(3, 4, 0));
    EXPECT_EQ(view.getSvalues()[2], 2.0);
    std::vector<double> s;
    view.copySvalues(s);
    EXPECT_TRUE(sameBitsInAll(s, curve.getSvalues()));
}

TEST(CurveView, ComputesTheSvaluesOfACurve) {
    const ParametricCurve curve(kPoints, ParametricCurve::dim3D);
    for (const CurveView& view :
         {CurveView(kPoints), CurveView(TripletView<const double>(kPoints))}) {
        EXPECT_TRUE(view.getSvalues().empty());
        std::vector<double> s;
        view.copySvalues(s);
        EXPECT_TRUE(sameBitsInAll(s, curve.getSvalues()));
        std::vector<Point> points;
        view.copyPoints(points);
        EXPECT_TRUE(sameBitsInAll(points, kPoints));
    }
}

TEST(CurveView, WidensFloats) {
    const std::vector<TripletBase<float>> points = {{0.1f, 0, 0}, {0.2f, 0.3f, 0}};
    const CurveView view = points;
    EXPECT_EQ(view[1], Point(points[1]));
    std::vector<Point> copied;
    view.copyPoints(copied);
    EXPECT_EQ(copied[0], Point(points[0]));
    const std::vector<double> s = {0.0, 0.0};
    const CurveView withS{TripletView<const float>(points), ScalarView<const double>(s)};
    EXPECT_EQ(withS.getSvalues().size(), 2U);
}

TEST(CurveView, IsClosedWhereItsEndsAreEqual) {
    EXPECT_FALSE(CurveView(kPoints).isClosed());
    const std::vector<Point> loop = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -0.0, 0}};
    EXPECT_TRUE(CurveView(loop).isClosed());
}

TEST(CurveView, RefusesFewerThanTwoPoints) {
    EXPECT_THAT(
        [] { CurveView{TripletView<const double>()}; },
        throwsInvalid("CurveView", "constructor", "A curve has two points at least; there are 0."));
    const std::vector<Point> one = {{1, 2, 3}};
    EXPECT_THAT(
        [&] { CurveView{one}; },
        throwsInvalid("CurveView", "constructor", "A curve has two points at least; there are 1."));
}

TEST(CurveView, RefusesAPointThatIsNotFinite) {
    for (const double bad : {kNan, kInfinity, -kInfinity}) {
        for (int component = 0; component < 3; ++component) {
            std::vector<Point> points = kPoints;
            points[2].getRef(component) = bad;
            EXPECT_THAT([&] { CurveView{points}; },
                        throwsInvalid("CurveView", "constructor", "Point 2 is not finite."));
        }
    }
}

TEST(CurveView, RefusesSvaluesThatDoNotFit) {
    const auto make = [](const std::vector<double>& s) {
        CurveView(TripletView<const double>(kPoints), ScalarView<const double>(s));
    };
    make({0, 0, 1});
    EXPECT_THAT(
        [&] {
            make({0, 1});
        },
        throwsInvalid("CurveView", "constructor", "There are 2 s-values for 3 points."));
    EXPECT_THAT(
        [&] {
            make({0, kNan, 1});
        },
        throwsInvalid("CurveView", "constructor", "The s-value of point 1 is not finite."));
    EXPECT_THAT(
        [&] {
            make({0, 1, kInfinity});
        },
        throwsInvalid("CurveView", "constructor", "The s-value of point 2 is not finite."));
    EXPECT_THAT(
        [&] {
            make({0, 1, 0.5});
        },
        throwsInvalid("CurveView", "constructor",
                      "The s-value of point 2 is less than the one before."));
}

TEST(CurveViewDeathTest, IndexBeyondTheLastVertex) {
    const CurveView view = kPoints;
    EXPECT_DEATH(static_cast<void>(view[3]), "");
}

} // namespace
} // namespace qel_test
