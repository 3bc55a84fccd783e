#ifndef QEL_ARRAYS_EXTREMES_H
#define QEL_ARRAYS_EXTREMES_H

/// @file
/// Extremes of floats in vector lanes, undefined ones and NaNs left out.
///
/// Floats are compared as integers, whose minimum and maximum do not depend on the order: -0 lies
/// directly below +0. O(n), no scratch memory.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/VectorUnit.h"

namespace qel {

struct Extremes {
    static constexpr std::int32_t kMaxKey = std::numeric_limits<std::int32_t>::max();
    static constexpr std::int32_t kMinKey = std::numeric_limits<std::int32_t>::min();

    std::int32_t smallest = kMaxKey; ///< key of the smallest number
    std::int32_t largest = kMinKey;  ///< key of the largest
    std::int32_t closest = kMaxKey;  ///< bits of the smallest magnitude that is not 0
    std::int32_t undefined = 0;      ///< how many values are
    std::int32_t nans = 0;

    /// The comparisons are masks, all ones or none: what is left out goes to the far end of each
    /// extreme, and so does a zero magnitude.
    QEL_KERNEL static Extremes of(const float* values, std::size_t n) {
        constexpr std::int32_t kUndefinedKey = 0x7f7fffff;
        constexpr std::int32_t kInfinityKey = 0x7f800000;
        Extremes e;
        for (std::size_t i = 0; i < n; ++i) {
            const std::int32_t bits = bitsOf(values[i]);
            const std::int32_t key = keyOf(bits);
            const std::int32_t magnitude = bits & kMaxKey;
            const std::int32_t isUndefined = -static_cast<std::int32_t>(key == kUndefinedKey);
            const std::int32_t isNan = -static_cast<std::int32_t>(magnitude > kInfinityKey);
            const std::int32_t isZero = -static_cast<std::int32_t>(magnitude == 0);
            const std::int32_t isLeftOut = isUndefined | isNan;
            e.smallest = std::min(e.smallest, (key & ~isLeftOut) | (isLeftOut & kMaxKey));
            e.largest = std::max(e.largest, (key & ~isLeftOut) | (isLeftOut & kMinKey));
            e.closest = std::min(e.closest, magnitude | (isZero & kMaxKey));
            e.undefined -= isUndefined;
            e.nans -= isNan;
        }
        return e;
    }

    bool hasNumbers() const { return smallest != kMaxKey; } // the key of a NaN
    float minimum() const { return floatOf(keyOf(smallest)); }
    float maximum() const { return floatOf(keyOf(largest)); }

    /// As a loop leaves them that replaces the extreme by what is beyond it: of zeros, the first.
    float minimumOf(const float* values, std::size_t n) const {
        return firstIfZero(minimum(), values, n);
    }
    float maximumOf(const float* values, std::size_t n) const {
        return firstIfZero(maximum(), values, n);
    }

private:
    // An integer in the order of the floats. A key is its own inverse.
    QEL_KERNEL static std::int32_t keyOf(std::int32_t bits) {
        return bits ^ ((bits >> 31) & kMaxKey);
    }

    static float firstIfZero(float extreme, const float* values, std::size_t n) {
        return extreme == 0.0f ? *std::find(values, values + n, 0.0f) : extreme;
    }
};

} // namespace qel

#endif
