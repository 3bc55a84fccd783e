// Each named field and each named velocity gradient is what its name promises.
#include "support/Shapes.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "support/Bits.h"

using namespace qel_test;

namespace {

constexpr std::size_t kCount = 10000;

template <typename Condition>
std::size_t countIf(const char* field, const Condition& condition) {
    const std::vector<float> values = fieldShape(field).make(kCount);
    return static_cast<std::size_t>(std::count_if(values.begin(), values.end(), condition));
}

// Calls check(T) with T[i][j] at each point of a shape.
template <typename Check>
void atEveryPoint(const char* shape, const Check& check) {
    const GradientField field = gradientShape(shape).make(kCount);
    for (std::size_t k = 0; k < kCount; ++k) {
        const qel::TripletBase<float>* rows[] = {&field.row1[k], &field.row2[k], &field.row3[k]};
        check([&](int i, int j) { return rows[i]->getRef(j); });
    }
}

// The largest |T[i][j] + sign T[j][i]| of a shape.
double asymmetry(const char* shape, float sign) {
    double largest = 0.0;
    atEveryPoint(shape, [&](const auto& t) {
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                largest = std::fmax(largest, std::abs(t(i, j) + sign * t(j, i)));
            }
        }
    });
    return largest;
}

double largestTrace(const char* shape) {
    double largest = 0.0;
    atEveryPoint(shape, [&](const auto& t) {
        largest = std::fmax(largest, std::abs(t(0, 0) + t(1, 1) + t(2, 2)));
    });
    return largest;
}

class FieldShapeTest : public testing::TestWithParam<FieldShape> {};
class GradientShapeTest : public testing::TestWithParam<GradientShape> {};

} // namespace

// -- Fields ----

INSTANTIATE_TEST_SUITE_P(Shapes, FieldShapeTest, testing::ValuesIn(fieldShapes()), nameOfShape);

TEST_P(FieldShapeTest, HasAsManyValuesAsAsked) {
    for (const std::size_t n : {0u, 1u, 2u, 10u, 1001u}) {
        EXPECT_EQ(GetParam().make(n).size(), n);
        EXPECT_EQ(GetParam().makeTriplets(n).size(), n);
    }
}

TEST_P(FieldShapeTest, IsTheSameEachTime) {
    EXPECT_TRUE(sameBitsInAll(GetParam().make(kCount), GetParam().make(kCount)));
    EXPECT_TRUE(sameBitsInAll(GetParam().makeTriplets(kCount), GetParam().makeTriplets(kCount)));
}

TEST(FieldShapes, HaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const FieldShape& shape : fieldShapes()) {
        EXPECT_TRUE(names.insert(shape.name).second) << shape;
        EXPECT_EQ(&fieldShape(shape.name), &shape);
    }
}

TEST(FieldShapes, SignsAreAsNamed) {
    const auto negative = [](float v) { return v < 0.0f; };
    EXPECT_NEAR(static_cast<double>(countIf("signed", negative)), kCount / 2.0, kCount / 20.0);
    EXPECT_EQ(countIf("one_signed", negative), 0u);
}

TEST(FieldShapes, EqualMeansEqual) {
    EXPECT_EQ(countIf("equal", [](float v) { return v == 0.1f; }), kCount);
}

TEST(FieldShapes, NaNAndUndefinedStandWhereNamed) {
    const auto isNaN = [](float v) { return std::isnan(v); };
    const auto isUndefined = [](float v) { return v == FLT_MAX; };
    EXPECT_EQ(countIf("all_nan", isNaN), kCount);
    EXPECT_EQ(countIf("nan_among", isNaN), kCount / 1000);
    EXPECT_EQ(countIf("all_undefined", isUndefined), kCount);
    EXPECT_EQ(countIf("undefined_among", isUndefined), kCount / 10);
}

TEST(FieldShapes, MagnitudesAreAsNamed) {
    EXPECT_EQ(countIf("denormal", [](float v) { return std::abs(v) < FLT_MIN; }), kCount);
    EXPECT_GT(countIf("denormal", [](float v) { return v != 0.0f; }), kCount * 9 / 10);
    EXPECT_GT(countIf("huge", [](float v) { return std::abs(v) > 1e38f; }), kCount / 2);
    EXPECT_EQ(countIf("huge", [](float v) { return std::abs(v) < FLT_MAX; }), kCount);
    EXPECT_GT(countIf("many_octaves", [](float v) { return std::abs(v) < 1e-6f; }), kCount / 10);
    EXPECT_GT(countIf("many_octaves", [](float v) { return std::abs(v) > 1e6f; }), kCount / 10);
}

// -- Gradients ----

INSTANTIATE_TEST_SUITE_P(Shapes, GradientShapeTest, testing::ValuesIn(gradientShapes()),
                         nameOfShape);

TEST_P(GradientShapeTest, HasAsManyPointsAsAsked) {
    for (const std::size_t n : {0u, 1u, 2u, 10u, 1001u}) {
        const GradientField field = GetParam().make(n);
        EXPECT_EQ(field.row1.size(), n);
        EXPECT_EQ(field.row2.size(), n);
        EXPECT_EQ(field.row3.size(), n);
        EXPECT_EQ(field.velocity.size(), n);
    }
}

TEST_P(GradientShapeTest, IsTheSameEachTime) {
    const GradientField a = GetParam().make(kCount);
    const GradientField b = GetParam().make(kCount);
    EXPECT_TRUE(sameBitsInAll(a.row1, b.row1));
    EXPECT_TRUE(sameBitsInAll(a.row2, b.row2));
    EXPECT_TRUE(sameBitsInAll(a.row3, b.row3));
    EXPECT_TRUE(sameBitsInAll(a.velocity, b.velocity));
}

TEST(GradientShapes, HaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const GradientShape& shape : gradientShapes()) {
        EXPECT_TRUE(names.insert(shape.name).second) << shape;
        EXPECT_EQ(&gradientShape(shape.name), &shape);
    }
}

TEST(GradientShapes, DivergenceIsAsNamed) {
    EXPECT_LT(largestTrace("incompressible"), 1e-6);
    EXPECT_EQ(largestTrace("plane_incompressible"), 0.0);
    EXPECT_GT(largestTrace("plane_compressible"), 1.0);
    EXPECT_GT(largestTrace("random"), 1.0);
}

TEST(GradientShapes, PlaneFlowsHaveNoThirdDirection) {
    for (const char* shape : {"plane_compressible", "plane_incompressible"}) {
        atEveryPoint(shape, [](const auto& t) {
            for (int i = 0; i < 3; ++i) {
                ASSERT_EQ(t(2, i), 0.0f);
                ASSERT_EQ(t(i, 2), 0.0f);
            }
        });
    }
}

TEST(GradientShapes, SymmetryIsAsNamed) {
    EXPECT_EQ(asymmetry("rigid_rotation", 1.0f), 0.0);
    EXPECT_EQ(asymmetry("symmetric", -1.0f), 0.0);
    EXPECT_GT(asymmetry("random", 1.0f), 1.0);
    EXPECT_GT(asymmetry("random", -1.0f), 1.0);
}

TEST(GradientShapes, ShearIsAlone) {
    atEveryPoint("pure_shear", [](const auto& t) {
        for (int i = 0; i < 9; ++i) {
            ASSERT_EQ(t(i / 3, i % 3) != 0.0f, i == 1 && t(0, 1) != 0.0f);
        }
    });
    atEveryPoint("wall_like", [](const auto& t) { ASSERT_GE(t(0, 1), 1e3f); });
    atEveryPoint("zero", [](const auto& t) { ASSERT_EQ(t(0, 1), 0.0f); });
}

TEST(GradientShapes, NearEqualEigenvaluesAreNearTheIdentity) {
    atEveryPoint("near_equal_eigenvalues", [](const auto& t) {
        for (int i = 0; i < 9; ++i) {
            ASSERT_NEAR(t(i / 3, i % 3), i % 4 == 0 ? 1.0f : 0.0f, 1e-6f);
        }
    });
}

TEST(GradientShapes, SpecialValuesStandWhereNamed) {
    int nan = 0;
    int undefined = 0;
    atEveryPoint("all_nan", [](const auto& t) { ASSERT_TRUE(std::isnan(t(2, 1))); });
    atEveryPoint("denormal", [](const auto& t) { ASSERT_LT(std::abs(t(2, 1)), FLT_MIN); });
    atEveryPoint("huge", [](const auto& t) { ASSERT_TRUE(std::isfinite(t(2, 1))); });
    atEveryPoint("nan_among", [&](const auto& t) {
        for (int i = 0; i < 9; ++i) {
            nan += std::isnan(t(i / 3, i % 3)) ? 1 : 0;
        }
    });
    atEveryPoint("undefined_among",
                 [&](const auto& t) { undefined += t(1, 1) == FLT_MAX ? 1 : 0; });
    EXPECT_GT(nan, 0);
    EXPECT_LT(nan, 30);
    EXPECT_NEAR(undefined, 0.1 * kCount, 0.02 * kCount);
}
