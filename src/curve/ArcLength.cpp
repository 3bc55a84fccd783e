#include "curve/ArcLength.h"

#include <algorithm>

#include <qel/NumericalUtils.h>

#include "curve/ArcLengthSteps.h"

namespace qel {
namespace {

constexpr double kSignificantLength = 100.0; // spacings of the length

// A NaN length, or the NaN spacing of an infinite one, is insignificant.
bool isSignificant(double length) {
    return length >= kSignificantLength * NumericalUtils::spacing(length);
}

} // namespace

void calculateArcValue(const Points& points, std::vector<double>& svalues, double& length) {
    svalues.resize(points.size());
    cumulateSteps(points, svalues.data());
    length = svalues.back();
    if (isSignificant(length)) {
        divideAll(svalues.data(), svalues.size(), length);
    } else {
        std::fill(svalues.begin(), svalues.end(), 0.0);
    }
    svalues.back() = 1.0;
}

} // namespace qel
