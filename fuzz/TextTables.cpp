// The program's reader of tables of numbers, on files of any bytes: a file is refused with a
// message to the user, or its tables are rectangular.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "Input.h"
#include "console/Messages.h"
#include "reading/InputFile.h"
#include "reading/TextTable.h"

namespace {

using qel_fuzz::require;

// A file in memory, overwritten for each input.
class ScratchFile {
public:
    ScratchFile() : descriptor_(memfd_create("table", 0)) {
        require(descriptor_ >= 0, "a file can be made in memory");
    }
    ~ScratchFile() { close(descriptor_); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

    void write(const std::uint8_t* data, std::size_t size) const {
        const auto length = static_cast<ssize_t>(size);
        require(ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, data, size, 0) == length,
                "the file in memory can be written");
    }

private:
    int descriptor_;
};

void checkTable(const program::TextTable& table) {
    require(!table.rows.empty(), "a table has rows");
    const std::size_t columns = table.rows.front().size();
    for (const auto& row : table.rows) {
        require(row.size() == columns, "rows have the same number of columns");
    }
    require(table.header.empty() || table.header.size() == columns, "every column has a name");
    require(table.texts.size() == columns, "every column is one of numbers or of words");
    for (const auto& words : table.texts) {
        require(words.empty() || words.size() == table.rows.size(), "words stand in every row");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFile file;
    file.write(data, size);
    try {
        const auto tables = program::readTables(program::recognise(file.path()));
        require(!tables.empty(), "a file that is read has tables");
        for (const program::TextTable& table : tables) {
            checkTable(table);
        }
    } catch (const program::UserError& error) {
        require(*error.what() != '\0', "a refusal says why");
    }
    return 0;
}
