// PLOT3D files, which do not say how they are laid out.
//
// A grid in text starts with the number of blocks (if it can hold several) and the dimensions of
// each; the count of all numbers is then fixed by the layout. So each layout is tried, and the one
// that gives the count is taken.
#include "reading/Plot3d.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>

#include <vtkMultiBlockPLOT3DReader.h>

namespace program {
namespace {

struct TextLayout {
    bool multiGrid;
    bool blanking; // with an iblank number for each point
    bool planar;   // two-dimensional
};

// How many numbers a text holds; -1 if it holds anything else.
long long countNumbers(const std::string& path) {
    static constexpr std::string_view kInNumbers = "0123456789+-.eE";
    std::ifstream file(path, std::ios::binary);
    long long count = 0;
    bool inNumber = false;
    for (std::istreambuf_iterator<char> at(file), end; at != end; ++at) {
        const bool space = std::isspace(static_cast<unsigned char>(*at)) != 0;
        if (!space && kInNumbers.find(*at) == std::string_view::npos) {
            return -1;
        }
        count += !space && !inNumber ? 1 : 0;
        inNumber = !space;
    }
    return count;
}

// How many numbers a grid has by the dimensions that it starts with; 0 if it has none that are less
// than a limit in this layout.
long long sizeOf(const std::string& path, const TextLayout& layout, long long limit) {
    std::ifstream file(path);
    const auto next = [&]() -> long long {
        long long number = 0;
        file >> number;
        return file && std::isspace(file.peek()) != 0 && number < limit ? number : 0;
    };
    const long long axes = layout.planar ? 2 : 3;
    const long long grids = layout.multiGrid ? next() : 1;
    long long size = layout.multiGrid ? 1 : 0;
    for (long long grid = 0; grid < grids && size < limit; ++grid) {
        long long points = 1;
        for (long long axis = 0; axis < axes; ++axis) {
            const long long n = next();
            points = n > 0 && n <= limit / points ? n * points : limit;
        }
        size += axes + points * (axes + (layout.blanking ? 1 : 0));
    }
    return size;
}

std::optional<TextLayout> layoutOf(const std::string& path) {
    const long long count = countNumbers(path);
    for (unsigned bits = 0; bits < 8 && count > 0; ++bits) {
        const TextLayout layout{(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0};
        if (sizeOf(path, layout, count) == count) {
            return layout;
        }
    }
    return std::nullopt;
}

} // namespace

vtkSmartPointer<vtkAlgorithm> plot3dReader(const InputFile& grid, const InputFile& solution) {
    auto reader = vtkSmartPointer<vtkMultiBlockPLOT3DReader>::New();
    if (grid.kind == FileKind::binary) {
        reader->AutoDetectFormatOn();
        if (reader->CanReadBinaryFile(grid.path.c_str()) == 0) {
            return nullptr;
        }
    } else if (const std::optional<TextLayout> layout = layoutOf(grid.path)) {
        reader->BinaryFileOff();
        reader->SetMultiGrid(layout->multiGrid);
        reader->SetIBlanking(layout->blanking);
        reader->SetTwoDimensionalGeometry(layout->planar);
        reader->DoublePrecisionOn();
    } else {
        return nullptr;
    }
    reader->SetXYZFileName(grid.path.c_str());
    reader->SetQFileName(solution.path.c_str());
    // Only what the file holds; nothing derived from it.
    reader->RemoveAllFunctions();
    reader->SetScalarFunctionNumber(-1);
    reader->SetVectorFunctionNumber(-1);
    return reader;
}

} // namespace program
