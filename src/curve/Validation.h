#ifndef QEL_CURVE_VALIDATION_H
#define QEL_CURVE_VALIDATION_H

/// @file
/// The count that every list of points or values of a curve must have.

#include <cstddef>

#include <qel/QELException.h>

#include "curve/Conversions.h"

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

inline void checkPoints(const Points& points) {
    checkCount(points.size(), "Curve has only one point in it.");
}

} // namespace qel

#endif
