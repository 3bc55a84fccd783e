#pragma once
// Tables in text files.

#include <string>
#include <vector>

#include "reading/InputFile.h"

namespace program {

/// Rows of numbers, and of words beside them, under one title.
struct TextTable {
    std::string title;
    std::vector<std::string> header;             ///< one name for each column, or empty
    std::vector<std::vector<double>> rows;       ///< NaN where a cell is empty or holds words
    std::vector<std::vector<std::string>> texts; ///< for each column its words; none of numbers

    bool isText(std::size_t column) const { return !texts[column].empty(); }
};

/// Reads columns separated by commas, semicolons, tabs or spaces; numbers have decimal points or,
/// where commas cannot be separators, decimal commas. Between commas and semicolons words may stand
/// in quotation marks. Empty cells and n/a are undefined. Columns of words have to stand beside two
/// of numbers. Other lines of words are titles or, if they have one word (or words parted by two
/// spaces) for each column, headers; they and blank lines start a new table. Lines that start with
/// # or % are left out. Tables without rows are dropped.
/// @throws UserError  naming the line, for words in a column of numbers or a row with another
/// number
///     of columns than the one before; and for a file without rows
std::vector<TextTable> readTables(const InputFile& input);

} // namespace program
