// The size that a netCDF file should have.
//
// The header of the classic formats (1: 32-bit offsets, 2: 64-bit offsets, 5: 64-bit data) lists
// dimensions, attributes and variables, all numbers big-endian. A variable lies at its offset, with
// one part for each record if its first dimension is the unlimited one, of length zero.
#include "NetcdfSize.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <vector>

namespace program {
namespace {

constexpr std::uint64_t kDamaged = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kAlignment = 4;
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 60U; // more than any file has
// Bytes of the types 1 to 11: byte, char, short, int, float, double and the whole numbers of 5.
constexpr std::array<std::uint64_t, 12> kTypeSizes{0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};

std::uint64_t padded(std::uint64_t size) {
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

class Header {
public:
    explicit Header(const std::string& path) : file_(path, std::ios::binary) {}

    // The number after "CDF"; 0 if it is no such file.
    int version() {
        std::array<char, 4> magic{};
        file_.read(magic.data(), magic.size());
        version_ = magic[0] == 'C' && magic[1] == 'D' && magic[2] == 'F' ? magic[3] : 0;
        return file_ ? version_ : 0;
    }

    std::uint64_t size() {
        records_ = number(countBytes());
        if (records_ == kDamaged >> (64U - 8U * countBytes())) {
            records_ = 0; // not told
        }
        readDimensions();
        skipAttributes();
        readVariables();
        return file_ ? end() : kDamaged;
    }

private:
    struct Variable {
        std::uint64_t begin;
        std::uint64_t size; // of one record, if it has records
        bool hasRecords;
    };

    unsigned countBytes() const { return version_ == 5 ? 8 : 4; }
    unsigned offsetBytes() const { return version_ == 1 ? 4 : 8; }

    std::uint64_t number(unsigned bytes) {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < bytes; ++i) {
            value = value << 8U | static_cast<unsigned char>(file_.get());
        }
        return value;
    }

    // Always forwards, so that what a damaged file says cannot keep the reader going round.
    void skip(std::uint64_t bytes) {
        if (bytes > kMostBytes) {
            file_.setstate(std::ios::failbit);
            return;
        }
        file_.seekg(static_cast<std::streamoff>(padded(bytes)), std::ios::cur);
    }
    void skipName() { skip(number(countBytes())); }

    // Of a list: its tag is left out.
    std::uint64_t listLength() {
        number(4);
        return number(countBytes());
    }

    std::uint64_t typeSize() {
        const std::uint64_t type = number(4);
        if (type >= kTypeSizes.size()) {
            file_.setstate(std::ios::failbit);
            return 0;
        }
        return kTypeSizes[type];
    }

    void readDimensions() {
        const std::uint64_t count = listLength();
        for (std::uint64_t i = 0; i < count && file_; ++i) {
            skipName();
            dimensions_.push_back(number(countBytes()));
        }
    }

    void skipAttributes() {
        const std::uint64_t count = listLength();
        for (std::uint64_t i = 0; i < count && file_; ++i) {
            skipName();
            const std::uint64_t size = typeSize();
            skip(size * number(countBytes()));
        }
    }

    void readVariables() {
        const std::uint64_t count = listLength();
        for (std::uint64_t i = 0; i < count && file_; ++i) {
            skipName();
            Variable variable{0, 1, false};
            const std::uint64_t axes = number(countBytes());
            for (std::uint64_t axis = 0; axis < axes && file_; ++axis) {
                const std::uint64_t id = number(countBytes());
                const std::uint64_t length = id < dimensions_.size() ? dimensions_[id] : 1;
                variable.hasRecords = variable.hasRecords || length == 0;
                variable.size *= length == 0 ? 1 : length;
            }
            skipAttributes();
            variable.size *= typeSize();
            number(countBytes()); // its size again, which may be cut off to 32 bits
            variable.begin = number(offsetBytes());
            variables_.push_back(variable);
        }
    }

    std::uint64_t end() const {
        std::uint64_t record = 0;
        std::uint64_t recordVariables = 0;
        for (const Variable& variable : variables_) {
            record += variable.hasRecords ? padded(variable.size) : 0;
            recordVariables += variable.hasRecords ? 1 : 0;
        }
        std::uint64_t end = 0;
        for (const Variable& variable : variables_) {
            std::uint64_t last = variable.begin + variable.size;
            if (variable.hasRecords) {
                // The records of a single variable stand without padding.
                const std::uint64_t step = recordVariables == 1 ? variable.size : record;
                last = records_ == 0 ? 0 : last + (records_ - 1) * step;
            }
            end = std::max(end, last);
        }
        return end;
    }

    std::ifstream file_;
    int version_ = 0;
    std::uint64_t records_ = 0;
    std::vector<std::uint64_t> dimensions_;
    std::vector<Variable> variables_;
};

} // namespace

std::optional<std::uint64_t> netcdfSize(const std::string& path) {
    Header header(path);
    const int version = header.version();
    if (version != 1 && version != 2 && version != 5) {
        return std::nullopt;
    }
    return header.size();
}

} // namespace program
