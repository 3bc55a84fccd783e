// Words and numbers in text.
#include "Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>

namespace program {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::optional<double> asNumber(const std::string& word) {
    std::string text = word;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == 'D' || c == 'd'; }, 'e');
    const char* first = text.data();
    const char* last = first + text.size();
    if (text.size() > 1 && *first == '+' && first[1] != '-') {
        ++first;
    }
    double value = 0.0;
    const auto result = std::from_chars(first, last, value);
    if (first == last || result.ptr != last) {
        return std::nullopt;
    }
    // Too large or too small, which from_chars does not tell apart: infinite or next to zero.
    return result.ec == std::errc::result_out_of_range ? std::strtod(first, nullptr) : value;
}

} // namespace program
