#ifndef QEL_CURVE_CONVERSIONS_H
#define QEL_CURVE_CONVERSIONS_H

/// @file
/// Lists of points between float and double.

#include <qel/Point.h>

namespace qel {

inline Points widened(const FloatPoints& points) {
    return Points(points.begin(), points.end());
}

inline FloatPoints narrowed(const Points& points) {
    return FloatPoints(points.begin(), points.end());
}

/// Sets points to what make(Points&) makes, narrowed.
template <typename Make>
void makeNarrowed(FloatPoints& points, Make make) {
    Points wide;
    make(wide);
    points = narrowed(wide);
}

} // namespace qel

#endif
