#ifndef QEL_POLYLINE_CURVEARGUMENTS_H
#define QEL_POLYLINE_CURVEARGUMENTS_H

/// @file
/// Checks of arguments that functions of curves share.

#include <cmath>
#include <cstddef>
#include <string>

#include <qel/CurveView.h>

#include "batch/ArgumentCheck.h"

namespace qel {

inline void addInput(ArgumentCheck& check, const CurveView& curve) {
    check.input(curve.getSvalues());
    curve.visitPoints([&check](const auto& points) { check.input(points); });
}

inline void refuseNan(const ArgumentCheck& check, const ScalarView<const double>& svalues) {
    for (std::size_t k = 0; k < svalues.size(); ++k) {
        if (std::isnan(svalues[k])) {
            check.refuse("The s-value " + std::to_string(k) + " is NaN.");
        }
    }
}

} // namespace qel

#endif
