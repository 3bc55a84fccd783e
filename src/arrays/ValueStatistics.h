#ifndef QEL_ARRAYS_VALUESTATISTICS_H
#define QEL_ARRAYS_VALUESTATISTICS_H

/// @file
/// The statistics of a float array: the loop that defines them, and a faster way to its result.

#include <cstddef>

#include "arrays/UndefinedText.h"

namespace qel {

struct ValueStatistics {
    float min = kUndefinedFloat;
    float max = kUndefinedFloat;
    double sum = 0.0;
    int count = 0;

    /// One step of the loop. A NaN counts, and as the first value stays the extreme, since nothing
    /// compares with it.
    void add(float value) {
        if (value == kUndefinedFloat) {
            return;
        }
        if (min == kUndefinedFloat || min > value) {
            min = value;
        }
        if (max == kUndefinedFloat || value > max) {
            max = value;
        }
        ++count;
        sum += static_cast<double>(value);
    }
};

/// What the loop gives for n floats, each `stride` (1 or 3) behind the one before, in every bit.
ValueStatistics statisticsOf(const float* first, std::size_t stride, std::size_t n);

} // namespace qel

#endif
