#ifndef QEL_CURVE_BRACKET_H
#define QEL_CURVE_BRACKET_H

/// @file
/// The stored points around an s.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qel {

/// hi is the first index whose s-value is greater than s; lo is the first index whose s-value
/// equals s if there is one, else the last whose s-value is less.
struct Bracket {
    std::size_t lo;
    std::size_t hi;
};

/// The bracket of an s strictly between the first and the last s-value. Both indices are valid
/// also where NaN stands among the s-values. O(log n).
inline Bracket bracketOf(const std::vector<double>& svalues, double s) {
    const auto first = svalues.begin();
    const auto hi = std::upper_bound(first, svalues.end(), s);
    auto lo = std::lower_bound(first, svalues.end(), s);
    if (lo == hi) {
        --lo;
    }
    return {static_cast<std::size_t>(lo - first), static_cast<std::size_t>(hi - first)};
}

} // namespace qel

#endif
