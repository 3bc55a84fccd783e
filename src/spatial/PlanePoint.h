#ifndef QEL_SPATIAL_PLANEPOINT_H
#define QEL_SPATIAL_PLANEPOINT_H

/// @file
/// Points on their way into the index.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include <qel/TripletBase.h>

#include "spatial/QuadNode.h"

namespace qel {

struct PlanePoint {
    float x, y;
    std::uint32_t index; ///< position in the caller's list
};

inline PlanePoint planePoint(const TripletBase<float>& point, std::size_t index) {
    return {point.x, point.y, static_cast<std::uint32_t>(index)};
}

inline bool isFinite(const PlanePoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

/// The box of points. Comparisons pass over a NaN, so that the box of none but these is empty.
inline QuadRectangle boxOf(const PlanePoint* points, std::size_t count) {
    QuadRectangle box = kEmptyRectangle;
    for (std::size_t i = 0; i < count; ++i) {
        extend(box, {points[i].x, points[i].y, points[i].x, points[i].y});
    }
    return box;
}

} // namespace qel

#endif
