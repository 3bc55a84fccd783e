#ifndef QEL_ARRAYS_ROUNDEDSUM_H
#define QEL_ARRAYS_ROUNDEDSUM_H

/// @file
/// The sum of floats in index order, where its steps round.

#include <cstddef>

namespace qel {

/// The sum as it is defined: sum + values[0] + values[1] and so on, each step rounded.
inline double sumOneByOne(double sum, const float* values, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        sum += static_cast<double>(values[i]);
    }
    return sum;
}

/// What sumOneByOne gives, in every bit; about twice as fast on a unit with masks, where magnitudes
/// are spread widely. No value is NaN.
double sumInOrder(double sum, const float* values, std::size_t n);

} // namespace qel

#endif
