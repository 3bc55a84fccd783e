// Short ways to call a curve: braces, plain integers, loops, and owners.

#include <memory>
#include <numeric>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "support/Curves.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using ::testing::ElementsAre;

const Points kCorner = {{0, 0, 0}, {3, 4, 0}, {3, 4, 12}};

TEST(CallForms, CurvesAreBuiltFromBraces) {
    const ParametricCurve curve({{0, 0, 0}, {3, 4, 0}, {3, 4, 12}}, ParametricCurve::dim3D);
    EXPECT_EQ(stateOf(curve), stateOf(ParametricCurve(kCorner, ParametricCurve::dim3D)));
    EXPECT_TRUE(curve.isCurveCreatedAsDouble());

    const ParametricCurve two({{0, 0, 0}, {1, 0, 0}}, ParametricCurve::dim2D);
    EXPECT_EQ(two.getLength(), 1.0);

    const ParametricCurve supplied({{0, 0, 0}, {3, 4, 0}}, {0.25, 0.75}, ParametricCurve::dim2D);
    EXPECT_THAT(supplied.getSvalues(), ElementsAre(0.25, 0.75));
    EXPECT_EQ(supplied.getParametrization(), ParametricCurve::parametrizationSupplied);

    EXPECT_THAT(
        [] {
            ParametricCurve({{0, 0, 0}}, ParametricCurve::dim2D);
        },
        throwsInternal("ParametricCurve", "Constructor", "Curve has only one point in it."));
}

TEST(CallForms, PointsAreSetFromBraces) {
    ParametricCurve curve;
    curve.setPoints({{0, 0, 0}, {3, 4, 0}, {3, 4, 12}}, ParametricCurve::dim3D);
    EXPECT_EQ(curve.getCurve(), kCorner);
    curve.setPointsX({1, 2, 4});
    EXPECT_EQ(curve.getCurve(), Points({{1, 0, 0}, {2, 0, 0}, {4, 0, 0}}));
    curve.setPointsY({1.5, 2.5});
    EXPECT_EQ(curve.getCurve(), Points({{0, 1.5, 0}, {0, 2.5, 0}}));
    curve.setPointsZ({1, 2});
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 1}, {0, 0, 2}}));
}

TEST(CallForms, ProbesAreGivenInBraces) {
    const ParametricCurve curve(kCorner, ParametricCurve::dim3D);
    double s = 0.0;
    double expected = 0.0;
    EXPECT_EQ(curve.projectPoint({5, 4, 6}, s), curve.projectPoint(Point(5, 4, 6), expected));
    EXPECT_EQ(s, expected);
    EXPECT_EQ(curve.projectPoint({5, 4, 6}), Point(3, 4, 6));
    EXPECT_EQ(curve.getClosestPoint({3, 4, 1}), 1);
    const double probe[3] = {0.5, 0.25, 8.0};
    EXPECT_EQ(curve.projectPoint(probe), curve.projectPoint(Point(0.5, 0.25, 8.0)));
}

TEST(CallForms, PointsAreCutOutByPlainIntegers) {
    const ParametricCurve curve(kCorner, ParametricCurve::dim3D);
    Points points;
    curve.getCurve(0, 1, points);
    EXPECT_EQ(points, Points({{0, 0, 0}, {3, 4, 0}}));
    FloatPoints floats;
    curve.getCurve(1U, 2U, floats);
    EXPECT_EQ(floats, FloatPoints({{3, 4, 0}, {3, 4, 12}}));
    curve.getCurve(0.0, 1.0, points); // still the piece between two s-values
    EXPECT_EQ(points, kCorner);
    curve.getCurve(std::size_t{0}, std::size_t{0}, points);
    EXPECT_EQ(points, Points({{0, 0, 0}}));

    const CurveState before = stateOf(curve);
    EXPECT_THROW(curve.getCurve(-1, 1, points), qel::internal::error);
    EXPECT_THROW(curve.getCurve(0, 3, floats), qel::internal::error);
    EXPECT_EQ(stateOf(curve), before);
}

TEST(CallForms, LoopsGoOverThePoints) {
    const ParametricCurve curve(kCorner, ParametricCurve::dim3D);
    Points seen;
    for (const Point& p : curve) {
        seen.push_back(p);
    }
    EXPECT_EQ(seen, kCorner);
    EXPECT_EQ(curve.end() - curve.begin(), 3);
}

TEST(CallForms, ANewCurveHasAnOwner) {
    const ParametricCurve curve(kCorner, ParametricCurve::dim3D);
    const std::vector<double> svalues = {0.0, 0.25, 1.0};
    const std::unique_ptr<ParametricCurve> made = curve.makeCurveBySvalues(svalues, true);
    const std::unique_ptr<ParametricCurve> expected(curve.createNewCurveBySvalues(svalues, true));
    EXPECT_EQ(stateOf(*made), stateOf(*expected));
    EXPECT_THROW(curve.makeCurveBySvalues({0.5}, true), qel::internal::error);
}

// -- What compiled before means what it meant ----

TEST(CallForms, VectorsAreTakenAsBefore) {
    const FloatPoints floats = {{0, 0, 0}, {1, 0, 0}};
    EXPECT_FALSE(ParametricCurve(floats, ParametricCurve::dim2D).isCurveCreatedAsDouble());
    EXPECT_TRUE(ParametricCurve(Points{{0, 0, 0}, {1, 0, 0}}, ParametricCurve::dim2D)
                    .isCurveCreatedAsDouble());
    const ParametricCurve supplied(Points{{0, 0, 0}, {1, 0, 0}}, {0.5, 2.0},
                                   ParametricCurve::dim2D);
    EXPECT_THAT(supplied.getSvalues(), ElementsAre(0.5, 2.0));
    const FloatPoint probe(1, 2, 3);
    float s = 0.0F;
    static_assert(std::is_same<decltype(supplied.projectPoint(probe, s)), FloatPoint>::value, "");
    static_assert(std::is_same<decltype(supplied.projectPoint(probe)), FloatPoint>::value, "");
    EXPECT_EQ(supplied.getClosestPoint(probe), 1);
}

TEST(CallForms, PointsInBracesGoWithSvaluesAndNormalizations) {
    const std::vector<double> svalues = {0.5, 4};
    const ParametricCurve built({{0, 1, 0}, {2, 3, 0}}, svalues, ParametricCurve::dim2D);
    EXPECT_EQ(built.getSvalues(), svalues);
    EXPECT_EQ(built.getCurve(), Points({{0, 1, 0}, {2, 3, 0}}));
    ParametricCurve curve;
    curve.setPoints({{0, 0.1, 0}, {2, 3, 0}}, svalues, ParametricCurve::dim2D);
    EXPECT_EQ(curve.getSvalues(), svalues);
    EXPECT_EQ(curve.getFirstPoint().y, 0.1) << "points in braces are double";
    curve.setPoints({{0, 1, 0}, {2, 3, 0}}, {0.25, 3}, ParametricCurve::dim2D);
    EXPECT_EQ(curve.getSvalues(), std::vector<double>({0.25, 3}));
    curve.setPoints({{0, 1, 0}, {9, 2, 0}, {2, 3, 0}}, ParametricCurve::normalizeY,
                    ParametricCurve::dim2D);
    EXPECT_EQ(curve.getSvalues(), std::vector<double>({0, 0.5, 1}));
}

TEST(CallForms, IndicesOfTwoIntegerTypesAreIndices) {
    const ParametricCurve curve({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, ParametricCurve::dim3D);
    const std::size_t last = 2;
    Points points;
    curve.getCurve(1, last, points);
    EXPECT_EQ(points, Points({{1, 0, 0}, {2, 0, 0}}));
}

} // namespace
