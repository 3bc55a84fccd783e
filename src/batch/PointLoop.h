#ifndef QEL_BATCH_POINTLOOP_H
#define QEL_BATCH_POINTLOOP_H

/// @file
/// A loop over the points of a view, without a check of each index.

#include <cstddef>
#include <cstring>

#include <qel/StridedView.h>

namespace qel {

/// Calls take(i, x, y, z) for every point. The compiler sees the fixed distance of points that lie
/// side by side, with no alignment asked for.
template <typename T, typename Take>
void forEachPoint(const TripletView<const T>& points, const Take& take) {
    if (!points.isContiguous()) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            const TripletBase<T> p = points[i];
            take(i, p.x, p.y, p.z);
        }
        return;
    }
    const char* bytes = reinterpret_cast<const char*>(points.x().data());
    for (std::size_t i = 0; i < points.size(); ++i) {
        T xyz[3];
        std::memcpy(xyz, bytes + i * sizeof xyz, sizeof xyz);
        take(i, xyz[0], xyz[1], xyz[2]);
    }
}

} // namespace qel

#endif
