// Cleaning: drops points that repeat or turn back, or reverses the order.
//
// Each member ends with s and length computed from the points that remain, also where s had been
// supplied. All work in place: after the one reservation at their start nothing can fail.

#include "curve/Cleaning.h"

#include <algorithm>

#include <qel/NumericalUtils.h>

#include "curve/ArcLength.h"
#include "curve/Conversions.h"

namespace qel {
namespace {

// 10^exponent by repeated squaring; 1 / 10^|exponent| for a negative one. Overflows to infinity,
// or to zero for the negative.
double powerOfTen(int exponent) {
    // Widened first: the magnitude of the least int is none.
    auto remaining = exponent < 0 ? -static_cast<long long>(exponent) : exponent;
    double power = 1.0;
    for (double square = 10.0; remaining > 0; square *= square, remaining /= 2) {
        if (remaining % 2 == 1) {
            power *= square;
        }
    }
    return exponent < 0 ? 1.0 / power : power;
}

} // namespace

// -- Points close in s ----

double coincidenceTolerance(int exponent, ParametricCurve::PrecisionUtils precision) {
    const double spacing = precision == ParametricCurve::doublePrecision
                               ? NumericalUtils::spacing(0.5)
                               : static_cast<double>(NumericalUtils::spacing(0.5F));
    return spacing * powerOfTen(exponent);
}

void ParametricCurve::eliminateDoublePoints(int exponent, PrecisionUtils precision) {
    svalues_.reserve(points_.size());
    calculateArcValue(points_, svalues_, length_);
    std::size_t kept = 0;
    forEachDistinct(svalues_, coincidenceTolerance(exponent, precision),
                    [&](std::size_t i) { points_[kept++] = points_[i]; });
    if (kept < points_.size()) {
        points_.resize(kept);
        calculateArcValue(points_, svalues_, length_);
    }
    parametrization_ = parametrizationComputed;
}

void ParametricCurve::eliminateDoublePoints(int exponent) {
    eliminateDoublePoints(exponent, createdAsDouble_ ? doublePrecision : singlePrecision);
}

// -- Repeats and turns ----

void ParametricCurve::makeUnique() {
    svalues_.reserve(points_.size());
    points_.erase(std::unique(points_.begin(), points_.end()), points_.end());
    if (points_.size() == 1) {
        points_.push_back(points_.front()); // in the place of one dropped
    }
    computeSvalues();
}

void ParametricCurve::makeContinuous() {
    svalues_.reserve(points_.size());
    std::size_t last = 0; // of the points kept, which close up behind those still to be seen
    for (std::size_t i = 1; i + 1 < points_.size(); ++i) {
        const Point& here = points_[i];
        const Point& next = points_[i + 1]; // the stored neighbour, kept or not
        const Point chord = next - points_[last];
        if ((here - points_[last]).dot(chord) > 0.0 && (here - next).dot(chord) < 0.0) {
            points_[++last] = here;
        }
    }
    points_[++last] = points_.back();
    points_.resize(last + 1);
    computeSvalues();
}

void ParametricCurve::reverseCurve() {
    svalues_.reserve(points_.size());
    std::reverse(points_.begin(), points_.end());
    computeSvalues();
}

} // namespace qel
