#pragma once
// Tables of numbers in text files.

#include <string>
#include <vector>

namespace program {

/// Rows of numbers under one title.
struct TextTable {
    std::string title;
    std::vector<std::string> header; ///< one name for each column, or empty
    std::vector<std::vector<double>> rows;
};

/// Reads columns separated by commas, semicolons, tabs or spaces. Lines of words are titles or, if
/// they have one word for each column, headers; they and blank lines start a new table. Lines that
/// start with # or % are left out. Tables without rows are dropped.
/// @throws UserError  naming the line, for a row that mixes words and numbers or has another number
///     of columns than the one before; and for a file without rows
std::vector<TextTable> readTables(const std::string& path);

} // namespace program
