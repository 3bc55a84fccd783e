// Words and numbers in text.
#include "console/Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <sstream>

namespace program {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string trimmed(const std::string& text) {
    const char* blank = " \t\r\"";
    const std::size_t first = text.find_first_not_of(blank);
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(blank) - first + 1);
}

std::vector<std::string> splitAt(char separator, const std::string& list) {
    std::vector<std::string> words;
    std::istringstream stream(list + separator);
    for (std::string word; std::getline(stream, word, separator);) {
        words.push_back(trimmed(word));
    }
    return words;
}

std::string listed(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words) {
        list += (list.empty() ? "" : ", ") + word;
    }
    return list;
}

std::string shortest(double value) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

std::string quoted(const std::string& word) {
    if (word.find_first_of(",;\"\n\r\t") == std::string::npos) {
        return word;
    }
    std::string text = "\"";
    for (const char c : word) {
        text += c == '"' ? "\"\"" : std::string(1, c);
    }
    return text + "\"";
}

std::optional<double> asNumber(std::string word) {
    std::replace_if(
        word.begin(), word.end(), [](char c) { return c == 'D' || c == 'd'; }, 'e');
    char* end = nullptr;
    const double value = std::strtod(word.c_str(), &end);
    const bool whole = !word.empty() && end == word.c_str() + word.size();
    const bool hexadecimal = word.find_first_of("xX") != std::string::npos;
    return whole && !hexadecimal ? std::optional(value) : std::nullopt;
}

} // namespace program
