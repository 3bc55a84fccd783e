// The layout of PLOT3D files, found out from the files themselves.
//
// A grid file starts with the number of grids (if it can hold several) and the dimensions of each;
// the size of all that follows is then fixed by the layout. So each layout is tried, and the one
// that gives the size of the file to the byte, or of a text to the number, is taken.
#include "Plot3d.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

#include <vtkMultiBlockPLOT3DReader.h>

#include "FileKind.h"

namespace program {
namespace {

constexpr std::int64_t kMaxGrids = 100000;
constexpr std::int64_t kQuantities = 5; // density, three of momentum, energy
constexpr std::int64_t kFreestream = 4; // Mach number, angle, Reynolds number, time

// What the parts of a file take: bytes, or numbers in a text.
struct Sizes {
    explicit Sizes(const Plot3dLayout& layout)
        : integer(layout.text ? 1 : 4),
          real(layout.text              ? 1
               : layout.doublePrecision ? 8
                                        : 4),
          byteCounts(layout.records ? 2 * 4 : 0) {}

    std::int64_t integer;
    std::int64_t real;
    std::int64_t byteCounts; // around a record
};

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// How many numbers a text holds; -1 if it holds anything else.
std::int64_t countNumbers(const std::string& path) {
    static constexpr std::string_view kInNumbers = "0123456789+-.eE";
    std::ifstream file(path, std::ios::binary);
    std::int64_t count = 0;
    char before = ' ';
    for (std::istreambuf_iterator<char> at(file), end; at != end; ++at) {
        const char c = *at;
        if (!isSpace(c)) {
            if (kInNumbers.find(c) == std::string_view::npos) {
                return -1;
            }
            count += isSpace(before) ? 1 : 0;
        }
        before = c;
    }
    return count;
}

std::int64_t sizeOf(const std::string& path, bool text) {
    return text ? countNumbers(path) : static_cast<std::int64_t>(std::filesystem::file_size(path));
}

// Reads the whole numbers of a header; after a failure everything read is -1.
class Header {
public:
    Header(const std::string& path, const Plot3dLayout& layout)
        : file_(path, std::ios::binary), layout_(layout) {}

    std::int64_t number() { return layout_.text ? writtenNumber() : binaryNumber(); }

    // The byte count before or after a record.
    bool recordMark(std::int64_t bytes) { return !layout_.records || number() == bytes; }

private:
    std::int64_t writtenNumber() {
        std::int32_t value = 0;
        file_ >> value;
        const bool whole =
            file_ && (file_.eof() || file_.peek() == std::ifstream::traits_type::eof() ||
                      isSpace(static_cast<char>(file_.peek())));
        if (!whole) {
            file_.setstate(std::ios::failbit);
            return -1;
        }
        return value;
    }

    std::int64_t binaryNumber() {
        std::array<unsigned char, 4> b{};
        if (!file_.read(reinterpret_cast<char*>(b.data()), 4)) {
            return -1;
        }
        const auto at = [&](std::size_t i) {
            return static_cast<std::uint32_t>(b[layout_.bigEndian ? i : 3 - i]);
        };
        return static_cast<std::int32_t>(at(0) << 24U | at(1) << 16U | at(2) << 8U | at(3));
    }

    std::ifstream file_;
    Plot3dLayout layout_;
};

// Points of each grid; empty if the header makes no sense in this layout.
std::vector<std::int64_t> gridSizes(const std::string& path, const Plot3dLayout& layout) {
    Header header(path, layout);
    std::int64_t grids = 1;
    if (layout.multiGrid) {
        if (!header.recordMark(4)) {
            return {};
        }
        grids = header.number();
        if (grids < 1 || grids > kMaxGrids || !header.recordMark(4)) {
            return {};
        }
    }
    const int axes = layout.planar ? 2 : 3;
    if (!header.recordMark(grids * axes * 4)) {
        return {};
    }
    const auto limit = static_cast<std::int64_t>(std::filesystem::file_size(path));
    std::vector<std::int64_t> sizes;
    for (std::int64_t grid = 0; grid < grids; ++grid) {
        std::int64_t points = 1;
        for (int axis = 0; axis < axes; ++axis) {
            const std::int64_t n = header.number();
            if (n < 1 || n > limit / points) {
                return {};
            }
            points *= n;
        }
        sizes.push_back(points);
    }
    return sizes;
}

std::int64_t headerSize(std::int64_t grids, const Plot3dLayout& layout) {
    const Sizes sizes(layout);
    const std::int64_t axes = layout.planar ? 2 : 3;
    return (layout.multiGrid ? sizes.integer + sizes.byteCounts : 0) +
           grids * axes * sizes.integer + sizes.byteCounts;
}

std::int64_t gridFileSize(const std::vector<std::int64_t>& grids, const Plot3dLayout& layout) {
    const Sizes sizes(layout);
    const std::int64_t perPoint =
        (layout.planar ? 2 : 3) * sizes.real + (layout.blanking ? sizes.integer : 0);
    std::int64_t size = headerSize(static_cast<std::int64_t>(grids.size()), layout);
    for (const std::int64_t points : grids) {
        size += points * perPoint + sizes.byteCounts;
    }
    return size;
}

std::int64_t solutionFileSize(const std::vector<std::int64_t>& grids, const Plot3dLayout& layout) {
    const Sizes sizes(layout);
    const std::int64_t quantities = layout.planar ? kQuantities - 1 : kQuantities;
    std::int64_t size = headerSize(static_cast<std::int64_t>(grids.size()), layout);
    for (const std::int64_t points : grids) {
        size += (kFreestream + points * quantities) * sizes.real + 2 * sizes.byteCounts;
    }
    return size;
}

Plot3dLayout layoutOf(unsigned bits, bool text) {
    Plot3dLayout layout;
    layout.text = text;
    layout.planar = (bits & 32U) != 0;
    layout.blanking = (bits & 16U) != 0;
    layout.multiGrid = (bits & 8U) != 0;
    layout.records = (bits & 4U) != 0;
    layout.doublePrecision = (bits & 2U) != 0;
    layout.bigEndian = (bits & 1U) != 0;
    return layout;
}

} // namespace

std::optional<Plot3dLayout> findPlot3dLayout(const std::string& gridPath) {
    const bool text = recognise(gridPath) == FileKind::text;
    const std::int64_t size = sizeOf(gridPath, text);
    // Of a text, only the bits that count numbers; it is read in double precision.
    for (unsigned bits = text ? 2 : 0; bits < 64; bits += text ? 8 : 1) {
        const Plot3dLayout layout = layoutOf(bits, text);
        const std::vector<std::int64_t> grids = gridSizes(gridPath, layout);
        if (!grids.empty() && gridFileSize(grids, layout) == size) {
            return layout;
        }
    }
    return std::nullopt;
}

bool isPlot3dSolution(const std::string& path, const std::string& gridPath,
                      const Plot3dLayout& layout) {
    const std::vector<std::int64_t> grids = gridSizes(gridPath, layout);
    return gridSizes(path, layout) == grids &&
           sizeOf(path, layout.text) >= solutionFileSize(grids, layout);
}

vtkSmartPointer<vtkMultiBlockPLOT3DReader> plot3dReader(const std::string& gridPath,
                                                        const std::string& solutionPath,
                                                        const Plot3dLayout& layout) {
    auto reader = vtkSmartPointer<vtkMultiBlockPLOT3DReader>::New();
    reader->SetXYZFileName(gridPath.c_str());
    reader->SetQFileName(solutionPath.c_str());
    reader->SetBinaryFile(!layout.text);
    reader->SetMultiGrid(layout.multiGrid);
    reader->SetHasByteCount(layout.records);
    reader->SetIBlanking(layout.blanking);
    reader->SetTwoDimensionalGeometry(layout.planar);
    reader->SetDoublePrecision(layout.doublePrecision);
    if (layout.bigEndian) {
        reader->SetByteOrderToBigEndian();
    } else {
        reader->SetByteOrderToLittleEndian();
    }
    // Only what the file holds; nothing derived from it.
    reader->RemoveAllFunctions();
    reader->SetScalarFunctionNumber(-1);
    reader->SetVectorFunctionNumber(-1);
    return reader;
}

} // namespace program
