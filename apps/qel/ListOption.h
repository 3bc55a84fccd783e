#ifndef QEL_PROGRAM_LISTOPTION_H
#define QEL_PROGRAM_LISTOPTION_H

/// @file
/// Options and arguments that are lists.

#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace program {

/// The words of a list separated by commas, without the blanks around them.
inline std::vector<std::string> splitAtCommas(const std::string& list) {
    std::vector<std::string> words;
    std::istringstream stream(list);
    for (std::string word; std::getline(stream, word, ',');) {
        const std::size_t first = word.find_first_not_of(' ');
        const std::size_t last = word.find_last_not_of(' ');
        words.push_back(first == std::string::npos ? "" : word.substr(first, last - first + 1));
    }
    return words;
}

/// Adds an option whose one argument is such a list. Other words are left to the command, which
/// may have arguments of its own behind the option.
inline void addListOption(CLI::App* command, const std::string& name,
                          std::vector<std::string>& words, const std::string& help) {
    command->add_option_function<std::string>(
        name, [&words](const std::string& list) { words = splitAtCommas(list); }, help);
}

} // namespace program

#endif
