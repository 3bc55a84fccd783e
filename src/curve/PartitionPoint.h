#ifndef QEL_CURVE_PARTITIONPOINT_H
#define QEL_CURVE_PARTITIONPOINT_H

/// @file
/// Fast road: std::partition_point without branches.
///
/// At each step of a binary search the branch goes the wrong way every other time, which costs more
/// than the step. Here steps choose by arithmetic, and as nothing is then fetched ahead on a guess,
/// both next places are asked for: some 0.6 of the time. Where values lie beyond the caches, this
/// is done for the first steps alone, which all searches share; the rest is the standard's, whose
/// guesses fetch more than one step ahead. The places looked at are those that the standard's
/// search looks at, one after the other, and so it finds the same, whatever the order of the
/// values.

#include <algorithm>
#include <cstddef>

#include "platform/Prefetch.h"

namespace qel {

/// The number of values at the front for which `isBefore` holds, where those for which it does are
/// in front. O(log n).
template <typename IsBefore>
std::size_t partitionPoint(const double* values, std::size_t count, IsBefore isBefore) {
    constexpr std::size_t kInCache = std::size_t{1} << 18;
    const std::size_t rest = count > kInCache ? count >> 12 : 0;
    const double* first = values;
    while (count > rest) {
        const std::size_t half = count / 2;
        prefetch(first + half / 2);
        prefetch(first + half + 1 + half / 2);
        const std::size_t isAfter = isBefore(first[half]) ? 1 : 0;
        first += (half + 1) & (0 - isAfter);
        count = half - (isAfter & ~count); // behind the middle of an even count there is one less
    }
    return static_cast<std::size_t>(std::partition_point(first, first + count, isBefore) - values);
}

} // namespace qel

#endif
