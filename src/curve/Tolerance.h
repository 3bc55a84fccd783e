#ifndef QEL_CURVE_TOLERANCE_H
#define QEL_CURVE_TOLERANCE_H

/// @file
/// What counts as nothing beside a length or a parameter, in machine spacings
/// (NumericalUtils::spacing) at it.

#include <cmath>
#include <limits>

#include "foundation/MachineSpacing.h"

namespace qel {

/// Lengths, distances and steps of s up to so many spacings are rounding, not geometry.
constexpr double kInsignificantSpacings = 100.0;

/// The largest insignificant length or step at a magnitude, of float or double; NaN at infinity.
template <typename T>
T insignificantAt(T magnitude) {
    return static_cast<T>(kInsignificantSpacings) * spacingAt(magnitude);
}

/// True if a length is more than rounding at its own magnitude. False for NaN and infinity.
inline bool isSignificant(double length) {
    if (length > kMinOfSpacings) { // of which a hundred spacings are a small part
        return length <= std::numeric_limits<double>::max();
    }
    return length > insignificantAt(length);
}

/// True if two s-values count as equal: the step between them is insignificant at the greater one.
inline bool countAsEqual(double sLo, double sHi) {
    const double step = sHi - sLo;
    const double magnitude = std::abs(sHi);
    if (magnitude > kMinOfSpacings && step > kHundredSpacings * magnitude) {
        return false; // without the search for the decade
    }
    return insignificantAt(sHi) > step;
}

} // namespace qel

#endif
