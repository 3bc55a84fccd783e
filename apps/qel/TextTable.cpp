// Tables of numbers in text files.
#include "TextTable.h"

#include <algorithm>
#include <fstream>

#include "Console.h"
#include "FileKind.h"
#include "Text.h"

namespace program {
namespace {

std::string trimmed(const std::string& text) {
    const char* blank = " \t\r\"";
    const std::size_t first = text.find_first_not_of(blank);
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(blank) - first + 1);
}

// Words between commas or semicolons may be empty and have spaces inside; otherwise any run of
// white space separates.
std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> words;
    const char separator = line.find(';') != std::string::npos   ? ';'
                           : line.find(',') != std::string::npos ? ','
                                                                 : ' ';
    std::string word;
    for (const char c : line + separator) {
        const bool ends = separator == ' ' ? c == ' ' || c == '\t' || c == '\r' : c == separator;
        if (!ends) {
            word += c;
        } else if (separator != ' ' || !word.empty()) {
            words.push_back(trimmed(word));
            word.clear();
        }
    }
    return words;
}

// Words may be the names of the columns below, or a title that has as many words by chance: in a
// file of two columns parted by spaces only names of one letter are taken for a header.
bool canBeHeader(const std::string& line, const std::vector<std::string>& words) {
    return line.find_first_of(",;") != std::string::npos || words.size() > 2 ||
           std::all_of(words.begin(), words.end(),
                       [](const std::string& word) { return word.size() == 1; });
}

// Whether a line is meant as a row of numbers, though some word in it is none: a title may well
// start with a number, but not be parted by commas besides.
bool isRow(const std::string& line, const std::vector<std::string>& words) {
    return line.find_first_of(",;") != std::string::npos && asNumber(words.front()).has_value();
}

class TableReader {
public:
    explicit TableReader(std::string path) : path_(std::move(path)) {}

    std::vector<TextTable> read() {
        std::ifstream file(path_);
        for (std::string line; std::getline(file, line);) {
            ++lineNumber_;
            if (lineNumber_ == 1 && line.rfind(kByteOrderMark, 0) == 0) {
                line.erase(0, kByteOrderMark.size());
            }
            take(trimmed(line));
        }
        endTable();
        if (tables_.empty()) {
            throw UserError(path_ + " has no rows of numbers");
        }
        return tables_;
    }

private:
    void take(const std::string& line) {
        if (line.empty()) {
            endTable();
            return;
        }
        if (line[0] == '#' || line[0] == '%') {
            return;
        }
        const std::vector<std::string> words = split(line);
        std::vector<double> row;
        for (const std::string& word : words) {
            if (const auto number = asNumber(word)) {
                row.push_back(*number);
            }
        }
        if (row.size() == words.size()) {
            addRow(row);
        } else if (row.empty() || (current_.rows.empty() && !isRow(line, words))) {
            endTable();
            current_.title = line;
            current_.header = canBeHeader(line, words) ? words : Header();
        } else {
            throw UserError(place() + "\"" + line + "\" is no row of numbers");
        }
    }

    void addRow(const std::vector<double>& row) {
        if (current_.rows.empty()) {
            if (current_.header.size() == row.size()) {
                header_ = current_.header;
                current_.title.clear();
            } else {
                current_.header = header_.size() == row.size() ? header_ : Header();
            }
        } else if (row.size() != current_.rows.front().size()) {
            throw UserError(place() + "a row of " + std::to_string(row.size()) +
                            " numbers after rows of " +
                            std::to_string(current_.rows.front().size()));
        }
        current_.rows.push_back(row);
    }

    // A title stays for the rows behind a blank line.
    void endTable() {
        if (!current_.rows.empty()) {
            tables_.push_back(current_);
            current_ = TextTable();
        }
    }

    std::string place() const { return path_ + ", line " + std::to_string(lineNumber_) + ": "; }

    using Header = std::vector<std::string>;
    std::string path_;
    std::size_t lineNumber_ = 0;
    TextTable current_;
    Header header_; // of the last table that had one; it holds for those behind it too
    std::vector<TextTable> tables_;
};

} // namespace

std::vector<TextTable> readTables(const std::string& path) {
    return TableReader(path).read();
}

} // namespace program
