#ifndef QEL_CURVE_CONVERSIONS_H
#define QEL_CURVE_CONVERSIONS_H

/// @file
/// Names for the curve's points, and their conversion between float and double.

#include <vector>

#include <qel/TripletBase.h>

namespace qel {

using Point = TripletBase<double>;
using FloatPoint = TripletBase<float>;
using Points = std::vector<Point>;
using FloatPoints = std::vector<FloatPoint>;

inline Points widened(const FloatPoints& points) {
    return Points(points.begin(), points.end());
}

inline FloatPoints narrowed(const Points& points) {
    return FloatPoints(points.begin(), points.end());
}

} // namespace qel

#endif
