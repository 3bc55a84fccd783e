#ifndef QEL_CURVE_VALIDATION_H
#define QEL_CURVE_VALIDATION_H

/// @file
/// Checks of the members' arguments: how many points there are, or are to be, and the errors.

#include <cstddef>
#include <limits>

#include <qel/Point.h>
#include <qel/QELException.h>

#include "foundation/MessageTokens.h"

namespace qel {

/// The error of an argument that a member refuses: the text, with values in place of its tokens.
template <typename... Values>
internal::error argumentFault(const char* methodName, const char* text, Values... values) {
    SystemMsg message(text);
    return {"ParametricCurve", methodName, (message % ... % values), argumentError};
}

/// @throws internal::error  (method "Constructor") for fewer than two elements; with one, the
///     message is the caller's
inline void checkCount(std::size_t count, const char* onePointMessage) {
    if (count == 0) {
        throw argumentFault("Constructor", "Curve is empty");
    }
    if (count == 1) {
        throw argumentFault("Constructor", onePointMessage);
    }
}

// Of points with a full stop, of values without one.
constexpr const char* kOnePoint = "Curve has only one point in it.";
constexpr const char* kOneValue = "Curve has only one point in it";

inline void checkPoints(const Points& points) {
    checkCount(points.size(), kOnePoint);
}

// -- How many points to insert ----

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
        throw argumentFault(methodName, "Requested number of points is negative. Count=%1", count);
    }
}

/// @throws internal::error  for more points than an int can number
inline void checkTotal(std::size_t total, const char* methodName) {
    if (total > kMaxPoints) {
        throw argumentFault(methodName, "Requested number of points exceeds %1.", kMaxPoints);
    }
}

/// `size` points, and inserted(i) between points i - 1 and i, for each i.
template <typename Inserted>
std::size_t checkedTotal(std::size_t size, Inserted inserted, const char* methodName) {
    std::size_t total = size;
    for (std::size_t i = 1; i < size; ++i) {
        total += inserted(i);
    }
    checkTotal(total, methodName);
    return total;
}

} // namespace qel

#endif
