// What setters refuse, in which words and order, and what they leave behind.

#include <qel/ParametricCurve.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Curves.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;

const Points kBend = {{0, 0, 0}, {3, 4, 0}, {3, 4, 12}}; // length 17

constexpr auto kUnknownDimension = static_cast<ParametricCurve::dim>(7);
constexpr auto kUnknownNormalization = static_cast<ParametricCurve::normalization>(5);

auto refusedPoints(const std::string& message) {
    return throwsInternal("ParametricCurve", "Constructor", message);
}
auto refusedSetting(const std::string& message) {
    return throwsInternal("ParametricCurve", "setPoints", message);
}

// Unlike anything that is set here, so that every change shows.
ParametricCurve unusualCurve() {
    return ParametricCurve(FloatPoints{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {8, 8, 8}},
                           Values{0.25, 0.5, 0.5, 3.0}, ParametricCurve::dim2D);
}

// -- Counts ----

// Calls every form that takes points, and expects the same of each.
template <typename Refusal>
void expectAllRefuse(const Points& points, const Refusal& refused) {
    ParametricCurve curve = unusualCurve();
    const CurveState before = stateOf(curve);
    const FloatPoints floats = narrowed(points);
    const Values s = {0.0, 0.5, 1.0}; // the points are looked at first
    const auto dim = ParametricCurve::dim3D;
    const auto norm = ParametricCurve::normalizeArc;
    EXPECT_THAT([&] { curve.setPoints(points, dim); }, refused);
    EXPECT_THAT([&] { curve.setPoints(floats, dim); }, refused);
    EXPECT_THAT([&] { curve.setPoints(points, norm, dim); }, refused);
    EXPECT_THAT([&] { curve.setPoints(floats, norm, dim); }, refused);
    EXPECT_THAT([&] { curve.setPoints(points, s, dim); }, refused);
    EXPECT_THAT([&] { curve.setPoints(floats, s, dim); }, refused);
    EXPECT_THAT([&] { ParametricCurve(points, dim); }, refused);
    EXPECT_THAT([&] { ParametricCurve(floats, dim); }, refused);
    EXPECT_THAT([&] { ParametricCurve(floats, norm, dim); }, refused);
    EXPECT_THAT([&] { ParametricCurve(points, s, dim); }, refused);
    EXPECT_THAT([&] { ParametricCurve(floats, s, dim); }, refused);
    EXPECT_EQ(stateOf(curve), before);
}

// The same of every form that takes one component.
template <typename Refusal>
void expectAllRefuse(const Values& values, const Refusal& refused) {
    ParametricCurve curve = unusualCurve();
    const CurveState before = stateOf(curve);
    const std::vector<float> floats(values.begin(), values.end());
    const Values s = {0.0, 0.5, 1.0};
    EXPECT_THAT([&] { curve.setPointsX(values); }, refused);
    EXPECT_THAT([&] { curve.setPointsY(values); }, refused);
    EXPECT_THAT([&] { curve.setPointsZ(values); }, refused);
    EXPECT_THAT([&] { curve.setPointsX(floats); }, refused);
    EXPECT_THAT([&] { curve.setPointsY(floats); }, refused);
    EXPECT_THAT([&] { curve.setPointsZ(floats); }, refused);
    EXPECT_THAT([&] { curve.setPointsX(values, s); }, refused);
    EXPECT_THAT([&] { curve.setPointsY(values, s); }, refused);
    EXPECT_THAT([&] { curve.setPointsZ(values, s); }, refused);
    EXPECT_THAT([&] { curve.setPointsXnormalizeUniform(values); }, refused);
    EXPECT_EQ(stateOf(curve), before);
}

TEST(Validation, NoPointsAreRefusedUnchanged) {
    expectAllRefuse(Points(), refusedPoints("Curve is empty"));
    expectAllRefuse(Values(), refusedPoints("Curve is empty"));
}

TEST(Validation, OnePointIsRefusedWithAFullStop) {
    expectAllRefuse(Points(1), refusedPoints("Curve has only one point in it."));
}

TEST(Validation, OneValueIsRefusedWithoutAFullStop) {
    expectAllRefuse(Values(1), refusedPoints("Curve has only one point in it"));
}

TEST(Validation, CountsThatDifferAreRefusedUnchanged) {
    ParametricCurve curve = unusualCurve();
    const CurveState before = stateOf(curve);
    const auto refused = refusedSetting("Vectors of points and sValues must have the same size.");
    EXPECT_THAT([&] { curve.setPoints(kBend, {0.0, 1.0}, ParametricCurve::dim3D); }, refused);
    EXPECT_THAT(
        [&] { curve.setPoints(narrowed(kBend), std::vector<double>(), ParametricCurve::dim3D); },
        refused);
    EXPECT_THAT([&] { ParametricCurve(kBend, {0, 0, 0, 1}, ParametricCurve::dim3D); }, refused);
    EXPECT_THAT([&] { ParametricCurve(narrowed(kBend), {0, 1}, ParametricCurve::dim3D); }, refused);
    EXPECT_EQ(stateOf(curve), before);
}

TEST(Validation, SingleComponentsRefuseWrongSvaluesUnchanged) {
    ParametricCurve curve = unusualCurve();
    const CurveState before = stateOf(curve);
    const std::vector<double> values = {1.0, 2.0, 3.0, 4.0};
    const auto sizes = refusedSetting("Vectors of points and sValues must have the same size. "
                                      "Points size=4, sValues size=2");
    EXPECT_THAT([&] { curve.setPointsX(values, {0, 1}); }, sizes);
    EXPECT_THAT([&] { curve.setPointsY(values, {0, 1}); }, sizes);
    EXPECT_THAT([&] { curve.setPointsZ(values, {0, 1}); }, sizes);
    const auto falls = refusedSetting("Parametric values  not continuous. i = 3, -0.5 0.25");
    EXPECT_THAT([&] { curve.setPointsX(values, {0, 0, 0.25, -0.5}); }, falls);
    EXPECT_THAT([&] { curve.setPointsY(values, {0, 0, 0.25, -0.5}); }, falls);
    EXPECT_THAT([&] { curve.setPointsZ(values, {0, 0, 0.25, -0.5}); }, falls);
    EXPECT_EQ(stateOf(curve), before);
}

// Points, counts, order of s, dimension; only the last two are found after the points were stored.
TEST(Validation, ChecksComeInOrder) {
    ParametricCurve curve = unusualCurve();
    const CurveState before = stateOf(curve);
    EXPECT_THAT([&] { curve.setPoints(Points(), kUnknownDimension); },
                refusedPoints("Curve is empty"));
    EXPECT_THAT(
        [&] {
            curve.setPoints(Points(1), Values{1, 0}, kUnknownDimension);
        },
        refusedPoints("Curve has only one point in it."));
    EXPECT_THAT([&] { curve.setPoints(Points(1), kUnknownNormalization, kUnknownDimension); },
                refusedPoints("Curve has only one point in it."));
    EXPECT_THAT(
        [&] {
            curve.setPoints(Points(2), Values{3, 2, 1}, kUnknownDimension);
        },
        refusedSetting("Vectors of points and sValues must have the same size."));
    EXPECT_THAT(
        [&] {
            curve.setPointsY(Values{1, 2}, {3, 2, 1});
        },
        refusedSetting("Vectors of points and sValues must have the same size. "
                       "Points size=2, sValues size=3"));
    EXPECT_EQ(stateOf(curve), before);
    EXPECT_THAT(
        [&] {
            curve.setPoints(Points(2), Values{2, 1}, kUnknownDimension);
        },
        refusedSetting("Parametric values  not continuous. i = 1, 1 2"));
    EXPECT_EQ(curve.getDimension(), before.dimension);
}

// -- Normalization ----

TEST(Validation, UniformNormalizationIsRefusedUnchanged) {
    for (const auto norm : {ParametricCurve::normalizeUniform, kUnknownNormalization,
                            static_cast<ParametricCurve::normalization>(-1)}) {
        ParametricCurve curve = unusualCurve();
        const CurveState before = stateOf(curve);
        EXPECT_THAT([&] { curve.setPoints(kBend, norm, ParametricCurve::dim3D); },
                    refusedSetting("Unrecognised normalization of the curve."));
        EXPECT_THAT([&] { curve.setPoints(narrowed(kBend), norm, ParametricCurve::dim3D); },
                    refusedSetting("Unrecognised normalization of the curve."));
        EXPECT_EQ(stateOf(curve), before);
    }
}

TEST(Validation, NormalizationIsLookedAtBeforeTheDimension) {
    ParametricCurve curve;
    EXPECT_THAT([&] { curve.setPoints(kBend, kUnknownNormalization, kUnknownDimension); },
                refusedSetting("Unrecognised normalization of the curve."));
}

// -- Falling s ----

TEST(Validation, NamesTheFirstFallOfS) {
    ParametricCurve curve;
    const auto falls = refusedSetting("Parametric values  not continuous. i = 1, -0 1e-300");
    const Values s = {1e-300, -0.0, -1.0, -2.0};
    EXPECT_THAT([&] { curve.setPoints(Points(4), s, ParametricCurve::dim3D); }, falls);
    EXPECT_THAT([&] { curve.setPointsX(Values(4), s); }, falls);
}

TEST(Validation, KeepsNewPointsWithOldSvaluesWhenSFalls) {
    const Points points = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {0, 0, 1}};
    const std::string message = "Parametric values  not continuous. i = 2, 0.5 0.6";
    ParametricCurve curve(narrowed(kBend), ParametricCurve::dim3D);
    EXPECT_THAT(
        [&] {
            curve.setPoints(points, {0, 0.6, 0.5, 1}, ParametricCurve::dim1D);
        },
        refusedSetting(message));
    const CurveState expected{points, {0.0, 5.0 / 17.0, 1.0}, 2, 0, 17.0, false, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_THAT(
        [&] {
            curve.setPoints(narrowed(points), {0, 0.6, 0.5, 1}, ParametricCurve::dim1D);
        },
        refusedSetting(message));
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_THAT(
        [&] {
            ParametricCurve(points, {0, 0.6, 0.5, 1}, ParametricCurve::dim3D);
        },
        refusedSetting(message));
}

// -- Unrecognised dimension ----

TEST(Validation, KeepsPointsOfAnUnrecognisedDimension) {
    const auto refused = refusedSetting("Unrecognised dimension of the curve.");
    const Points points = {{1, 2, 3}, {4, 5, 6}};
    ParametricCurve curve = unusualCurve();
    EXPECT_THAT([&] { curve.setPoints(points, kUnknownDimension); }, refused);
    // s-values are sized, not computed; the length and the created-as-double flag stay.
    CurveState expected = stateOf(unusualCurve());
    expected.points = points;
    expected.svalues = {0.25, 0.5};
    expected.dimension = 7;
    expected.parametrization = ParametricCurve::parametrizationComputed;
    EXPECT_EQ(stateOf(curve), expected);

    EXPECT_THAT([&] { curve.setPoints(narrowed(kBend), static_cast<ParametricCurve::dim>(-1)); },
                refused);
    expected.points = kBend;
    expected.svalues = {0.25, 0.5, 0.0};
    expected.dimension = -1;
    EXPECT_EQ(stateOf(curve), expected);
}

TEST(Validation, KeepsPointsAndSvaluesOfAnUnrecognisedDimension) {
    const auto refused = refusedSetting("Unrecognised dimension of the curve.");
    ParametricCurve curve = unusualCurve();
    CurveState expected = stateOf(curve);
    expected.points = kBend;
    expected.svalues = {5.0, 6.0, 7.0};
    expected.dimension = 7;
    expected.parametrization = ParametricCurve::parametrizationSupplied;
    EXPECT_THAT([&] { curve.setPoints(kBend, {5.0, 6.0, 7.0}, kUnknownDimension); }, refused);
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_THAT(
        [&] {
            curve.setPoints(narrowed(kBend), {5.0, 6.0, 7.0}, kUnknownDimension);
        },
        refused);
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_THAT([&] { curve.setPoints(kBend, ParametricCurve::normalizeX, kUnknownDimension); },
                refused);
    expected.svalues = {0.0, 1.0, 1.0};
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_THAT([&] { ParametricCurve(kBend, kUnknownDimension); }, refused);
}

} // namespace
