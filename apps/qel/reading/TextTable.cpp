// Tables in text files.
#include "reading/TextTable.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>

#include "console/Messages.h"
#include "console/Text.h"

namespace program {
namespace {

using Words = std::vector<std::string>;

constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kLeastNumbers = 2; // in a row with words

// -- Cells ----

bool hasSeparators(const std::string& line) {
    return line.find_first_of(",;") != std::string::npos;
}

// Marks of quotation stay, unlike in trimmed().
std::string withoutBlanks(const std::string& text) {
    const char* blank = " \t\r";
    const std::size_t first = text.find_first_not_of(blank);
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(blank) - first + 1);
}

// The number that a cell holds, with a decimal point or comma; undefined if there is none; nothing
// if there are words.
std::optional<double> valueOf(std::string cell) {
    const std::string name = lower(cell);
    if (name.empty() || name == "n/a" || name == "na") {
        return kUndefined;
    }
    const std::size_t comma = cell.find(',');
    if (comma != std::string::npos && comma == cell.rfind(',')) {
        cell[comma] = '.';
    }
    return asNumber(cell);
}

std::size_t countNumbers(const Words& cells) {
    return static_cast<std::size_t>(std::count_if(
        cells.begin(), cells.end(), [](const std::string& cell) { return valueOf(cell); }));
}

Words splitAtSpaces(const std::string& line) {
    Words words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(trimmed(word));
    }
    return words;
}

// Cells between separators, which may stand in quotation marks. A mark in them is doubled.
Words splitAtSeparators(char separator, const std::string& line) {
    Words words(1);
    bool inMarks = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool doubled = inMarks && line.compare(i, 2, "\"\"") == 0;
        if (line[i] == '"' && !doubled) {
            inMarks = !inMarks;
        } else if (line[i] == separator && !inMarks) {
            words.emplace_back();
        } else {
            words.back() += line[i];
        }
        i += doubled ? 1 : 0;
    }
    std::transform(words.begin(), words.end(), words.begin(), withoutBlanks);
    return words;
}

// Cells parted by semicolons, else by commas, else by white space. In "0,5 1,25" commas cannot part
// cells, because there are no numbers between them.
Words split(const std::string& line) {
    if (line.find(';') != std::string::npos) {
        return splitAtSeparators(';', line);
    }
    Words bySpaces = splitAtSpaces(line);
    if (line.find(',') == std::string::npos) {
        return bySpaces;
    }
    Words byCommas = splitAtSeparators(',', line);
    const bool decimal = bySpaces.size() > 1 && countNumbers(bySpaces) == bySpaces.size() &&
                         countNumbers(byCommas) < byCommas.size();
    return decimal ? bySpaces : byCommas;
}

// Names of columns that have spaces inside are parted by more of them.
Words splitAtGaps(const std::string& line) {
    Words words(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool gap = line[i] == '\t' || line.compare(i, 2, "  ") == 0;
        if (!gap) {
            words.back() += line[i];
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    std::transform(words.begin(), words.end(), words.begin(), trimmed);
    return words;
}

// -- Tables ----

class TableReader {
public:
    explicit TableReader(const InputFile& input) : input_(input), path_(input.name()) {}

    std::vector<TextTable> read() {
        std::ifstream file(input_.path);
        for (std::string line; std::getline(file, line);) {
            const bool marked = lines_.empty() && line.rfind(kByteOrderMark, 0) == 0;
            lines_.push_back(withoutBlanks(marked ? line.substr(kByteOrderMark.size()) : line));
        }
        for (at_ = 0; at_ < lines_.size(); ++at_) {
            take(lines_[at_]);
        }
        endTable();
        refuseIf(tables_.empty(), path_, " has no rows of numbers");
        return tables_;
    }

private:
    enum class Kind { unknown, number, text }; // of a column; unknown while undefined

    void take(const std::string& line) {
        if (trimmed(line).empty()) {
            endTable();
            return;
        }
        if (line[0] == '#' || line[0] == '%') {
            return;
        }
        const Words cells = split(line);
        const bool isRow = countNumbers(cells) == cells.size() ||
                           (table_.rows.empty() ? startsRows(cells) : continuesRows(cells));
        if (isRow) {
            addRow(cells);
        } else {
            takeTitle(line, cells);
        }
    }

    // Whether cells that are not all numbers are a row: those of the next line are alike, or a
    // header names them.
    bool startsRows(const Words& cells) const {
        if (countNumbers(cells) < kLeastNumbers) {
            return false;
        }
        const bool named = header_.size() == cells.size() || candidate_.size() == cells.size();
        if (named && hasSeparators(lines_[at_])) {
            return true;
        }
        const Words next = at_ + 1 < lines_.size() ? split(lines_[at_ + 1]) : Words();
        return next.size() == cells.size() &&
               std::equal(cells.begin(), cells.end(), next.begin(),
                          [](const std::string& a, const std::string& b) {
                              return a.empty() || b.empty() ||
                                     valueOf(a).has_value() == valueOf(b).has_value();
                          });
    }

    // Lines behind rows that do not begin as a row are titles.
    bool continuesRows(const Words& cells) const {
        const auto number = std::find(kinds_.begin(), kinds_.end(), Kind::number);
        const auto first = static_cast<std::size_t>(number - kinds_.begin());
        const bool hasText = std::count(kinds_.begin(), kinds_.end(), Kind::text) > 0;
        const bool sameSize = cells.size() == kinds_.size();
        return sameSize ? first < cells.size() && valueOf(cells[first]).has_value()
                        : valueOf(cells.front()) || (hasText && countNumbers(cells) > 0);
    }

    void takeTitle(const std::string& line, const Words& cells) {
        // A title may well start with a number, but not be parted by commas besides.
        refuseIf(hasSeparators(line) && valueOf(cells.front()) && !cells.front().empty(),
                 message("is no row of numbers"));
        endTable();
        previousTitle_ = table_.title;
        table_.title = line;
        // Two words above two columns may well be a title, unless they are of one letter.
        const bool mayBeHeader =
            hasSeparators(line) || cells.size() > 2 ||
            std::all_of(cells.begin(), cells.end(),
                        [](const std::string& cell) { return cell.size() == 1; });
        candidate_ = mayBeHeader ? cells : Words();
        gapped_ = hasSeparators(line) || cells.size() == 2 ? Words() : splitAtGaps(line);
    }

    void addRow(const Words& cells) {
        if (table_.rows.empty()) {
            startTable(cells.size());
        }
        refuseIf(cells.size() != kinds_.size(), path_, ", line ", at_ + 1, ": a row of ",
                 cells.size(), " numbers after rows of ", kinds_.size());
        std::vector<double> row;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            row.push_back(takeCell(i, cells[i]));
        }
        table_.rows.push_back(row);
    }

    void startTable(std::size_t columns) {
        const bool headed = candidate_.size() == columns;
        if (headed || gapped_.size() == columns) {
            header_ = headed ? candidate_ : gapped_;
            table_.title = previousTitle_;
        }
        table_.header = header_.size() == columns ? header_ : Words();
        table_.texts.assign(columns, {});
        kinds_.assign(columns, Kind::unknown);
    }

    double takeCell(std::size_t column, const std::string& cell) {
        const std::optional<double> value = valueOf(cell);
        Kind& kind = kinds_[column];
        if (kind == Kind::unknown && !(value.has_value() && std::isnan(*value))) {
            kind = value.has_value() ? Kind::number : Kind::text;
            if (kind == Kind::text) {
                table_.texts[column].resize(table_.rows.size());
            }
        }
        refuseIf(kind == Kind::number && !value.has_value(), message("is no row of numbers"));
        if (kind == Kind::text) {
            table_.texts[column].push_back(cell);
            return kUndefined;
        }
        return *value;
    }

    // A title stays for the rows behind a blank line.
    void endTable() {
        if (!table_.rows.empty()) {
            tables_.push_back(table_);
            table_ = TextTable();
            previousTitle_.clear();
            candidate_.clear();
            gapped_.clear();
        }
    }

    std::string message(const char* what) const {
        return joined(path_, ", line ", at_ + 1, ": \"", lines_[at_], "\" ", what);
    }

    const InputFile& input_;
    std::string path_; // in messages
    std::vector<std::string> lines_;
    std::size_t at_ = 0;
    TextTable table_;
    std::vector<Kind> kinds_;
    std::string previousTitle_;
    Words candidate_; // the words of the last title
    Words gapped_;    // the same, parted by gaps only
    Words header_;    // of the last table that had one; it holds for those behind it too
    std::vector<TextTable> tables_;
};

} // namespace

std::vector<TextTable> readTables(const InputFile& input) {
    return TableReader(input).read();
}

} // namespace program
