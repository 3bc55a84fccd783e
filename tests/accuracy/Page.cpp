#include "accuracy/Page.h"

#include <cstdio>
#include <sstream>

#include "accuracy/Measurements.h"

namespace qel_accuracy {
namespace {

// Two digits, rounded up, so that the page never says less than was measured.
std::string atMost(double error) {
    if (error == 0.0) {
        return "0";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.1e", error * 1.05);
    return text;
}

std::string withOneDecimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

constexpr const char* kFlows = R"(# How accurate

Written by `qel_accuracy` (tests/accuracy), which the tests hold to it.

## Vortex quantities

The gradients of flows that are known in closed form, at 500 places of each, rounded to the
precision of the analysis; the exact values come from the same closed forms in extended precision, by
other methods than the library's. Each figure is the largest error over all places, divided by the
norm |T| of the gradient to the power of the quantity's unit: 1 for swirl strength and magnitudes, 2
for Q and λ2, 6 for the discriminant. Rounding the gradient alone gives about 6e-8 in float, 1e-16 in
double, times that power.

*float* has gradients of size 1 without any option, as `TensorEigenizer` gives; *float, scaled* and
*double, scaled* have sizes from 1e-12 to 1e12 with `GradientOptions::isScaled`, as far as the result
is a normal number.

The swirl strength is the square root of what rounding leaves: where a pair of eigenvalues is about
to become real, as in shear, an error of e in the gradient is one of up to the cube root of e in the
swirl strength, for any method. `GradientOptions::noiseFloor` sets such values to 0.

| flow | quantity | float | float, scaled | double, scaled |
|---|---|---:|---:|---:|
)";

constexpr const char* kLengths = R"(
## Length of curves

`ParametricCurve::getLength()` of polylines whose vertices lie on a curve, relative to the curve's own
length. Chords are shorter than their arcs by the square of their size, so that twice as many
vertices leave a quarter of the error (order 2), at cusps too where these are vertices.

| curve | 128 edges | 1024 edges | order |
|---|---:|---:|---:|
)";

} // namespace

std::string writePage() {
    std::ostringstream page;
    page << kFlows;
    for (const FlowRow& row : measureFlows()) {
        page << "| " << row.flow << " | " << row.quantity << " | " << atMost(row.inFloat) << " | "
             << atMost(row.inScaledFloat) << " | " << atMost(row.inScaledDouble) << " |\n";
    }
    page << kLengths;
    for (const LengthRow& row : measureLengths()) {
        page << "| " << row.curve << " | " << atMost(row.coarse) << " | " << atMost(row.fine)
             << " | " << withOneDecimal(row.order) << " |\n";
    }
    return page.str();
}

} // namespace qel_accuracy
