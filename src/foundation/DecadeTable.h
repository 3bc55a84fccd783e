#ifndef QEL_FOUNDATION_DECADETABLE_H
#define QEL_FOUNDATION_DECADETABLE_H

/// @file
/// The power of ten of a number, looked up.
///
/// Step by step it takes up to nine comparisons, the last of them hard to predict, and a product
/// that waits for each: most of the time of projecting a point onto an edge. But from one power of
/// two to the next there is at most one step. The table holds that step and the decades on both
/// sides, computed by the definition itself, for the numbers of its inner loops; others take the
/// definition.

#include <cstddef>
#include <cstdint>

#include "foundation/Decade.h"
#include "platform/FloatBits.h"

namespace qel {

class DecadeTable {
public:
    constexpr DecadeTable() {
        double low = kLowest;
        for (Row& row : rows_) {
            row = rowFrom(low);
            low *= 2.0;
        }
    }

    /// decadeStepByStep(x), for x positive and finite.
    double decadeOf(double x) const {
        constexpr int kDigitBits = 52;
        constexpr std::uint64_t kExponentOfLowest = 1023 - kOctavesBelowOne;
        const std::uint64_t octave = (bitsOf(x) >> kDigitBits) - kExponentOfLowest;
        if (octave >= kOctaves) { // or below, which wraps around
            return decadeStepByStep(x);
        }
        const Row& row = rows_[octave];
        return x > row.last ? row.above : row.below;
    }

private:
    struct Row {
        double last; // the last number of the lower decade
        double below;
        double above;
    };

    static constexpr std::size_t kOctavesBelowOne = 29;
    static constexpr std::size_t kOctaves = 2 * kOctavesBelowOne;
    static constexpr double kLowest = 1.0 / (1 << kOctavesBelowOne);

    // That of the numbers from low, a power of two, up to its double.
    static constexpr Row rowFrom(double low) {
        constexpr double kEpsilon = 0x1p-52;
        const double high = 2.0 * low - low * kEpsilon;
        Row row{high, decadeStepByStep(low), decadeStepByStep(high)};
        for (const double power : kAscendingPowers) { // belongs to the decade below
            row.last = low <= power && power < high ? power : row.last;
        }
        for (const double power : kDescendingPowers) { // to the one above
            row.last = low < power && power <= high ? power - low * kEpsilon : row.last;
        }
        return row;
    }

    Row rows_[kOctaves] = {};
};

inline constexpr DecadeTable kDecades;

} // namespace qel

#endif
