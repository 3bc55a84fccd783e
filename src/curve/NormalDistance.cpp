// How far the vertices between two others stray from the chord between those.

#include <qel/ParametricCurve.h>

#include <cmath>

#include <qel/NumericalUtils.h>

#include "curve/Conversions.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

constexpr double kChordFactor = 1000.0; // spacings of the chord's length

bool haveNoVertexBetween(int i, int j) {
    return i == j || static_cast<long long>(j) - i == 1;
}

void checkIndex(int index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count) {
        SystemMsg message("Requested index out of bounds =%1");
        throw internal::error("ParametricCurve", "calculateNormalDistanceFromTwoPoints",
                              message % index, argumentError);
    }
}

double chordTolerance(double length, bool createdAsDouble) {
    const double spacing =
        createdAsDouble ? NumericalUtils::spacing(length)
                        : static_cast<double>(NumericalUtils::spacing(static_cast<float>(length)));
    return kChordFactor * spacing;
}

// Distance of the end of w from a line along the chord through the start of w. NaN where rounding
// makes the radicand negative.
double normalDistance(const Point& w, const Point& chord, double chordLength) {
    const double length = w.length();
    const double along = w.dot(chord) / chordLength;
    return std::sqrt(length * length - along * along);
}

} // namespace

void ParametricCurve::calculateDistanceFromTwoPoints(int i, int j, double& distance, int& index,
                                                     bool& done) const {
    distance = 0.0;
    index = i;
    done = true;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    const auto first = static_cast<std::size_t>(i);
    const auto second = static_cast<std::size_t>(j);
    if (!(svalues_[first] < svalues_[second])) {
        return;
    }
    index = getClosestToSvaluePoint((svalues_[second] + svalues_[first]) * 0.5);
    if (index == i) {
        index = i + 1;
    }
    if (index == j) {
        index = j - 1;
    }
    const Point middle = (points_[first] + points_[second]) * 0.5;
    distance = (points_[static_cast<std::size_t>(index)] - middle).length();
    done = false;
}

void ParametricCurve::calculateNormalDistanceFromTwoPoints(int i, int j, double& distance,
                                                           int& index, bool& done) const {
    done = true;
    distance = 0.0;
    index = i;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    checkIndex(i, points_.size());
    checkIndex(j, points_.size());
    const Point& start = points_[static_cast<std::size_t>(i)];
    const Point chord = start - points_[static_cast<std::size_t>(j)];
    const double chordLength = chord.length();
    const double tolerance = chordTolerance(chordLength, createdAsDouble_);
    if (tolerance > chordLength) {
        calculateDistanceFromTwoPoints(i, j, distance, index, done);
        return;
    }
    for (int k = i + 1; k < j; ++k) {
        const Point w = points_[static_cast<std::size_t>(k)] - start;
        const double h = normalDistance(w, chord, chordLength);
        if (h > distance && h > tolerance) {
            distance = h;
            index = k;
            done = false;
        }
    }
}

} // namespace qel
