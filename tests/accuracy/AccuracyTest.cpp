// Bounds of the errors that docs/accuracy.md shows.

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "accuracy/Measurements.h"

using namespace qel_accuracy;

namespace {

constexpr double kFloatEpsilon = std::numeric_limits<float>::epsilon();
constexpr double kDoubleEpsilon = std::numeric_limits<double>::epsilon();

// In machine epsilons.
const std::map<std::string, double> kBounds = {
    {"Q", 2.0},
    {"discriminant", 2.0},
    {"λ2", 2.0},
    {"vorticity magnitude", 2.0},
    {"strain magnitude", 2.0},
};

TEST(Accuracy, OfVortexQuantities) {
    for (const FlowRow& row : measureFlows()) {
        SCOPED_TRACE(row.flow + ", " + row.quantity);
        const auto bound = kBounds.find(row.quantity);
        // The root of an error takes its share of the digits: see the page.
        const double inFloat =
            bound == kBounds.end() ? std::cbrt(kFloatEpsilon) : bound->second * kFloatEpsilon;
        const double inDouble =
            bound == kBounds.end() ? std::cbrt(kDoubleEpsilon) : bound->second * kDoubleEpsilon;
        EXPECT_LE(row.inFloat, inFloat);
        EXPECT_LE(row.inScaledFloat, inFloat);
        EXPECT_LE(row.inScaledDouble, inDouble);
    }
}

TEST(Accuracy, OfLengths) {
    for (const LengthRow& row : measureLengths()) {
        SCOPED_TRACE(row.curve);
        EXPECT_LE(row.coarse, 5e-4);
        EXPECT_LE(row.fine, 1e-5);
        EXPECT_NEAR(row.order, 2.0, 0.1);
    }
}

} // namespace
