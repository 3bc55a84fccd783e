#ifndef QEL_POINT_H
#define QEL_POINT_H

/// @file
/// Names for the points of space and for lists of them.

#include <vector>

#include <qel/TripletBase.h>

namespace qel {

/// A point or vector of space in double precision, and in single precision.
using Point = TripletBase<double>;
using FloatPoint = TripletBase<float>;

/// Points in order, such as the vertices of a polyline.
using Points = std::vector<Point>;
using FloatPoints = std::vector<FloatPoint>;

} // namespace qel

#endif
