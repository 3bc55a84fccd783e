#pragma once
// Words and numbers in text.

#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace program {

std::string lower(std::string text);

/// Without white space and quotation marks at both ends.
std::string trimmed(const std::string& text);

/// The words of a list, trimmed; there may be empty ones.
std::vector<std::string> splitAt(char separator, const std::string& list);

/// Words with ", " between them.
std::string listed(const std::vector<std::string>& words);

/// The fewest digits that give the same number back.
std::string shortest(double value);

/// A word of a table in CSV: in quotation marks where it has separators, quotation marks or line
/// ends in it.
std::string quoted(const std::string& word);

/// What printf would print, up to some hundred letters.
template <typename... Values>
std::string formatted(const char* format, Values... values) {
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

/// The number that a word is, as programs write it: with an exponent after E or, as Fortran has it,
/// D; infinite and undefined ones as well. None if the word is anything else.
std::optional<double> asNumber(std::string word);

} // namespace program
