#ifndef QEL_CURVE_BRACKETWINDOWS_H
#define QEL_CURVE_BRACKETWINDOWS_H

/// @file
/// Fast road: the brackets of sorted parameters, eight at a time.
///
/// Where a curve is sampled about as finely as it is stored, the brackets of eight parameters in
/// order lie among sixteen s-values in a row. Those fit into two registers, in which eight binary
/// searches of four steps go on side by side, without a branch that parameters at random would send
/// the wrong way. One comparison with the next parameter tells where its window begins, before the
/// searches are done. The values found on both sides of each parameter prove its bracket, whatever
/// the parameters are.

#include <cstddef>

#include "curve/BracketBlock.h"

namespace qel {

/// Parameters that are found at once.
constexpr std::size_t kWindowGroup = 8;

/// Finds the brackets of the first parameters of a list, group after group, as long as a group lies
/// within one window and the block has room. None without the vector unit for it.
///
/// @param svalues  `size` of them, in order without repeats
/// @param above    index of the first s-value above the first parameter
/// @return how many brackets were found, all of them above the first segment: a multiple of
///         kWindowGroup
std::size_t findInWindows(const double* svalues, std::size_t size, std::size_t above,
                          const double* parameters, std::size_t count, BracketBlock& block);

} // namespace qel

#endif
