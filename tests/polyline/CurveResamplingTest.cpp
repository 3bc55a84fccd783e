// Points at s-values and data carried along.

#include <qel/CurveResampling.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "support/Bits.h"
#include "support/CurveShapes.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using qel::ParametricCurve;
using qel::resampleCurve;
using qel::ScalarView;
using qel::TripletView;
using Values = std::vector<double>;
using ConstTable = qel::TableView<const double>;
using Table = qel::TableView<double>;

const ConstTable kNoData;
const Table kNoTable;

Values manySvalues(const ParametricCurve& curve) {
    ShapeRandom random(3);
    Values s = {-1.0,
                0.0,
                1.0,
                2.0,
                -std::numeric_limits<double>::infinity(),
                std::numeric_limits<double>::infinity()};
    for (int k = 0; k < 200; ++k) {
        s.push_back(random.unit());
        s.push_back(curve.getSvalues()[random.index(curve.getSvalues().size())]);
    }
    return s;
}

TEST(ResampleCurve, GivesThePointsOfGetPointAtParameterMatchesReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        for (const std::size_t n : std::vector<std::size_t>{2, 3, 50, 1000}) {
            if (shape.name == std::string("nan_among")) {
                continue;
            }
            const ParametricCurve curve(shape.make(n), ParametricCurve::dim3D);
            const Values s = manySvalues(curve);
            CurvePoints points(s.size());
            resampleCurve(curve, s, kNoData, points, kNoTable);
            for (std::size_t k = 0; k < s.size(); ++k) {
                const CurvePoint expected = curve.getPointAtParameter(s[k]);
                ASSERT_TRUE(sameBits(points[k].x, expected.x) &&
                            sameBits(points[k].y, expected.y) && sameBits(points[k].z, expected.z))
                    << shape.name << " " << n << " s = " << s[k];
            }
        }
    }
}

const CurvePoints kCorner = {{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 3, 0}};

TEST(ResampleCurve, CarriesDataLinearInS) {
    // Columns: a step at the repeated vertex, and s itself.
    const Values data = {10, 0, 20, 0.25, 30, 0.25, 40, 1};
    const Values s = {0.125, 0.25, 0.625, -5.0, 7.0, 1.0};
    Values out(12);
    CurvePoints points(6);
    resampleCurve(kCorner, s, ConstTable(data.data(), 4, 2), points, Table(out.data(), 6, 2));
    EXPECT_EQ(out, (Values{15, 0.125, 20, 0.25, 35, 0.625, 10, 0, 40, 1, 40, 1}));
    EXPECT_EQ(points[2], CurvePoint(1, 1.5, 0));
}

TEST(ResampleCurve, TakesTablesInColumnsAndBackwards) {
    const Values data = {1, 2, 3, 4, 0, 0, 10, 20, 30, 40}; // two columns of four, two apart
    const Values s = {0.0, 1.0};
    Values out(6, -1.0);
    constexpr std::ptrdiff_t kWidth = sizeof(double);
    const ConstTable in(data.data(), 4, 2, kWidth, 6 * kWidth);
    // Rows from the last to the first, columns too, one number between rows.
    const Table backwards(out.data() + 5, 2, 2, -3 * kWidth, -kWidth);
    resampleCurve(kCorner, s, in, {}, backwards);
    EXPECT_EQ(out, (Values{-1, 40, 4, -1, 10, 1}));
}

TEST(ResampleCurve, WorksWithoutAnySvalue) {
    const Values data(4);
    resampleCurve(kCorner, Values(), ConstTable(data.data(), 4, 1), {}, Table(nullptr, 0, 1));
    resampleCurve(kCorner, Values(), kNoData, {}, kNoTable);
}

TEST(ResampleCurve, KeepsFiniteWhatOverflowsAsADifference) {
    const double huge = std::numeric_limits<double>::max();
    const Values data = {-huge, huge};
    const CurvePoints edge = {{0, 0, 0}, {1, 0, 0}};
    const Values s = {0.5, 0.75};
    Values out(2);
    resampleCurve(edge, s, ConstTable(data.data(), 2, 1), {}, Table(out.data(), 2, 1));
    EXPECT_EQ(out[0], 0.0);
    EXPECT_NEAR(out[1] / huge, 0.5, 1e-15);
}

void expectRefused(const Values& s, const ConstTable& data, const Table& out,
                   const std::string& reason) {
    EXPECT_THAT([&] { resampleCurve(kCorner, s, data, {}, out); },
                throwsInvalid("CurveResampling", "resampleCurve", reason));
}

TEST(ResampleCurve, RefusesBadArgumentsBeforeItWrites) {
    const Values s = {0.5, 0.7};
    const Values data(12, 1.0);
    Values out(12, -1.0);
    const ConstTable in(data.data(), 4, 2);
    expectRefused(s, ConstTable(data.data(), 3, 2), Table(out.data(), 2, 2),
                  "The table data has 3 rows of 2 numbers, not 4 of 2.");
    expectRefused(s, in, Table(out.data(), 2, 3),
                  "The table resampled has 2 rows of 3 numbers, not 2 of 2.");
    expectRefused(s, in, kNoTable, "The table resampled has 0 rows of 0 numbers, not 2 of 2.");
    expectRefused(s, kNoData, Table(out.data(), 2, 2),
                  "The table data has 0 rows of 0 numbers, not 4 of 0.");
    expectRefused(s, in, Table(nullptr, 2, 2),
                  "The table resampled has 2 rows of 2 numbers at a null pointer.");
    expectRefused({0.5, std::nan("")}, in, Table(out.data(), 2, 2), "The s-value 1 is NaN.");
    expectRefused(s, in, Table(out.data(), 2, 2, 8, 8),
                  "The elements of the output resampled share memory.");
    expectRefused(s, in, Table(out.data(), 2, 2, 16, 4),
                  "The elements of the output resampled share memory.");
    expectRefused(s, ConstTable(out.data(), 4, 2), Table(out.data() + 7, 2, 2),
                  "The output resampled shares memory with an input.");
    EXPECT_EQ(out, Values(12, -1.0));
    CurvePoints points(3);
    EXPECT_THAT([&] { resampleCurve(kCorner, s, kNoData, points, kNoTable); },
                throwsInvalid("CurveResampling", "resampleCurve",
                              "The output points has 3 elements where 2 are needed."));
    const ScalarView<double> first(&points[0].x, 2);
    EXPECT_THAT(
        [&] {
            resampleCurve(kCorner, first, kNoData, TripletView<double>(points).part(0, 2),
                          kNoTable);
        },
        throwsInvalid("CurveResampling", "resampleCurve",
                      "The output points shares memory with an input."));
}

} // namespace
