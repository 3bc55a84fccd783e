#include "curve/ArcLength.h"

#include <qel/NumericalUtils.h>

namespace qel {
namespace {

constexpr double kSignificantLength = 100.0; // spacings of the length

void normalise(std::vector<double>& svalues, double length) {
    // Written so that a NaN length, or the NaN spacing of an infinite one, is insignificant.
    const bool significant = length >= kSignificantLength * NumericalUtils::spacing(length);
    for (double& s : svalues) {
        s = significant ? s / length : 0.0;
    }
    svalues.back() = 1.0;
}

} // namespace

void calculateArcValue(const Points& points, std::vector<double>& svalues, double& length) {
    svalues.resize(points.size());
    svalues[0] = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        svalues[i] = svalues[i - 1] + (points[i] - points[i - 1]).length();
    }
    length = svalues.back();
    normalise(svalues, length);
}

} // namespace qel
