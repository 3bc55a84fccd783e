#ifndef QEL_CURVE_BRACKET_H
#define QEL_CURVE_BRACKET_H

/// @file
/// The stored points around an s.

#include <cstddef>
#include <vector>

namespace qel {

/// The number of values at the front for which `isBefore` holds, where those for which it does are
/// in front: std::partition_point, whose last steps take no branches. O(log n).
///
/// Branches win at the first steps of a binary search: consecutive parameters share them, and a
/// guess fetches values ahead. The last steps differ from parameter to parameter, so that a branch
/// is mispredicted every other time; there arithmetic chooses. The values looked at are those that
/// the standard's search looks at, one after the other, and so it finds the same, whatever the
/// order of the values.
template <typename IsBefore>
std::size_t partitionPoint(const double* values, std::size_t count, IsBefore isBefore) {
    constexpr std::size_t kWithoutBranches = 16; // values among which the search ends
    const double* first = values;
    while (count > kWithoutBranches) {
        const std::size_t half = count / 2;
        if (isBefore(first[half])) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    while (count > 0) {
        const std::size_t half = count / 2;
        const std::size_t isAfter = isBefore(first[half]) ? 1 : 0;
        first += (half + 1) & (0 - isAfter);
        count = half - (isAfter & ~count); // behind the middle of an even count there is one less
    }
    return static_cast<std::size_t>(first - values);
}

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
