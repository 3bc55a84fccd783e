#ifndef QEL_CURVE_VALIDATION_H
#define QEL_CURVE_VALIDATION_H

/// @file
/// The count that every list of points or values of a curve must have.

#include <cstddef>

#include <qel/Point.h>
#include <qel/QELException.h>

namespace qel {

/// @throws internal::error  (method "Constructor") for fewer than two elements; with one, the
///     message is the caller's
inline void checkCount(std::size_t count, const char* onePointMessage) {
    if (count == 0) {
        throw internal::error("ParametricCurve", "Constructor", "Curve is empty", argumentError);
    }
    if (count == 1) {
        throw internal::error("ParametricCurve", "Constructor", onePointMessage, argumentError);
    }
}

// Of points with a full stop, of values without one.
constexpr const char* kOnePoint = "Curve has only one point in it.";
constexpr const char* kOneValue = "Curve has only one point in it";

inline void checkPoints(const Points& points) {
    checkCount(points.size(), kOnePoint);
}

} // namespace qel

#endif
