// Cleaning: drops points that repeat or turn back, or reverses the order.
//
// Each member ends with s and length computed from the points that remain, also where s had been
// supplied. Those that only move points work in place: after the one reservation at their start
// nothing can fail.

#include <qel/ParametricCurve.h>

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

void ParametricCurve::eliminateDoublePoints(int exponent, const Points& points, Points& kept,
                                            PrecisionUtils precision) const {
    kept.clear();
    if (points.empty()) {
        return;
    }
    std::vector<double> svalues;
    double length = 0.0;
    qel::calculateArcValue(points, svalues, length);
    const double spacing = precision == doublePrecision
                               ? NumericalUtils::spacing(0.5)
                               : static_cast<double>(NumericalUtils::spacing(0.5F));
    const double tolerance = spacing * powerOfTen(exponent);
    kept.reserve(points.size());
    kept.push_back(points.front());
    std::size_t last = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        if (svalues[i] - svalues[last] > tolerance && svalues[i + 1] - svalues[i] > tolerance) {
            kept.push_back(points[i]);
            last = i;
        }
    }
    kept.push_back(points.back()); // in every case
}

void ParametricCurve::eliminateDoublePoints(int exponent, const Points& points,
                                            Points& kept) const {
    eliminateDoublePoints(exponent, points, kept,
                          createdAsDouble_ ? doublePrecision : singlePrecision);
}

void ParametricCurve::eliminateDoublePoints(int exponent, PrecisionUtils precision) {
    Points kept;
    eliminateDoublePoints(exponent, points_, kept, precision);
    exchangeAndCalculateArcValue(kept);
    setParametrization(parametrizationComputed);
}

void ParametricCurve::eliminateDoublePoints(int exponent) {
    eliminateDoublePoints(exponent, createdAsDouble_ ? doublePrecision : singlePrecision);
}

// -- In place ----

void ParametricCurve::makeUnique() {
    svalues_.reserve(points_.size());
    points_.erase(std::unique(points_.begin(), points_.end()), points_.end());
    if (points_.size() == 1) {
        points_.push_back(points_.front()); // in the place of one dropped
    }
    qel::calculateArcValue(points_, svalues_, length_);
    setParametrization(parametrizationComputed);
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
    qel::calculateArcValue(points_, svalues_, length_);
    setParametrization(parametrizationComputed);
}

void ParametricCurve::reverseCurve() {
    svalues_.reserve(points_.size());
    std::reverse(points_.begin(), points_.end());
    qel::calculateArcValue(points_, svalues_, length_);
    setParametrization(parametrizationComputed);
}

} // namespace qel
