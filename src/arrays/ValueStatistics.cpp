// The statistics of floats in memory, block by block in vector lanes.
//
// Extremes and count do not depend on order, but for the sign of a zero, which is looked up, and
// for NaN, whose blocks take the defining loop. The sum does, where it rounds. A sum of doubles is
// exact, and so free of order, while every term is a multiple of some 2^q and no partial sum
// reaches 2^(53+q): the last digits of the smallest value and of the sum so far, and the largest
// magnitude, tell. Blocks that pass are added up in lanes; the others in index order,
// see RoundedSum.h.

#include "arrays/ValueStatistics.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "arrays/RoundedSum.h"
#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 1024;

// Integers in the order of the floats: -0 lies directly below +0, NaNs beyond the infinities.
constexpr std::int32_t kMagnitudeBits = 0x7fffffff;
constexpr std::int32_t kInfinityKey = 0x7f800000;
constexpr std::int32_t kUndefinedKey = 0x7f7fffff;
constexpr std::int32_t kLargestKey = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallestKey = std::numeric_limits<std::int32_t>::min();

// A key is its own inverse.
QEL_KERNEL std::int32_t keyOf(std::int32_t bits) {
    return bits ^ ((bits >> 31) & kMagnitudeBits);
}

// What one pass over a block finds.
struct BlockExtremes {
    std::int32_t least;   // key of the smallest valid value
    std::int32_t most;    // key of the largest
    std::int32_t closest; // bits of the smallest magnitude that is not 0
    std::int32_t undefined;
};

struct ExtremesKernel {
    QEL_KERNEL static void run(const float* values, std::size_t n, BlockExtremes* found) {
        std::int32_t least = kLargestKey;
        std::int32_t most = kSmallestKey;
        std::int32_t closest = kLargestKey;
        std::int32_t undefined = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const std::int32_t bits = bitsOf(values[i]);
            const std::int32_t key = keyOf(bits);
            const std::int32_t magnitude = bits & kMagnitudeBits;
            // All ones or none, since lanes cannot branch: the undefined marker goes to the far
            // end of each extreme, and so does a zero magnitude.
            const std::int32_t isUndefined = -static_cast<std::int32_t>(key == kUndefinedKey);
            const std::int32_t isZero = -static_cast<std::int32_t>(magnitude == 0);
            least = std::min(least, key | (isUndefined & kLargestKey));
            most = std::max(most, (key & ~isUndefined) | (isUndefined & kSmallestKey));
            closest = std::min(closest, magnitude | (isZero & kLargestKey));
            undefined -= isUndefined;
        }
        *found = {least, most, closest, undefined};
    }
};

// Adds in lanes: halves upon each other. Of use where every order gives the same sum.
struct SumKernel {
    QEL_KERNEL static void run(const float* values, double* sum) {
        constexpr std::size_t kHalf = kBlock / 2;
        double sums[kHalf];
        for (std::size_t i = 0; i < kHalf; ++i) {
            sums[i] = static_cast<double>(values[i]) + static_cast<double>(values[i + kHalf]);
        }
        for (std::size_t width = kHalf / 2; width > 0; width /= 2) {
            for (std::size_t i = 0; i < width; ++i) {
                sums[i] += sums[i + width];
            }
        }
        *sum = sums[0];
    }
};

// The power of two that every value of the block is a multiple of: the last digit of the smallest
// one.
double lastDigitOf(std::int32_t smallestMagnitude) {
    constexpr int kDigitBits = 23;
    constexpr int kSmallestExponent = -149;
    const int exponent = smallestMagnitude >> kDigitBits; // 0 and 1 share the last digit
    return std::ldexp(1.0, std::max(exponent, 1) - 1 + kSmallestExponent);
}

// The largest power of two that a sum other than 0 is a multiple of.
double lastDigitOf(double sum) {
    constexpr int kDigits = std::numeric_limits<double>::digits;
    int exponent = 0;
    const double fraction = std::frexp(sum, &exponent);
    const auto digits = static_cast<std::int64_t>(std::ldexp(fraction, kDigits));
    return std::ldexp(static_cast<double>(digits & -digits), exponent - kDigits);
}

// True if adding kBlock values to the sum is exact in every order.
bool isExact(double sum, const BlockExtremes& block) {
    if (block.closest == kLargestKey) {
        return true; // zeros only
    }
    const double largest = std::max(std::fabs(static_cast<double>(floatOf(keyOf(block.least)))),
                                    std::fabs(static_cast<double>(floatOf(keyOf(block.most)))));
    const double bound = std::fabs(sum) + static_cast<double>(kBlock) * largest;
    if (!std::isfinite(bound)) {
        return false;
    }
    const double ofBlock = lastDigitOf(block.closest);
    const double digit = sum == 0.0 ? ofBlock : std::min(ofBlock, lastDigitOf(sum));
    constexpr double kTwoTo53 = 9007199254740992.0;
    return bound < kTwoTo53 * digit;
}

// The extreme as the loop leaves it: of zeros, the first one.
float valueOf(std::int32_t key, const float* values) {
    const float extreme = floatOf(keyOf(key));
    return extreme == 0.0f ? *std::find(values, values + kBlock, 0.0f) : extreme;
}

void addExtremes(const BlockExtremes& block, const float* values, ValueStatistics& s) {
    const float least = valueOf(block.least, values);
    const float most = valueOf(block.most, values);
    if (s.min == kUndefinedFloat || s.min > least) {
        s.min = least;
    }
    if (s.max == kUndefinedFloat || most > s.max) {
        s.max = most;
    }
}

void addOneByOne(const float* values, std::size_t n, ValueStatistics& s) {
    for (std::size_t i = 0; i < n; ++i) {
        s.add(values[i]);
    }
}

// Undefined values as +0, which changes no sum: one that starts at +0 never is -0.
void copyWithoutUndefined(const float* values, float* copy) {
    for (std::size_t i = 0; i < kBlock; ++i) {
        copy[i] = values[i] == kUndefinedFloat ? 0.0f : values[i];
    }
}

// A whole block.
void addBlock(const float* values, ValueStatistics& s) {
    BlockExtremes block;
    onVectorUnit<ExtremesKernel>(values, kBlock, &block);
    const std::int32_t valid = static_cast<std::int32_t>(kBlock) - block.undefined;
    if (valid == 0) {
        return;
    }
    const bool hasNan = block.most > kInfinityKey || block.least < keyOf(bitsOf(-HUGE_VALF));
    if (hasNan) {
        addOneByOne(values, kBlock, s);
        return;
    }
    addExtremes(block, values, s);
    s.count += valid;

    float defined[kBlock];
    if (block.undefined != 0) {
        copyWithoutUndefined(values, defined);
        values = defined;
    }
    if (isExact(s.sum, block)) {
        double sum = 0.0;
        onVectorUnit<SumKernel>(values, &sum);
        s.sum += sum;
    } else {
        s.sum = sumInOrder(s.sum, values, kBlock);
    }
}

// The stride is a constant here, so that lanes are read whole and their values picked.
struct EveryThirdKernel {
    QEL_KERNEL static void run(const float* first, float* block) {
        for (std::size_t k = 0; k < kBlock; ++k) {
            block[k] = first[3 * k];
        }
    }
};

} // namespace

ValueStatistics statisticsOf(const float* first, std::size_t stride, std::size_t n) {
    ValueStatistics s;
    float block[kBlock];
    std::size_t i = 0;
    for (; n - i >= kBlock; i += kBlock) {
        const float* values = first + i;
        if (stride != 1) {
            onVectorUnit<EveryThirdKernel>(first + i * stride, static_cast<float*>(block));
            values = block;
        }
        addBlock(values, s);
    }
    for (; i < n; ++i) {
        s.add(first[i * stride]);
    }
    return s;
}

} // namespace qel
