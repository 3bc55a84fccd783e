// Construction, and the state that every setter leaves.

#include <qel/ParametricCurve.h>

#include <cmath>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"

namespace {

using namespace qel_test;
using testing::ElementsAre;

const Points kBend = {{0, 0, 0}, {3, 4, 0}, {3, 4, 12}}; // length 17

// A curve whose every field differs from the default's.
ParametricCurve unusualCurve() {
    ParametricCurve curve(kBend, ParametricCurve::dim3D);
    curve.setPoints(FloatPoints{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {8, 8, 8}},
                    std::vector<double>{0.25, 0.5, 0.5, 3.0}, ParametricCurve::dim2D);
    Points unused;
    curve.convertToART0({1, 2, 3}, {0, 2, 0}, unused); // for its axis
    return curve;
}

// -- Enumerations ----

TEST(Construction, EnumerationsHaveTheirBindingValues) {
    EXPECT_EQ(ParametricCurve::dim1D, 0);
    EXPECT_EQ(ParametricCurve::dim2D, 1);
    EXPECT_EQ(ParametricCurve::dim3D, 2);
    EXPECT_EQ(ParametricCurve::normalizeX, 0);
    EXPECT_EQ(ParametricCurve::normalizeY, 1);
    EXPECT_EQ(ParametricCurve::normalizeZ, 2);
    EXPECT_EQ(ParametricCurve::normalizeArc, 3);
    EXPECT_EQ(ParametricCurve::normalizeUniform, 4);
    EXPECT_EQ(ParametricCurve::parametrizationComputed, 0);
    EXPECT_EQ(ParametricCurve::parametrizationSupplied, 1);
    EXPECT_EQ(ParametricCurve::singlePrecision, 0);
    EXPECT_EQ(ParametricCurve::doublePrecision, 1);
    EXPECT_EQ(sizeof(ParametricCurve::dim), 4u);
    EXPECT_EQ(sizeof(ParametricCurve::parametrization), 4u);
}

// -- Constructors ----

TEST(Construction, IsDestroyedThroughAPointerToItsBase) {
    EXPECT_TRUE(std::has_virtual_destructor<ParametricCurve>::value);
}

TEST(Construction, DefaultIsTheDiagonalOfTheUnitCube) {
    const CurveState expected{{{0, 0, 0}, {1, 1, 1}}, {0.0, 1.0}, 2,  0,
                              std::sqrt(3.0),         true,       {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(ParametricCurve()), expected);
}

TEST(Construction, FromDoublePoints) {
    const CurveState expected{kBend, {0.0, 5.0 / 17.0, 1.0}, 2, 0, 17.0, true, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(ParametricCurve(kBend, ParametricCurve::dim3D)), expected);
}

TEST(Construction, FromFloatPoints) {
    const CurveState expected{kBend, {0.0, 5.0 / 17.0, 1.0}, 2, 0, 17.0, false, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(ParametricCurve(narrowed(kBend), ParametricCurve::dim3D)), expected);
}

TEST(Construction, FromFloatPointsAndANormalization) {
    const ParametricCurve curve(narrowed(kBend), ParametricCurve::normalizeX,
                                ParametricCurve::dim2D);
    const CurveState expected{
        {{0, 0, 0}, {3, 4, 0}, {3, 4, 0}}, {0.0, 1.0, 1.0}, 1, 1, 0.0, false, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(curve), expected);
}

TEST(Construction, FromDoublePointsAndSvalues) {
    const ParametricCurve curve(kBend, {2.0, 2.0, 9.0}, ParametricCurve::dim1D);
    const CurveState expected{
        {{0, 0, 0}, {3, 0, 0}, {3, 0, 0}}, {2.0, 2.0, 9.0}, 0, 1, 0.0, true, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(curve), expected);
}

TEST(Construction, FromFloatPointsAndSvalues) {
    const ParametricCurve curve(narrowed(kBend), {2.0, 2.0, 9.0}, ParametricCurve::dim3D);
    const CurveState expected{kBend, {2.0, 2.0, 9.0}, 2, 1, 0.0, false, {}, {0, 0, 1}};
    EXPECT_EQ(stateOf(curve), expected);
}

TEST(Construction, CopiesAndAssignmentsTakeEveryField) {
    const ParametricCurve original = unusualCurve();
    const ParametricCurve copy(original);
    EXPECT_EQ(stateOf(copy), stateOf(original));
    ParametricCurve assigned;
    EXPECT_EQ(&(assigned = original), &assigned);
    EXPECT_EQ(stateOf(assigned), stateOf(original));
    const ParametricCurve& itself = assigned;
    assigned = itself;
    EXPECT_EQ(stateOf(assigned), stateOf(original));
}

// The axis belongs to the conversions: points that are set anew leave it alone.
TEST(Construction, SettersKeepTheAxis) {
    ParametricCurve curve = unusualCurve();
    curve.setPoints(kBend, ParametricCurve::dim3D);
    curve.setPoints(kBend, {0, 1, 2}, ParametricCurve::dim3D);
    curve.setPointsZ(Values{1, 2});
    EXPECT_EQ(curve.getAxisPoint(), Point(1, 2, 3));
    EXPECT_EQ(curve.getAxisDirection(), Point(0, 1, 0));
}

TEST(Construction, CopiesAreIndependent) {
    ParametricCurve curve(kBend, ParametricCurve::dim3D);
    const ParametricCurve copy(curve);
    curve.setPointsX(std::vector<double>{5.0, 6.0});
    EXPECT_EQ(copy.getCurve(), kBend);
}

// -- Computed s ----

// Onto a curve with everything else: all of it but the axis is set anew.
TEST(Construction, SIsArcLengthOverLength) {
    ParametricCurve curve = unusualCurve();
    CurveState expected = stateOf(curve);
    expected.points = kBend;
    expected.svalues = {0.0, 5.0 / 17.0, 1.0};
    expected.length = 17.0;
    expected.dimension = ParametricCurve::dim3D;
    expected.parametrization = ParametricCurve::parametrizationComputed;
    expected.createdAsDouble = true;
    curve.setPoints(kBend, ParametricCurve::dim3D);
    EXPECT_EQ(stateOf(curve), expected);
    curve = unusualCurve();
    expected.createdAsDouble = false;
    curve.setPoints(narrowed(kBend), ParametricCurve::dim3D);
    EXPECT_EQ(stateOf(curve), expected);
}

TEST(Construction, ArcNormalizationGivesTheSameS) {
    ParametricCurve curve;
    curve.setPoints(kBend, ParametricCurve::normalizeArc, ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 5.0 / 17.0, 1.0));
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationSupplied);
}

TEST(Construction, ComponentNormalizationsFollowOneComponent) {
    ParametricCurve curve;
    curve.setPoints(kBend, ParametricCurve::normalizeX, ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 1.0, 1.0));
    curve.setPoints(kBend, ParametricCurve::normalizeY, ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 1.0, 1.0));
    curve.setPoints(kBend, ParametricCurve::normalizeZ, ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.0, 1.0));
    EXPECT_EQ(curve.getCurve(), kBend);
}

// s is computed from the points as given, whatever the dimension drops afterwards.
TEST(Construction, NormalizationSeesComponentsThatTheDimensionDrops) {
    ParametricCurve curve;
    curve.setPoints(Points{{0, 0, 0}, {0, 0, 1}, {0, 0, 4}}, ParametricCurve::normalizeZ,
                    ParametricCurve::dim1D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.25, 1.0));
    EXPECT_EQ(curve.getLastPoint(), Point(0, 0, 0));
}

// Without a normalization, the stored points count.
TEST(Construction, ComputedSSeesOnlySignificantComponents) {
    ParametricCurve curve;
    curve.setPoints(Points{{0, 5, 9}, {1, 7, 3}, {4, 0, 0}}, ParametricCurve::dim1D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.25, 1.0));
    EXPECT_EQ(curve.getLength(), 4.0);
    curve.setPoints(Points{{0, 0, 9}, {3, 4, 3}, {3, 9, 0}}, ParametricCurve::dim2D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.5, 1.0));
    EXPECT_EQ(curve.getPointAtIndex(1), Point(3, 4, 0));
}

TEST(Construction, CoincidentPointsGetZerosAndOne) {
    const ParametricCurve curve(Points(5, Point(1, 2, 3)), ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.0, 0.0, 0.0, 1.0));
    EXPECT_EQ(curve.getLength(), 0.0);
}

TEST(Construction, AStepToAMarkerIsTheLargestFloat) {
    for (const int component : {0, 1, 2}) {
        Points points = {{0, 0, 0}, {0, 0, 0}};
        points[1].getRef(component) = kMarker;
        EXPECT_EQ(ParametricCurve(points, ParametricCurve::dim3D).getLength(), kUndefinedLength);
        points[1].getRef(component) = -kMarker; // an ordinary number, whose square overflows
        EXPECT_EQ(ParametricCurve(points, ParametricCurve::dim3D).getLength(), kInfinity);
    }
    // The rule looks at the difference, not at the points.
    const ParametricCurve shifted(Points{{-1e300, 0, 0}, {kMarker, 0, 0}, {kMarker, 1, 0}},
                                  ParametricCurve::dim3D);
    EXPECT_EQ(shifted.getLength(), kInfinity);
}

TEST(Construction, AnInfiniteOrNaNLengthGivesZerosAndOne) {
    for (const double odd : {kInfinity, kNaN}) {
        const ParametricCurve curve(Points{{0, 0, 0}, {odd, 0, 0}, {1, 0, 0}, {2, 0, 0}},
                                    ParametricCurve::dim3D);
        EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.0, 0.0, 1.0));
        EXPECT_FALSE(std::isfinite(curve.getLength()));
    }
}

// -- Uniform s ----

TEST(Construction, UniformSOnFourValues) {
    ParametricCurve curve;
    curve.setPointsXnormalizeUniform({9.0, 9.0, -1.0, 4.0});
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 1.0 / 3.0, 2.0 / 3.0, 1.0));
    EXPECT_EQ(curve.getCurve(), (Points{{9, 0, 0}, {9, 0, 0}, {-1, 0, 0}, {4, 0, 0}}));
    EXPECT_EQ(curve.getDimension(), ParametricCurve::dim1D);
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationSupplied);
    EXPECT_TRUE(curve.isCurveCreatedAsDouble());
    EXPECT_EQ(curve.getLength(), std::sqrt(3.0)) << "kept from before";
}

// The step is divided once and multiplied; the end is exactly 1 all the same.
TEST(Construction, UniformSIsAMultipleOfOneStep) {
    for (std::size_t n = 2; n < 200; ++n) {
        ParametricCurve curve;
        curve.setPointsXnormalizeUniform(std::vector<double>(n, 1.0));
        const double step = 1.0 / static_cast<double>(n - 1);
        for (std::size_t i = 0; i + 1 < n; ++i) {
            ASSERT_EQ(curve.getSvalues()[i], static_cast<double>(i) * step);
        }
        ASSERT_EQ(curve.getSvalues().back(), 1.0);
    }
}

// -- Supplied s ----

TEST(Construction, EqualNeighbouringSvaluesAreAccepted) {
    const Points points(4, Point(1, 1, 1));
    const ParametricCurve curve(points, {0.0, 0.5, 0.5, 1.0}, ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 0.5, 0.5, 1.0));
}

// Only a fall is refused: a NaN is neither below nor above its neighbours.
TEST(Construction, ANaNAmongSvaluesIsAccepted) {
    const Values s = {0.0, kNaN, -1.0};
    EXPECT_TRUE(sameBitsInAll(ParametricCurve(kBend, s, ParametricCurve::dim3D).getSvalues(), s));
    ParametricCurve curve;
    curve.setPointsZ({1.0, 2.0, 3.0}, s);
    EXPECT_TRUE(sameBitsInAll(curve.getSvalues(), s));
}

TEST(Construction, SuppliedSLeavesTheLength) {
    ParametricCurve curve(kBend, ParametricCurve::dim3D);
    curve.setPoints(Points{{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0}, ParametricCurve::dim3D);
    EXPECT_EQ(curve.getLength(), 17.0);
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationSupplied);
}

TEST(Construction, TakesItsOwnPointsAndSvalues) {
    ParametricCurve curve(kBend, ParametricCurve::dim3D);
    curve.setPoints(curve.getCurve(), curve.getSvalues(), ParametricCurve::dim2D);
    EXPECT_EQ(curve.getCurve(), (Points{{0, 0, 0}, {3, 4, 0}, {3, 4, 0}}));
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 5.0 / 17.0, 1.0));
    curve.setPoints(curve.getCurve(), ParametricCurve::dim3D);
    EXPECT_THAT(curve.getSvalues(), ElementsAre(0.0, 1.0, 1.0));
}

// -- Single components ----

TEST(Construction, SingleComponentsFillOneAxisOfASpaceCurve) {
    const std::vector<double> values = {0.0, 3.0, -1.0};
    const std::vector<float> floats = {0.0f, 3.0f, -1.0f};
    const std::vector<double> s = {0.0, 3.0 / 7.0, 1.0};
    CurveState expected{{}, s, 2, 0, 7.0, true, {}, {0, 0, 1}};
    // Onto a plane curve with x and y, given in the other precision: all of that must go.
    const auto check = [&expected](auto set, Points points, bool createdAsDouble) {
        ParametricCurve curve =
            createdAsDouble ? ParametricCurve(narrowed(kBend), {0, 0, 1}, ParametricCurve::dim2D)
                            : ParametricCurve(kBend, {0, 0, 1}, ParametricCurve::dim2D);
        set(curve);
        expected.points = std::move(points);
        expected.createdAsDouble = createdAsDouble;
        EXPECT_EQ(stateOf(curve), expected);
    };
    const Points alongX = {{0, 0, 0}, {3, 0, 0}, {-1, 0, 0}};
    const Points alongY = {{0, 0, 0}, {0, 3, 0}, {0, -1, 0}};
    const Points alongZ = {{0, 0, 0}, {0, 0, 3}, {0, 0, -1}};
    check([&](ParametricCurve& c) { c.setPointsX(values); }, alongX, true);
    check([&](ParametricCurve& c) { c.setPointsX(floats); }, alongX, false);
    check([&](ParametricCurve& c) { c.setPointsY(values); }, alongY, true);
    check([&](ParametricCurve& c) { c.setPointsY(floats); }, alongY, false);
    check([&](ParametricCurve& c) { c.setPointsZ(values); }, alongZ, true);
    check([&](ParametricCurve& c) { c.setPointsZ(floats); }, alongZ, false);

    expected.svalues = {-1.0, -1.0, 5.0};
    expected.parametrization = 1;
    expected.length = 0.0; // that of the curve before, which never computed one
    check([&](ParametricCurve& c) { c.setPointsX(values, expected.svalues); }, alongX, true);
    check([&](ParametricCurve& c) { c.setPointsY(values, expected.svalues); }, alongY, true);
    check([&](ParametricCurve& c) { c.setPointsZ(values, expected.svalues); }, alongZ, true);
}

// -- Precision ----

TEST(Construction, TheLastPointsGivenTellThePrecision) {
    const auto dim = ParametricCurve::dim3D;
    const auto norm = ParametricCurve::normalizeY;
    const Values s = {0.0, 0.5, 1.0};
    const auto isOfDoublesAfter = [](ParametricCurve curve, auto set) {
        set(curve);
        return curve.isCurveCreatedAsDouble();
    };
    const auto doubles = [&](auto set) {
        return isOfDoublesAfter(ParametricCurve(narrowed(kBend), dim), set);
    };
    const auto floats = [&](auto set) {
        return !isOfDoublesAfter(ParametricCurve(kBend, dim), set);
    };
    EXPECT_TRUE(doubles([&](ParametricCurve& c) { c.setPoints(kBend, dim); }));
    EXPECT_TRUE(doubles([&](ParametricCurve& c) { c.setPoints(kBend, norm, dim); }));
    EXPECT_TRUE(doubles([&](ParametricCurve& c) { c.setPoints(kBend, s, dim); }));
    EXPECT_TRUE(doubles([&](ParametricCurve& c) { c.setPointsXnormalizeUniform(s); }));
    EXPECT_TRUE(floats([&](ParametricCurve& c) { c.setPoints(narrowed(kBend), dim); }));
    EXPECT_TRUE(floats([&](ParametricCurve& c) { c.setPoints(narrowed(kBend), norm, dim); }));
    EXPECT_TRUE(floats([&](ParametricCurve& c) { c.setPoints(narrowed(kBend), s, dim); }));
}

// -- Accessors ----

// -- Vectors and curves that are moved in ----

constexpr auto kNoDimension = static_cast<ParametricCurve::dim>(7);

// What a setter leaves, also where it refuses.
template <typename Set>
CurveState stateAfter(Set set, std::string& error) {
    ParametricCurve curve(narrowed(kBend), {0, 0.5, 1}, ParametricCurve::dim2D);
    try {
        set(curve);
    } catch (const qel::internal::error& refusal) {
        error = refusal.what();
    }
    return stateOf(curve);
}

TEST(Construction, VectorsMovedInLeaveWhatCopiesLeave) {
    const std::vector<Points> lists = {
        {}, {{1, 2, 3}}, {{1, 2, 3}, {4, 6, 3}}, kBend, Points(50, Point(1, 2, 3))};
    for (const auto dimension :
         {ParametricCurve::dim1D, ParametricCurve::dim2D, ParametricCurve::dim3D, kNoDimension}) {
        for (const Points& points : lists) {
            SCOPED_TRACE(std::to_string(points.size()) + " points");
            std::string expected;
            std::string error;
            EXPECT_EQ(
                stateAfter([&](ParametricCurve& c) { c.setPoints(Points(points), dimension); },
                           error),
                stateAfter([&](ParametricCurve& c) { c.setPoints(points, dimension); }, expected));
            EXPECT_EQ(error, expected);
            for (const Values& s : {Values(points.size(), 0.5), Values{0, 1}, Values{1, 0, 2}}) {
                EXPECT_EQ(stateAfter(
                              [&](ParametricCurve& c) {
                                  c.setPoints(Points(points), Values(s), dimension);
                              },
                              error),
                          stateAfter([&](ParametricCurve& c) { c.setPoints(points, s, dimension); },
                                     expected));
                EXPECT_EQ(error, expected);
            }
        }
    }
}

TEST(Construction, AVectorMovedInGivesItsMemoryAndGetsThatOfTheCurve) {
    Points points = kBend;
    const Point* const memory = points.data();
    ParametricCurve curve(std::move(points), ParametricCurve::dim3D);
    EXPECT_EQ(curve.getCurve().data(), memory);
    Points others(7, Point(1, 2, 3));
    curve.setPoints(std::move(others), ParametricCurve::dim3D);
    EXPECT_EQ(others, kBend);
    EXPECT_EQ(others.data(), memory);
}

TEST(Construction, SettersReuseMemoryThatIsEnough) {
    ParametricCurve curve(Points(100, Point(1, 2, 3)), ParametricCurve::dim3D);
    const Point* const points = curve.getCurve().data();
    const double* const svalues = curve.getSvalues().data();
    const ParametricCurve bend(kBend, ParametricCurve::dim3D);
    curve.setPoints(kBend, ParametricCurve::dim3D);
    curve.setPoints(narrowed(kBend), {0, 0.5, 1}, ParametricCurve::dim3D);
    curve.setPointsX(Values(100, 1.0));
    curve = bend;
    EXPECT_EQ(curve.getCurve().data(), points);
    EXPECT_EQ(curve.getSvalues().data(), svalues);
    EXPECT_EQ(stateOf(curve), stateOf(bend));
}

TEST(Construction, MovesTakeEveryFieldAndTheMemory) {
    ParametricCurve source(narrowed(kBend), {0, 0.5, 1}, ParametricCurve::dim2D);
    Points out;
    source.convertToART0({1, 2, 3}, {0, 1, 1}, out);
    const CurveState expected = stateOf(source);
    const Point* const memory = source.getCurve().data();
    ParametricCurve constructed(std::move(source));
    EXPECT_EQ(stateOf(constructed), expected);
    EXPECT_EQ(constructed.getCurve().data(), memory);
    ParametricCurve assigned;
    assigned = std::move(constructed);
    EXPECT_EQ(stateOf(assigned), expected);
    EXPECT_EQ(assigned.getCurve().data(), memory);
}

TEST(Construction, ACurveThatWasMovedFromCanBeSetAndAssigned) {
    ParametricCurve source(kBend, ParametricCurve::dim3D);
    const ParametricCurve taken(std::move(source));
    source.setPoints(kBend, ParametricCurve::dim3D);
    EXPECT_EQ(stateOf(source), stateOf(taken));
    const ParametricCurve again(std::move(source));
    source = again;
    EXPECT_EQ(stateOf(source), stateOf(taken));
}

TEST(Construction, AccessorsHandOutAndCopy) {
    const ParametricCurve curve(kBend, ParametricCurve::dim3D);
    EXPECT_EQ(curve.getSize(), 3u);
    Points points(9);
    curve.getCurve(points);
    EXPECT_EQ(points, kBend);
    std::vector<double> svalues(9);
    curve.getSvalues(svalues);
    EXPECT_EQ(svalues, curve.getSvalues());
    EXPECT_EQ(&curve.getCurve(), &curve.getCurve());
}

// -- Against the reference ----

TEST(Construction, RandomCurvesFollowTheRulesBitForBit) {
    RandomCurves random(31);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        const Points given = random.points(round % 50 == 0 ? 3000 : 40);
        const auto dimension = static_cast<ParametricCurve::dim>(random.count(0, 2));
        const ParametricCurve curve(given, dimension);
        CurveState expected{given, {}, dimension, 0, 0.0, true, {}, {0, 0, 1}};
        for (Point& point : expected.points) {
            point.y = dimension == 0 ? 0.0 : point.y;
            point.z = dimension <= 1 ? 0.0 : point.z;
        }
        recompute(expected, Points(expected.points));
        ASSERT_EQ(stateOf(curve), expected);
    }
}

TEST(Construction, RandomNormalizationsFollowTheRulesBitForBit) {
    RandomCurves random(32);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        const Points given = random.points(30);
        const auto norm = static_cast<ParametricCurve::normalization>(random.count(0, 3));
        ParametricCurve curve;
        curve.setPoints(given, norm, ParametricCurve::dim3D);
        Points measured = given;
        if (norm != ParametricCurve::normalizeArc) {
            for (Point& point : measured) {
                point = Point(point.getRef(norm), 0.0, 0.0);
            }
        }
        CurveState expected{given, {}, 2, 1, std::sqrt(3.0), true, {}, {0, 0, 1}};
        referenceArcValues(measured, expected.svalues);
        ASSERT_EQ(stateOf(curve), expected);
    }
}

} // namespace
