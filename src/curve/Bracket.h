#ifndef QEL_CURVE_BRACKET_H
#define QEL_CURVE_BRACKET_H

/// @file
/// The stored points around an s.

#include <cstddef>
#include <vector>

#include "curve/PartitionPoint.h"

namespace qel {

/// hi is the first index whose s-value is greater than s; lo is the first index whose s-value
/// equals s if there is one, else the last whose s-value is less.
struct Bracket {
    std::size_t lo;
    std::size_t hi;
};

/// The bracket of an s strictly between the first and the last s-value. Both indices are valid
/// also where NaN stands among the s-values. O(log n).
///
/// hi is what std::upper_bound finds. It is what std::lower_bound finds, too, unless that is s
/// itself or the search came across a NaN.
inline Bracket bracketOf(const std::vector<double>& svalues, double s) {
    double zero = 0.0; // a NaN or an infinity among the values makes it a NaN
    const std::size_t lower =
        partitionPoint(svalues.data(), svalues.size(), [s, &zero](double value) {
            zero += value * 0.0;
            return value < s;
        });
    if (svalues[lower] != s && zero == 0.0) {
        return {lower - 1, lower};
    }
    const std::size_t upper =
        partitionPoint(svalues.data(), svalues.size(), [s](double value) { return !(s < value); });
    return {lower == upper ? lower - 1 : lower, upper};
}

} // namespace qel

#endif
