#ifndef QEL_ARRAYS_BLOCKSUMS_H
#define QEL_ARRAYS_BLOCKSUMS_H

/// @file
/// Extremes and exact sums of blocks of floats or doubles, in vector lanes.

#include <cstddef>

#include "arrays/ExactSum.h"

namespace qel {

/// Most numbers of a block: few enough to stay in the cache from one look to the next.
constexpr std::size_t kSumBlock = 1024;

/// What is found in a block of numbers, of which those equal to the largest finite one are
/// undefined and those neither undefined nor NaN valid.
template <typename T>
struct BlockContents {
    T least;    ///< of the valid numbers, if there are any
    T most;     ///< likewise
    T smallest; ///< magnitude of the finite ones other than 0, if there are any
    T largest;  ///< magnitude of the finite ones; 0 if there is no other
    std::size_t undefined;
    std::size_t notANumber;
};

/// Copies the numbers that are valid and finite, and 0 in place of the others. `from` is the first
/// byte and needs no alignment.
template <typename T>
BlockContents<T> copyFinite(const char* from, std::size_t n, T* finite);

/// Adds the numbers that copyFinite gave to both sums, exactly. May set some of them to 0.
template <typename T>
void addFinite(T* finite, std::size_t n, const BlockContents<T>& contents, FixedPointSum sum,
               FixedPointSum squares);

} // namespace qel

#endif
