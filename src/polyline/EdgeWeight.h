#ifndef QEL_POLYLINE_EDGEWEIGHT_H
#define QEL_POLYLINE_EDGEWEIGHT_H

/// @file
/// The edge that holds an s, and how far along it the s lies.

#include <cstddef>
#include <vector>

#include "curve/Bracket.h"

namespace qel {

/// A place at or beyond an end, or at a vertex, has both vertices equal.
struct EdgeWeight {
    std::size_t lo;
    std::size_t hi;
    double weight; // of hi
};

/// At an s that several vertices share, the first of them. O(log n).
inline EdgeWeight edgeWeightAt(const std::vector<double>& svalues, double s) {
    if (!(s > svalues.front())) {
        return {0, 0, 0.0};
    }
    const std::size_t last = svalues.size() - 1;
    if (!(s < svalues.back())) {
        return {last, last, 0.0};
    }
    const Bracket bracket = bracketOf(svalues, s);
    const double sLo = svalues[bracket.lo];
    if (sLo == s) {
        return {bracket.lo, bracket.lo, 0.0};
    }
    return {bracket.lo, bracket.hi, (s - sLo) / (svalues[bracket.hi] - sLo)};
}

} // namespace qel

#endif
