#ifndef QEL_POLYLINE_PATHMEASURE_H
#define QEL_POLYLINE_PATHMEASURE_H

/// @file
/// s-values of places on a path.

#include <cmath>
#include <cstddef>
#include <vector>

#include "polyline/CurvePath.h"
#include "polyline/Interpolation.h"

namespace qel {

/// How far p lies along the edge from a to b that holds it: from 0 to 1.
inline double fractionAlong(const PlanePoint& a, const PlanePoint& b, const PlanePoint& p) {
    const double x = b.x - a.x, y = b.y - a.y;
    return std::fabs(x) >= std::fabs(y) ? (p.x - a.x) / x : (p.y - a.y) / y;
}

template <int kDimensions>
class PathMeasure {
public:
    PathMeasure(const CurvePath<kDimensions>& path, const CurveView& curve) : path_(path) {
        curve.copySvalues(svalues_);
    }

    /// @param t  along the edge, for a place inside
    double svalueAt(PathPlace place, double t) const {
        if (place.isVertex()) {
            return svalues_[path_.firstPoint(place.index())];
        }
        const std::size_t edge = path_.curveEdge(place.index());
        return interpolated(svalues_[edge], svalues_[edge + 1], t);
    }

private:
    const CurvePath<kDimensions>& path_;
    std::vector<double> svalues_;
};

} // namespace qel

#endif
