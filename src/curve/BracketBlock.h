#ifndef QEL_CURVE_BRACKETBLOCK_H
#define QEL_CURVE_BRACKETBLOCK_H

/// @file
/// Brackets of many parameters, and the points at them.

#include <cstddef>
#include <cstdint>

#include "curve/Conversions.h"

namespace qel {

/// A block of parameters with their brackets among s-values of which no two count as equal.
/// BracketWindows.h, BracketMerge.h and BracketSearch.h fill it.
class BracketBlock {
public:
    static constexpr std::size_t kCount = 256;

    /// Index of the first s-value above the parameter.
    std::size_t above(std::size_t k) const { return words_[kHalf + k]; }
    std::uint64_t* allAbove() { return words_ + kHalf; }

    /// Weight of the bracket's upper point: (s - sLo) / (sHi - sLo).
    double weight(std::size_t k) const { return weights_[k]; }
    double* weights() { return weights_; }

    /// Room for the bits of the parameters and a bound beyond them, for those who merge. The index
    /// above a parameter stands kHalf words behind its bits, so that one pointer serves for both.
    std::uint64_t* parameterBits() { return words_; }
    static constexpr std::size_t kHalf = kCount + 1;

    /// Fast road: out[k] = pLo + (pHi - pLo) * weight for the first of the parameters.
    ///
    /// @param points  those of the s-values that the indices refer to
    ///
    /// Vector units read a point's coordinates and write them together, where a loop over them
    /// would do so one by one. They compute the same.
    void interpolate(const Point* points, std::size_t count, Point* out) const;

private:
    std::uint64_t words_[2 * kHalf];
    double weights_[kCount];
};

} // namespace qel

#endif
