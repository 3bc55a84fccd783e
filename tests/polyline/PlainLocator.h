#ifndef QEL_TESTS_POLYLINE_PLAINLOCATOR_H
#define QEL_TESTS_POLYLINE_PLAINLOCATOR_H

// The reference implementation of CurveLocator: one edge after the other, as its header states the
// arithmetic. For coordinates whose squares neither overflow nor underflow.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <vector>

#include <qel/CurveLocator.h>

#include "support/Bits.h"

namespace qel_test {

using Point = qel::TripletBase<double>;
using Points = std::vector<Point>;

inline qel::CurveLocation placeOnEdge(const Points& curve, const std::vector<double>& svalues,
                                      std::size_t edge, const Point& q) {
    const Point a = curve[edge], b = curve[edge + 1];
    const Point e = b - a;
    double t = e.dot(e) > 0.0 ? (q - a).dot(e) / e.dot(e) : 0.0;
    Point foot = a + e * t;
    if (t >= 1.0) {
        t = 1.0;
        foot = b;
    } else if (!(t > 0.0)) {
        t = 0.0;
        foot = a;
    }
    const double s =
        t < 1.0 ? svalues[edge] + (svalues[edge + 1] - svalues[edge]) * t : svalues[edge + 1];
    const Point d = q - foot;
    return {foot, s, static_cast<std::int64_t>(edge), std::sqrt(d.dot(d))};
}

inline double squaredDistance(const Point& q, const qel::CurveLocation& place) {
    const Point d = q - place.foot;
    return d.dot(d);
}

inline qel::CurveLocation plainLocate(const Points& curve, const std::vector<double>& svalues,
                                      const Point& q) {
    qel::CurveLocation best = placeOnEdge(curve, svalues, 0, q);
    for (std::size_t i = 1; i + 1 < curve.size(); ++i) {
        const qel::CurveLocation place = placeOnEdge(curve, svalues, i, q);
        if (squaredDistance(q, place) < squaredDistance(q, best)) {
            best = place;
        }
    }
    return best;
}

inline std::vector<double> svaluesOf(const Points& curve) {
    std::vector<double> svalues;
    qel::CurveView(curve).copySvalues(svalues);
    return svalues;
}

inline std::ostream& operator<<(std::ostream& os, const qel::CurveLocation& p) {
    return os << "edge " << p.edge << ", s " << p.s << ", foot " << p.foot << ", distance "
              << p.distance;
}

inline bool samePlace(const qel::CurveLocation& a, const qel::CurveLocation& b) {
    return a.edge == b.edge && sameBits(a.foot, b.foot) && sameBits(a.s, b.s) &&
           sameBits(a.distance, b.distance);
}

} // namespace qel_test

namespace qel {
using qel_test::operator<<;
} // namespace qel

#endif
