// The exact values themselves, where they can be told by hand.

#include "accuracy/ExactQuantities.h"

#include <cmath>

#include <gtest/gtest.h>

using namespace qel_accuracy;

namespace {

constexpr double kTolerance = 1e-17;

TEST(ExactQuantities, OfARotation) {
    const Gradient t = {0, -3, 0, 3, 0, 0, 0, 0, 0};
    EXPECT_EQ(invariantQ(t), 9);
    EXPECT_NEAR(static_cast<double>(lambda2(t) + 9), 0.0, kTolerance);
    EXPECT_NEAR(static_cast<double>(swirlStrength(t) - 3), 0.0, kTolerance);
    EXPECT_NEAR(static_cast<double>(discriminant(t) - 27), 0.0, kTolerance); // 9^3 / 27
    EXPECT_EQ(vorticityMagnitude(t), 6);
    EXPECT_EQ(strainMagnitude(t), 0);
}

TEST(ExactQuantities, OfAStrain) {
    const Gradient t = {1, 0, 0, 0, 2, 0, 0, 0, -3};
    EXPECT_EQ(invariantQ(t), -7);
    EXPECT_NEAR(static_cast<double>(lambda2(t) - 4), 0.0, kTolerance); // of 1, 4 and 9
    EXPECT_EQ(swirlStrength(t), 0);
    EXPECT_EQ(vorticityMagnitude(t), 0);
    EXPECT_NEAR(static_cast<double>(strainMagnitude(t) - std::sqrt(28.0L)), 0.0, kTolerance);
}

// Eigenvalues 5 and -1 +- 2i, in axes that are not orthogonal.
TEST(ExactQuantities, OfASwirlWithStrain) {
    const Gradient t = {-1, -4, 7, 1, -1, 2, 0, 0, 5};
    EXPECT_NEAR(static_cast<double>(swirlStrength(t) - 2), 0.0, kTolerance);
    EXPECT_GT(discriminant(t), 0);
}

TEST(ExactQuantities, OfAMixture) {
    // S^2 + W^2 of blocks: the plane has a^2 - b^2 twice, the axis c^2.
    const Gradient t = {3, -2, 0, 2, -3, 0, 0, 0, 1};
    EXPECT_NEAR(static_cast<double>(lambda2(t) - 5), 0.0, kTolerance);
}

} // namespace
