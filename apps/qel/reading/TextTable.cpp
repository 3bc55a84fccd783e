// Tables of numbers in text files.
#include "reading/TextTable.h"

#include <algorithm>
#include <fstream>

#include "console/Messages.h"
#include "console/Text.h"
#include "reading/InputFile.h"

namespace program {
namespace {

using Words = std::vector<std::string>;

bool hasSeparators(const std::string& line) {
    return line.find_first_of(",;") != std::string::npos;
}

// Words between commas or semicolons may be empty and have spaces inside; otherwise white space of
// any length separates.
Words split(const std::string& line) {
    if (hasSeparators(line)) {
        return splitAt(line.find(';') != std::string::npos ? ';' : ',', line);
    }
    Words words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(trimmed(word));
    }
    return words;
}

// Words may be the names of the columns below, or a title that has as many words by chance: in a
// file of two columns parted by spaces only names of one letter are taken for a header.
bool canBeHeader(const std::string& line, const Words& words) {
    return hasSeparators(line) || words.size() > 2 ||
           std::all_of(words.begin(), words.end(),
                       [](const std::string& word) { return word.size() == 1; });
}

class TableReader {
public:
    explicit TableReader(const std::string& path) : path_(path) {}

    std::vector<TextTable> read() {
        std::ifstream file(path_);
        for (std::string line; std::getline(file, line);) {
            ++lineNumber_;
            const bool marked = lineNumber_ == 1 && line.rfind(kByteOrderMark, 0) == 0;
            take(trimmed(marked ? line.substr(kByteOrderMark.size()) : line));
        }
        endTable();
        refuseIf(tables_.empty(), path_, " has no rows of numbers");
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
        const Words words = split(line);
        std::vector<double> row;
        for (const std::string& word : words) {
            if (const auto number = asNumber(word)) {
                row.push_back(*number);
            }
        }
        if (row.size() == words.size()) {
            addRow(row);
            return;
        }
        // A title may well start with a number, but not be parted by commas besides.
        const bool startsRow = hasSeparators(line) && asNumber(words.front()).has_value();
        refuseIf(!row.empty() && (!current_.rows.empty() || startsRow), path_, ", line ",
                 lineNumber_, ": \"", line, "\" is no row of numbers");
        endTable();
        current_.title = line;
        current_.header = canBeHeader(line, words) ? words : Words();
    }

    void addRow(const std::vector<double>& row) {
        if (!current_.rows.empty()) {
            const std::size_t columns = current_.rows.front().size();
            refuseIf(row.size() != columns, path_, ", line ", lineNumber_, ": a row of ",
                     row.size(), " numbers after rows of ", columns);
        } else if (current_.header.size() == row.size()) {
            header_ = current_.header;
            current_.title.clear();
        } else {
            current_.header = header_.size() == row.size() ? header_ : Words();
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

    const std::string& path_;
    int lineNumber_ = 0;
    TextTable current_;
    Words header_; // of the last table that had one; it holds for those behind it too
    std::vector<TextTable> tables_;
};

} // namespace

std::vector<TextTable> readTables(const std::string& path) {
    return TableReader(path).read();
}

} // namespace program
