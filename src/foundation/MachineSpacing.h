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

} // namespace qel

#endif
