#pragma once
// Arguments of operations on curves, and what the operations print.

#include <ostream>

#include "curves/Curves.h"

namespace program {

/// @throws UserError  if the word is no finite number
double numberOf(const std::string& word);

/// @throws UserError  if the word is no whole number
int countOf(const std::string& word);

/// Reads x,y,z.
/// @throws UserError  if the word is anything else
Point triplet(const std::string& word);

/// Writes x,y,z, each in the fewest digits that give the same number back.
std::string text(const Point& p);

/// Standard output, without a bar of progress in the way.
std::ostream& out();

} // namespace program
