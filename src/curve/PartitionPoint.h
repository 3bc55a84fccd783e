#ifndef QEL_CURVE_PARTITIONPOINT_H
#define QEL_CURVE_PARTITIONPOINT_H

/// @file
/// Fast path: std::partition_point whose last steps take no branches.
///
/// Branches win at the first steps of a binary search: consecutive parameters share them, and a
/// guess fetches values ahead. The last steps differ from parameter to parameter, so that a branch
/// is mispredicted every other time; there arithmetic chooses. The values looked at are those that
/// the standard's search looks at, one after the other, and so it finds the same, whatever the
/// order of the values.

#include <cstddef>

namespace qel {

/// The number of values at the front for which `isBefore` holds, where those for which it does are
/// in front. O(log n).
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

} // namespace qel

#endif
