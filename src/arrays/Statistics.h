#ifndef QEL_ARRAYS_STATISTICS_H
#define QEL_ARRAYS_STATISTICS_H

/// @file
/// The statistics of float and triplet arrays: the reference implementation, value by value, and
/// the fast path to its result, many values at once.

#include <cstddef>
#include <limits>

#include <qel/TripletBase.h>

namespace qel {

constexpr float kUndefinedFloat = std::numeric_limits<float>::max();

struct ValueStatistics {
    float min = kUndefinedFloat;
    float max = kUndefinedFloat;
    double sum = 0.0;
    std::size_t count = 0;

    /// One step of the loop that defines them. A NaN counts, and as the first value stays the
    /// extreme, since nothing compares with it.
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

struct TripletStatistics {
    float min = kUndefinedFloat; ///< of the magnitudes
    float max = kUndefinedFloat;
    float sum = kUndefinedFloat;
    TripletBase<float> minExtents{kUndefinedFloat, kUndefinedFloat, kUndefinedFloat};
    TripletBase<float> maxExtents{kUndefinedFloat, kUndefinedFloat, kUndefinedFloat};
    int count = 0;

    /// One step of the loop that defines them.
    void add(const TripletBase<float>& t);

    /// What the loop gives for n triplets on top of what is held, in every bit.
    void add(const TripletBase<float>* triplets, std::size_t n);
};

} // namespace qel

#endif
