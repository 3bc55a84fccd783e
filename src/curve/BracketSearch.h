#ifndef QEL_CURVE_BRACKETSEARCH_H
#define QEL_CURVE_BRACKETSEARCH_H

/// @file
/// Fast road: the brackets of parameters in any order, by many binary searches side by side.
///
/// A search through s-values takes a branch at each step that goes wrong every other time, and each
/// step waits for the one before. Here as many searches as hide that wait take their steps
/// together, and choose without a branch: a tenth of the time. Among distinct s-values in order
/// there is one bracket to be found, however it is.

#include <cstddef>

#include "curve/BracketBlock.h"

namespace qel {

/// Finds the brackets of the first parameters of a list, as many as the block has room for: a
/// multiple of kSearchGroup. Those of parameters that lie not inside the curve are bounds at one of
/// its ends and of no use.
///
/// @param svalues  `size` of them, two or more, in order without repeats
/// @return how many
std::size_t searchBrackets(const double* svalues, std::size_t size, const double* parameters,
                           std::size_t count, BracketBlock& block);

/// Searches that go on together.
constexpr std::size_t kSearchGroup = 32;

} // namespace qel

#endif
