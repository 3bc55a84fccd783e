#ifndef QEL_PROGRAM_TEXT_H
#define QEL_PROGRAM_TEXT_H

/// @file
/// Words and numbers in text.

#include <optional>
#include <string>

namespace program {

std::string lower(std::string text);

/// The number that a word is, as programs write it: with an exponent after E or, as Fortran has it,
/// D; infinite and undefined ones as well. None if the word is anything else.
std::optional<double> asNumber(const std::string& word);

} // namespace program

#endif
