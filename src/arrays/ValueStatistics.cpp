// The statistics of floats in memory, block by block in vector lanes.
//
// Extremes and count do not depend on order, but for the sign of a zero and for NaN, which are
// looked up. The sum does, where it rounds. A sum of doubles is exact, and so free of order, while
// every term is a multiple of some 2^q and no partial sum reaches 2^(53+q): the smallest and the
// largest magnitude tell. Blocks that pass are added up in lanes; the others in index order.

#include "arrays/Statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "arrays/Extremes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 1024;
constexpr std::size_t kMinLanes = 32; // fewer values are faster one by one

struct ExtremesKernel {
    QEL_KERNEL static void run(const float* values, std::size_t n, Extremes* found) {
        *found = Extremes::of(values, n);
    }
};

// What a value adds to the sum. +0 changes none: one that starts at +0 never is -0.
QEL_KERNEL double summandOf(float value) {
    return static_cast<double>(value == kUndefinedFloat ? 0.0f : value);
}

double sumInOrder(double sum, const float* values, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        sum += summandOf(values[i]);
    }
    return sum;
}

// Adds in lanes: of use where every order gives the same sum.
struct SumKernel {
    QEL_KERNEL static void run(const float* values, std::size_t n, double* sum) {
        constexpr std::size_t kSums = 64;
        double sums[kSums] = {};
        std::size_t i = 0;
        for (; n - i >= kSums; i += kSums) {
            for (std::size_t k = 0; k < kSums; ++k) {
                sums[k] += summandOf(values[i + k]);
            }
        }
        for (std::size_t k = 0; k < n - i; ++k) {
            sums[k] += summandOf(values[i + k]);
        }
        for (std::size_t width = kSums / 2; width > 0; width /= 2) {
            for (std::size_t k = 0; k < width; ++k) {
                sums[k] += sums[k + width];
            }
        }
        *sum = sums[0];
    }
};

// True if adding values of these extremes to the sum is exact in every order. All values so far,
// and so the sum, are multiples of the last digit of the smallest magnitude.
bool isExact(double sum, const Extremes& block, std::int32_t smallestMagnitude) {
    constexpr int kDigitBits = 23;
    constexpr int kMinExponent = -149;
    constexpr double kTwoTo53 = 9007199254740992.0;
    const int exponent = std::max(smallestMagnitude >> kDigitBits, 1); // 0 and 1 share the digit
    const double lastDigit = std::ldexp(1.0, exponent - 1 + kMinExponent);
    const double largest = std::max(std::fabs(static_cast<double>(block.minimum())),
                                    std::fabs(static_cast<double>(block.maximum())));
    const double bound = std::fabs(sum) + static_cast<double>(kBlock) * largest;
    return bound < kTwoTo53 * lastDigit && std::isfinite(bound);
}

// As the first valid value of all a NaN is both extremes for good, elsewhere it is none.
void addExtremes(const Extremes& block, const float* values, std::size_t n, ValueStatistics& s) {
    if (s.count == 0 && block.nans > 0) {
        const auto isValid = [](float value) { return value != kUndefinedFloat; };
        const float first = *std::find_if(values, values + n, isValid);
        if (std::isnan(first)) {
            s.min = s.max = first;
        }
    }
    if (std::isnan(s.min) || !block.hasNumbers()) {
        return;
    }
    const float minimum = block.minimumOf(values, n);
    const float maximum = block.maximumOf(values, n);
    if (s.min == kUndefinedFloat || s.min > minimum) {
        s.min = minimum;
    }
    if (s.max == kUndefinedFloat || maximum > s.max) {
        s.max = maximum;
    }
}

// Keeps the smallest magnitude of all blocks.
void addBlock(const float* values, std::size_t n, ValueStatistics& s,
              std::int32_t& smallestMagnitude) {
    Extremes block;
    onVectorUnit<ExtremesKernel>(values, n, &block);
    if (static_cast<std::size_t>(block.undefined) == n) {
        return;
    }
    addExtremes(block, values, n, s);
    smallestMagnitude = std::min(smallestMagnitude, block.closest);
    s.count += n - static_cast<std::size_t>(block.undefined);
    if (block.nans > 0) {
        s.sum = std::numeric_limits<double>::quiet_NaN();
    } else if (isExact(s.sum, block, smallestMagnitude)) {
        double sum = 0.0;
        onVectorUnit<SumKernel>(values, n, &sum);
        s.sum += sum;
    } else if (!std::isnan(s.sum)) {
        s.sum = sumInOrder(s.sum, values, n);
    }
}

// The stride is a constant here, so that lanes are read whole and their values picked.
struct EveryThirdKernel {
    QEL_KERNEL static void run(const float* first, std::size_t n, float* block) {
        for (std::size_t k = 0; k < n; ++k) {
            block[k] = first[3 * k];
        }
    }
};

} // namespace

ValueStatistics statisticsOf(const float* first, std::size_t stride, std::size_t n) {
    ValueStatistics s;
    std::int32_t smallestMagnitude = Extremes::kMaxKey;
    std::size_t i = 0;
    while (n - i >= kMinLanes) {
        const std::size_t count = std::min(n - i, kBlock);
        const float* values = first + i * stride;
        float picked[kBlock];
        if (stride != 1) {
            onVectorUnit<EveryThirdKernel>(values, count, static_cast<float*>(picked));
            values = picked;
        }
        addBlock(values, count, s, smallestMagnitude);
        i += count;
    }
    for (; i < n; ++i) {
        s.add(first[i * stride]);
    }
    return s;
}

} // namespace qel
