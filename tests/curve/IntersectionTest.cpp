// Crossings of a curve with a segment of the plane and with another curve.

#include <qel/ParametricCurve.h>

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/LineSegment2D.h>

#include "support/Curves.h"
#include "support/Errors.h"
#include "support/StandardStreams.h"

namespace {

using namespace qel_test;
using qel::Doublet;
using qel::LineSegment2D;

// Keeps what is reported while it lives.
class Reports : public qel::ErrorReporter {
public:
    Reports() : before_(setInstance(this)) {}
    ~Reports() override { setInstance(before_); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    void report(const qel::Error& error) override {
        ++count;
        last = describe(error);
    }

    int count = 0;
    std::string last;

private:
    qel::ErrorReporter* before_;
};

const Points kCorner{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}};
const FloatPoint kUntouched(7, 8, 9);

ParametricCurve plane(const Points& points) {
    return {points, ParametricCurve::dim2D};
}

struct Result {
    bool meet;
    FloatPoint point;
};

Result with(const ParametricCurve& curve, const Doublet& from, const Doublet& to) {
    Result result{false, kUntouched};
    result.meet = curve.intersectWithSegment(LineSegment2D(from, to), result.point);
    return result;
}

Result with(const ParametricCurve& curve, const ParametricCurve& other) {
    Result result{false, kUntouched};
    result.meet = curve.intersectWithCurve(other, result.point);
    return result;
}

// -- A segment ----

TEST(Intersection, SegmentAcrossTheCurveGivesTheCrossing) {
    const Reports reports;
    const Result result = with(plane(kCorner), {1, -1}, {1, 1});
    EXPECT_TRUE(result.meet);
    EXPECT_EQ(result.point, FloatPoint(1, 0, 0));
    EXPECT_FALSE(std::signbit(result.point.z));
    EXPECT_EQ(reports.count, 0);
}

TEST(Intersection, SegmentBesideTheCurveLeavesThePointAlone) {
    const Result result = with(plane(kCorner), {3, -1}, {3, 1});
    EXPECT_FALSE(result.meet);
    EXPECT_EQ(result.point, kUntouched);
}

TEST(Intersection, CrossingAtAVertexIsOnTheEarlierSegment) {
    const Result result = with(plane(kCorner), {2, -1}, {2, 1});
    EXPECT_TRUE(result.meet);
    EXPECT_EQ(result.point, FloatPoint(2, 0, 0));
}

TEST(Intersection, OnlyTheFirstCrossingInPointOrderIsFound) {
    const Points zigzag{{0, 0, 0}, {2, 2, 0}, {4, 0, 0}, {6, 2, 0}};
    EXPECT_EQ(with(plane(zigzag), {7, 1}, {-1, 1}).point, FloatPoint(1, 1, 0));
    EXPECT_EQ(with(plane({zigzag.rbegin(), zigzag.rend()}), {7, 1}, {-1, 1}).point,
              FloatPoint(5, 1, 0));
}

TEST(Intersection, SlackReachesOneTenThousandthBeyondTheEnds) {
    const ParametricCurve line = plane({{0, 0, 0}, {1, 0, 0}});
    const Result within = with(line, {1.00005f, -1}, {1.00005f, 1});
    EXPECT_TRUE(within.meet);
    EXPECT_FLOAT_EQ(within.point.x, 1.00005f);
    EXPECT_FALSE(with(line, {1.001f, -1}, {1.001f, 1}).meet);
    EXPECT_TRUE(with(line, {0.5f, 0.00005f}, {0.5f, 1.00005f}).meet);
    EXPECT_FALSE(with(line, {0.5f, 0.001f}, {0.5f, 1.001f}).meet);
}

TEST(Intersection, ParallelAndZeroLengthSegmentsMeetNothing) {
    const ParametricCurve line = plane({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}});
    EXPECT_FALSE(with(line, {0, 0}, {1, 0}).meet);
    EXPECT_FALSE(with(line, {0, 1}, {1, 1}).meet);
    EXPECT_FALSE(with(line, {0.5f, 0}, {0.5f, 0}).meet);
    EXPECT_FALSE(with(plane({{1, 0, 0}, {1, 0, 0}}), {1, -1}, {1, 1}).meet);
}

// A NaN parameter lies beyond neither limit, so a segment with a NaN meets everything.
TEST(Intersection, ANanParameterIsAccepted) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const ParametricCurve curve = plane({{0, 0, 0}, {1, 0, 0}, {nan, 0, 0}, {5, 5, 0}});
    const Result result = with(curve, {100, 100}, {101, 102});
    EXPECT_TRUE(result.meet);
    EXPECT_TRUE(std::isnan(result.point.x));
    EXPECT_EQ(result.point.z, 0.0f);
    EXPECT_TRUE(with(plane({{100, 100, 0}, {101, 102, 0}}), curve).meet);
    EXPECT_TRUE(with(curve, plane({{100, 100, 0}, {101, 102, 0}})).meet);
}

// The ends are rounded to float before anything else.
TEST(Intersection, PointsAreRoundedToFloat) {
    const double nearlyOne = 1.0 + 1e-9;
    const Result result = with(plane({{nearlyOne, -1, 0}, {nearlyOne, 1, 0}}), {0, 0}, {2, 0});
    EXPECT_EQ(result.point, FloatPoint(1, 0, 0));
}

TEST(Intersection, ReportsACurveThatIsNotTwoDimensionalAndGoesOn) {
    const Points points{{0, 0, 5}, {2, 0, -5}, {2, 2, 1}};
    for (const auto dimension : {ParametricCurve::dim3D, ParametricCurve::dim1D}) {
        const Reports reports;
        const ParametricCurve curve(points, dimension);
        const Result result = with(curve, {1, -1}, {1, 1});
        EXPECT_TRUE(result.meet);
        EXPECT_EQ(result.point, FloatPoint(1, 0, 0)) << "by x and y alone";
        EXPECT_EQ(reports.count, 1);
        EXPECT_EQ(reports.last,
                  describe(qel::data::invalid("ParametricCurve", "intersectWithSegment",
                                              "Intersecting two curves that are not 2 Dimensional.",
                                              qel::reportedError)));
        with(curve, {50, 0}, {51, 0});
        EXPECT_EQ(reports.count, 2) << "once a call, whether they meet or not";
    }
}

TEST(Intersection, BuiltInReporterWritesToStandardError) {
    const CapturedStandardError err;
    const std::size_t before = qel::ErrorReporter::instance()->getReportCount();
    with(ParametricCurve(kCorner, ParametricCurve::dim3D), {1, -1}, {1, 1});
    EXPECT_EQ(qel::ErrorReporter::instance()->getReportCount(), before + 1);
    EXPECT_NE(err.text().find("Intersecting two curves that are not 2 Dimensional."),
              std::string::npos);
}

// -- Another curve ----

TEST(Intersection, CurvesGiveTheFirstCrossingAlongThisOne) {
    const ParametricCurve zigzag = plane({{0, 0, 0}, {2, 2, 0}, {4, 0, 0}, {6, 2, 0}});
    const ParametricCurve back = plane({{7, 1, 0}, {3.5, 1, 0}, {-1, 1, 0}});
    EXPECT_EQ(with(zigzag, back).point, FloatPoint(1, 1, 0));
    EXPECT_EQ(with(back, zigzag).point, FloatPoint(5, 1, 0)) << "the zigzag's own order within";
    EXPECT_FALSE(with(zigzag, plane({{0, 9, 0}, {9, 9, 0}})).meet);
    EXPECT_EQ(with(zigzag, plane({{0, 9, 0}, {9, 9, 0}})).point, kUntouched);
}

TEST(Intersection, OnlyTheOthersDimensionIsTestedOnceForEverySegmentTried) {
    const Points zigzag{{0, 0, 0}, {2, 2, 0}, {4, 0, 0}, {6, 2, 0}};
    const ParametricCurve inPlane = plane(zigzag);
    const ParametricCurve inSpace(zigzag, ParametricCurve::dim3D);
    const auto reportsOf = [](const ParametricCurve& curve, const ParametricCurve& other) {
        const Reports reports;
        with(curve, other);
        return reports.count;
    };
    const Points far{{0, 9, 0}, {9, 9, 0}};
    EXPECT_EQ(reportsOf(inSpace, plane(far)), 0);
    EXPECT_EQ(reportsOf(inPlane, ParametricCurve(far, ParametricCurve::dim3D)), 3);
    const Points third{{5, 0, 0}, {5, 2, 0}};
    EXPECT_EQ(reportsOf(inPlane, ParametricCurve(third, ParametricCurve::dim3D)), 3);
    const Points first{{1, 0, 0}, {1, 2, 0}};
    EXPECT_EQ(reportsOf(inPlane, ParametricCurve(first, ParametricCurve::dim3D)), 1);
}

// Long enough for the search by boxes: the reports are as many all the same.
TEST(Intersection, ReportsOfLongCurvesAreThoseOfThePlainLoop) {
    Points wave;
    Points line;
    for (int i = 0; i < 3000; ++i) {
        wave.emplace_back(0.01 * i, std::sin(0.01 * i), 0.0);
        line.emplace_back(0.01 * i, 1.5, 0.0);
    }
    const ParametricCurve other(line, ParametricCurve::dim3D);
    {
        const Reports reports;
        EXPECT_FALSE(with(plane(wave), other).meet);
        EXPECT_EQ(reports.count, 2999);
    }
    wave[2500].y = 2.0;
    const Reports reports;
    EXPECT_TRUE(with(plane(wave), other).meet);
    EXPECT_EQ(reports.count, 2500);
}

TEST(Intersection, ChangesNeitherCurve) {
    const ParametricCurve a(kCorner, ParametricCurve::dim2D);
    const ParametricCurve b(Points{{1, -1, 0}, {1, 1, 0}}, ParametricCurve::dim2D);
    const CurveState before[] = {stateOf(a), stateOf(b)};
    EXPECT_TRUE(with(a, b).meet);
    EXPECT_TRUE(with(a, a).meet) << "a curve meets itself";
    EXPECT_EQ(stateOf(a), before[0]);
    EXPECT_EQ(stateOf(b), before[1]);
}

} // namespace
