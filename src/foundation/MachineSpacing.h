#ifndef QEL_FOUNDATION_MACHINESPACING_H
#define QEL_FOUNDATION_MACHINESPACING_H

/// @file
/// Machine spacing, for loops inside the library to take in.

#include <cmath>
#include <limits>

#include "foundation/DecadeTable.h"

namespace qel {

/// NumericalUtils::spacing(x), of float or double.
template <typename T>
inline T spacingAt(T x) {
    constexpr T epsilon = std::numeric_limits<T>::epsilon();
    if (x == T(0)) {
        return epsilon;
    }
    if (std::isinf(x)) { // has no decade
        return std::numeric_limits<T>::quiet_NaN();
    }
    return static_cast<T>(kDecades.decadeOf(std::abs(static_cast<double>(x))) *
                          static_cast<double>(epsilon));
}

/// A share of a number that is more than a hundred spacings of it: its decade is at most ten times
/// the number, but for what the steps to it round. For numbers of a magnitude above the second, as
/// nothing underflows then. Where one thing exceeds this share of another, no spacing need be found
/// to tell that it exceeds a hundred of them.
constexpr double kHundredSpacings = 0x1p-41;
constexpr double kLeastOfSpacings = 1e-290;

} // namespace qel

#endif
