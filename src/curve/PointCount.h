#ifndef QEL_CURVE_POINTCOUNT_H
#define QEL_CURVE_POINTCOUNT_H

/// @file
/// How many points to insert: counts from quotients, and what is refused.

#include <cstddef>
#include <limits>

#include <qel/QELException.h>

#include "foundation/MessageTokens.h"

namespace qel {

/// Points of a curve are numbered by int.
constexpr auto kMaxPoints = static_cast<std::size_t>(std::numeric_limits<int>::max());

/// The whole part of x as a count: none for a negative x and for NaN. Counts beyond kMaxPoints,
/// which checkTotal refuses, are all given as kMaxPoints + 1, so that sums of them stay in range.
inline std::size_t wholeCount(double x) {
    if (!(x >= 1.0)) {
        return 0;
    }
    return x <= static_cast<double>(kMaxPoints) ? static_cast<std::size_t>(x) : kMaxPoints + 1;
}

/// @throws internal::error  for a negative count
inline void checkInsertedCount(int count, const char* methodName) {
    if (count < 0) {
        SystemMsg message("Requested number of points is negative. Count=%1");
        throw internal::error("ParametricCurve", methodName, message % count, argumentError);
    }
}

/// @throws internal::error  for more points than an int can number
inline void checkTotal(std::size_t total, const char* methodName) {
    if (total > kMaxPoints) {
        SystemMsg message("Requested number of points exceeds %1.");
        throw internal::error("ParametricCurve", methodName, message % kMaxPoints, argumentError);
    }
}

} // namespace qel

#endif
