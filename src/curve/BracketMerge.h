#ifndef QEL_CURVE_BRACKETMERGE_H
#define QEL_CURVE_BRACKETMERGE_H

/// @file
/// Fast road: the brackets of many sorted parameters at once.
///
/// To find them is to merge the parameters with the s-values. A plain merge takes a branch at each
/// of either, which for parameters at random goes wrong every other time, and each of its steps
/// waits for the one before. Here the merge is cut into pieces of equally many steps, which go on
/// side by side and without branches: several times as fast for parameters at random. Two sorted
/// lists have one order, however it is found, so the brackets are those of a search. The weights
/// are then computed in lanes, by the operations of pointBetween.

#include <cstddef>

#include "curve/BracketBlock.h"

namespace qel {

/// True if BracketBlock::kCount parameters are in order.
bool areSorted(const double* parameters);

/// Finds the brackets of a block of parameters, in order and positive.
///
/// @param svalues  in order without repeats; the one before is not above any parameter
/// @param count    how many of them are not above the last parameter; the next is
///
/// The block's indices refer to these s-values.
void mergeBrackets(const double* svalues, std::size_t count, const double* parameters,
                   BracketBlock& block);

} // namespace qel

#endif
