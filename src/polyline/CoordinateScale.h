#ifndef QEL_POLYLINE_COORDINATESCALE_H
#define QEL_POLYLINE_COORDINATESCALE_H

/// @file
/// Powers of two that keep products of coordinates from overflowing and from underflowing.

#include <algorithm>
#include <cmath>

namespace qel {

/// Multiplying by the factor and by its inverse changes no bit but where a number becomes
/// subnormal.
struct CoordinateScale {
    double factor = 1.0;
    double inverse = 1.0;

    /// 1 where the largest |coordinate| lies between 2^lowest and 2^highest, or is 0; else what
    /// brings it there, or near, for no factor is above 2^1000 or below its inverse.
    static CoordinateScale into(int lowest, int highest, double largest) {
        int exponent = 0;
        std::frexp(largest, &exponent);
        const int wanted = largest == 0.0 ? 0 : std::clamp(exponent, lowest, highest) - exponent;
        const int shift = std::clamp(wanted, -1000, 1000);
        return {std::ldexp(1.0, shift), std::ldexp(1.0, -shift)};
    }
};

} // namespace qel

#endif
