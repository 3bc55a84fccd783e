// The layout of PLOT3D files, found out from the files themselves.
//
// A grid file starts with the number of grids (if it can hold several) and the dimensions of each;
// the size of all that follows is then fixed by the layout. So each layout is tried, and the one
// that gives the size of the file to the byte is taken.
#include "Plot3d.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include <vtkMultiBlockPLOT3DReader.h>

namespace program {
namespace {

constexpr std::int64_t kMaxGrids = 100000;
constexpr std::int64_t kQuantities = 5;     // density, three of momentum, energy
constexpr std::int64_t kFreestream = 4;     // Mach number, angle, Reynolds number, time
constexpr std::int64_t kByteCounts = 2 * 4; // around a record

// Reads the four-byte numbers of a header; after a failure everything read is -1.
class Header {
public:
    Header(const std::string& path, const Plot3dLayout& layout)
        : file_(path, std::ios::binary), layout_(layout) {}

    std::int64_t number() {
        std::array<unsigned char, 4> b{};
        if (!file_.read(reinterpret_cast<char*>(b.data()), 4)) {
            return -1;
        }
        const auto at = [&](std::size_t i) {
            return static_cast<std::uint32_t>(b[layout_.bigEndian ? i : 3 - i]);
        };
        return static_cast<std::int32_t>(at(0) << 24U | at(1) << 16U | at(2) << 8U | at(3));
    }

    // The byte count before or after a record.
    bool recordMark(std::int64_t bytes) { return !layout_.records || number() == bytes; }

private:
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
            if (n < 1 || n > limit || points > limit) {
                return {};
            }
            points *= n;
        }
        sizes.push_back(points);
    }
    return sizes;
}

std::int64_t headerSize(std::int64_t grids, const Plot3dLayout& layout) {
    const std::int64_t counts = layout.records ? kByteCounts : 0;
    const std::int64_t axes = layout.planar ? 2 : 3;
    return (layout.multiGrid ? 4 + counts : 0) + grids * axes * 4 + counts;
}

std::int64_t gridFileSize(const std::vector<std::int64_t>& sizes, const Plot3dLayout& layout) {
    const std::int64_t real = layout.doublePrecision ? 8 : 4;
    const std::int64_t perPoint = (layout.planar ? 2 : 3) * real + (layout.blanking ? 4 : 0);
    std::int64_t size = headerSize(static_cast<std::int64_t>(sizes.size()), layout);
    for (const std::int64_t points : sizes) {
        size += points * perPoint + (layout.records ? kByteCounts : 0);
    }
    return size;
}

std::int64_t solutionFileSize(const std::vector<std::int64_t>& sizes, const Plot3dLayout& layout) {
    const std::int64_t real = layout.doublePrecision ? 8 : 4;
    const std::int64_t quantities = layout.planar ? kQuantities - 1 : kQuantities;
    std::int64_t size = headerSize(static_cast<std::int64_t>(sizes.size()), layout);
    for (const std::int64_t points : sizes) {
        size += (kFreestream + points * quantities) * real + (layout.records ? 2 * kByteCounts : 0);
    }
    return size;
}

} // namespace

std::optional<Plot3dLayout> findPlot3dLayout(const std::string& gridPath) {
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(gridPath));
    for (unsigned bits = 0; bits < 64; ++bits) {
        Plot3dLayout layout;
        layout.planar = (bits & 32U) != 0;
        layout.blanking = (bits & 16U) != 0;
        layout.records = (bits & 8U) != 0;
        layout.multiGrid = (bits & 4U) != 0;
        layout.doublePrecision = (bits & 2U) != 0;
        layout.bigEndian = (bits & 1U) != 0;
        const std::vector<std::int64_t> sizes = gridSizes(gridPath, layout);
        if (!sizes.empty() && gridFileSize(sizes, layout) == size) {
            return layout;
        }
    }
    return std::nullopt;
}

bool isPlot3dSolution(const std::string& path, const std::string& gridPath,
                      const Plot3dLayout& layout) {
    const std::vector<std::int64_t> sizes = gridSizes(gridPath, layout);
    return gridSizes(path, layout) == sizes &&
           static_cast<std::int64_t>(std::filesystem::file_size(path)) >=
               solutionFileSize(sizes, layout);
}

vtkSmartPointer<vtkMultiBlockPLOT3DReader> plot3dReader(const std::string& gridPath,
                                                        const std::string& solutionPath,
                                                        const Plot3dLayout& layout) {
    auto reader = vtkSmartPointer<vtkMultiBlockPLOT3DReader>::New();
    reader->SetXYZFileName(gridPath.c_str());
    reader->SetQFileName(solutionPath.c_str());
    reader->SetBinaryFile(1);
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
