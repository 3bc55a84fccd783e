#ifndef QEL_CURVE_SIMDDISTANCES_H
#define QEL_CURVE_SIMDDISTANCES_H

/// @file
/// SIMD distances: the squared distances of several points from one, a point in each lane.
///
/// Three registers in a row hold as many points as one has lanes. Within each quarter of four lanes
/// their numbers stand as x y z x | y z x y | z x y z, which two blends of halves, one exchange of
/// halves and then two blends and a shuffle of neighbours bring into the order of the points. What
/// a compiler makes of the plain loop gathers them one by one.
///
/// The arithmetic is that of squaredDistance, in its order, so the bits are the same.

#include <cstddef>
#include <cstring>
#include <utility>

#include "curve/Conversions.h"
#include "platform/Lanes.h"

#if defined(QEL_SHUFFLES)

namespace qel {

/// x, y and z of as many points as there are lanes, which are 4 or 8.
template <std::size_t width>
struct PointLanes {
    Lanes<double, width> x;
    Lanes<double, width> y;
    Lanes<double, width> z;

    QEL_KERNEL static PointLanes read(const Point* points) {
        constexpr std::make_index_sequence<width> lanes{};
        const char* const from = reinterpret_cast<const char*>(points);
        const Numbers a = readThirds(from);
        const Numbers b = readThirds(from + kThird);
        const Numbers c = readThirds(from + 2 * kThird);
        const Numbers xy = shuffled<0, 1, 6, 7>(a, b, lanes); // x0 y0 x2 y2
        const Numbers zx = shuffled<2, 3, 4, 5>(a, c, lanes); // z0 x1 z2 x3
        const Numbers yz = shuffled<0, 1, 6, 7>(b, c, lanes); // y1 z1 y3 z3
        return {shuffled<0, 5, 2, 7>(xy, zx, lanes), shuffled<1, 4, 3, 6>(xy, yz, lanes),
                shuffled<0, 5, 2, 7>(zx, yz, lanes)};
    }

private:
    using Numbers = Lanes<double, width>;
    static constexpr std::size_t kQuarter = 4; // lanes that are shuffled among themselves
    static constexpr std::size_t kThird = kQuarter * sizeof(double);

    // Of each four points, the four numbers that stand at the same place.
    QEL_KERNEL static Numbers readThirds(const char* from) {
        if constexpr (width == kQuarter) {
            return Numbers::read(from);
        } else {
            const auto first = Lanes<double, kQuarter>::read(from);
            const auto second = Lanes<double, kQuarter>::read(from + 3 * kThird);
            return {__builtin_shufflevector(first.value, second.value, 0, 1, 2, 3, 4, 5, 6, 7)};
        }
    }

    // Within each four lanes, those of a by 0 to 3 and those of b by 4 to 7.
    template <int... places, std::size_t... lane>
    QEL_KERNEL static Numbers shuffled(const Numbers& a, const Numbers& b,
                                       std::index_sequence<lane...>) {
        constexpr int pattern[] = {places...};
        return {__builtin_shufflevector(a.value, b.value, placeOf(pattern, lane)...)};
    }

    static constexpr int placeOf(const int* pattern, std::size_t lane) {
        const auto place = static_cast<std::size_t>(pattern[lane % kQuarter]);
        const std::size_t start = lane / kQuarter * kQuarter;
        return static_cast<int>(place < kQuarter ? start + place
                                                 : width + start + place - kQuarter);
    }
};

/// The squared distances of q from as many points as there are lanes.
template <std::size_t width>
QEL_KERNEL Lanes<double, width> squaredDistances(const PointLanes<width>& points, const Point& q) {
    const Lanes<double, width> x{points.x.value - q.x};
    const Lanes<double, width> y{points.y.value - q.y};
    const Lanes<double, width> z{points.z.value - q.z};
    return x * x + y * y + z * z;
}

} // namespace qel

#endif

#endif
