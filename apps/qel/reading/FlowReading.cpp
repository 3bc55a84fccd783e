// Reading of flow solutions, each kind by VTK's reader for it.
#include "reading/FlowReading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <numeric>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <netcdf.h>
#include <netcdf_mem.h>
#include <vtkCGNSReader.h>
#include <vtkCompositeDataSet.h>
#include <vtkExodusIIReader.h>
#include <vtkGenericDataObjectReader.h>
#include <vtkGenericEnSightReader.h>
#include <vtkInformation.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkNew.h>
#include <vtkPDataSetReader.h>
#include <vtkPOpenFOAMReader.h>
#include <vtkStreamingDemandDrivenPipeline.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLGenericDataObjectReader.h>
#include <vtkXMLUniformGridAMRReader.h>
#include <vtk_cgns.h>
#include <vtk_pugixml.h>

// clang-format off
#include VTK_CGNS(cgnslib.h)
// clang-format on

#include "console/ChildProcess.h"
#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "flows/Leaves.h"
#include "reading/DataCheck.h"
#include "reading/PieceJoining.h"
#include "reading/Plot3d.h"

namespace program {
namespace fs = std::filesystem;
namespace {

using Data = vtkSmartPointer<vtkDataObject>;
using Reader = vtkSmartPointer<vtkAlgorithm>;

// -- Readers that are set up to read everything in a file ----

template <typename VtkReader>
vtkSmartPointer<VtkReader> readerOf(const std::string& path) {
    auto reader = vtkSmartPointer<VtkReader>::New();
    reader->SetFileName(path.c_str());
    return reader;
}

Reader xmlReader(const std::string& path) {
    bool parallel = false;
    const int type =
        vtkNew<vtkXMLGenericDataObjectReader>()->ReadOutputType(path.c_str(), parallel);
    auto reader = parallel && type == VTK_UNSTRUCTURED_GRID
                      ? partitionedGridReader()
                      : vtkXMLGenericDataObjectReader::CreateReader(type, parallel);
    refuseIf(reader == nullptr, path, ": VTK files of this type are not read");
    if (auto* levels = vtkXMLUniformGridAMRReader::SafeDownCast(reader)) {
        levels->SetMaximumLevelsToReadByDefault(0); // all
    }
    reader->SetFileName(path.c_str());
    return reader;
}

Reader legacyReader(const std::string& path) {
    const auto reader = readerOf<vtkGenericDataObjectReader>(path);
    reader->ReadAllScalarsOn();
    reader->ReadAllVectorsOn();
    reader->ReadAllNormalsOn();
    reader->ReadAllTensorsOn();
    reader->ReadAllFieldsOn();
    return reader;
}

Reader piecesReader(const std::string& path) {
    return readerOf<vtkPDataSetReader>(path);
}

Reader ensightReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkGenericEnSightReader>::New();
    reader->SetCaseFileName(path.c_str());
    reader->ReadAllVariablesOn();
    return reader;
}

Reader foamReader(const std::string& path) {
    const bool isFolder = fs::is_directory(path);
    const fs::path folder = isFolder ? fs::path(path) : fs::path(path).parent_path();
    const auto reader =
        readerOf<vtkPOpenFOAMReader>(isFolder ? (folder / "case.foam").string() : path);
    reader->SetCaseType(fs::is_directory(folder / "processor0")
                            ? vtkPOpenFOAMReader::DECOMPOSED_CASE
                            : vtkPOpenFOAMReader::RECONSTRUCTED_CASE);
    reader->SkipZeroTimeOff();
    reader->UpdateInformation();
    reader->EnableAllCellArrays();
    reader->EnableAllPointArrays();
    return reader;
}

Reader exodusReader(const std::string& path) {
    const auto reader = readerOf<vtkExodusIIReader>(path);
    refuseIf(reader->CanReadFile(path.c_str()) == 0, path, " is damaged or no Exodus file");
    reader->UpdateInformation();
    reader->SetAllArrayStatus(vtkExodusIIReader::NODAL, 1);
    reader->SetAllArrayStatus(vtkExodusIIReader::ELEM_BLOCK, 1);
    return reader;
}

bool hasLastValue(int file, int variable) {
    int axes = 0;
    std::array<int, NC_MAX_VAR_DIMS> dimensions{};
    nc_inq_var(file, variable, nullptr, nullptr, &axes, dimensions.data(), nullptr);
    std::vector<std::size_t> last(static_cast<std::size_t>(axes));
    for (std::size_t axis = 0; axis < last.size(); ++axis) {
        nc_inq_dimlen(file, dimensions[axis], &last[axis]);
        if (last[axis]-- == 0) {
            return true; // there is no value
        }
    }
    double value = 0.0; // as large as the largest type
    return nc_get_var1(file, variable, last.data(), &value) == NC_NOERR;
}

// Whether a file in a classic format of netCDF is as long as its header says. From one on disk the
// library reads zeros beyond the end, but not from one in memory, where the file is mapped.
bool isWholeNetcdf(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const auto size = static_cast<std::size_t>(fs::file_size(path));
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    close(descriptor);
    int file = 0;
    int count = 0;
    bool whole = bytes != MAP_FAILED &&
                 nc_open_mem(path.c_str(), NC_NOWRITE, size, bytes, &file) == NC_NOERR;
    if (whole) {
        nc_inq_nvars(file, &count);
        for (int variable = 0; whole && variable < count; ++variable) {
            whole = hasLastValue(file, variable);
        }
        nc_close(file);
    }
    munmap(bytes, size);
    return whole;
}

Reader classicExodusReader(const std::string& path) {
    refuseIf(!isWholeNetcdf(path), path, " is damaged: it ends too early");
    return exodusReader(path);
}

Reader cgnsReader(const std::string& path) {
    int file = 0;
    // VTK's reader ends the program where a file cannot be opened.
    const bool opened = cg_open(path.c_str(), CG_MODE_READ, &file) == CG_OK;
    refuseIf(!opened, path, " is damaged or no CGNS file: ", cg_get_error());
    cg_close(file);
    const auto reader = readerOf<vtkCGNSReader>(path);
    reader->UpdateInformation();
    reader->EnableAllBases();
    reader->EnableAllFamilies();
    reader->EnableAllPointArrays();
    reader->EnableAllCellArrays();
    return reader;
}

Reader makeReader(const InputFile& file) {
    static const std::map<FileKind, Reader (*)(const std::string&)> kMakers{
        {FileKind::xmlVtk, xmlReader},
        {FileKind::legacyVtk, legacyReader},
        {FileKind::partitionedLegacyVtk, piecesReader},
        {FileKind::ensight, ensightReader},
        {FileKind::openFoam, foamReader},
        {FileKind::exodus, exodusReader},
        {FileKind::classicExodus, classicExodusReader},
        {FileKind::cgns, cgnsReader},
    };
    const auto maker = kMakers.find(file.kind);
    refuseIf(maker == kMakers.end(), file.path,
             " is no flow solution that can be read, or is damaged (to a PLOT3D grid, name its "
             "solution file as well)");
    return maker->second(file.path);
}

// -- Reading by them ----

constexpr double kTimeTolerance = 1e-6; // relative: some files hold times in single precision

// The first few and the last of some times.
std::string listed(const double* times, int count) {
    constexpr int kShown = 10;
    std::string text;
    for (int i = 0; i < std::min(count, kShown); ++i) {
        text += joined(i == 0 ? "" : ", ", times[i]);
    }
    return count <= kShown ? text : joined(text, " and so on to ", times[count - 1]);
}

// Picks the time step on a reader that has some; the one it would take otherwise may be the first.
void chooseTime(vtkAlgorithm* reader, std::optional<double> time) {
    vtkInformation* information = reader->GetOutputInformation(0);
    auto* key = vtkStreamingDemandDrivenPipeline::TIME_STEPS();
    const int count = information == nullptr ? 0 : information->Length(key);
    if (count < 1) {
        if (time.has_value()) {
            warn("the input has no time steps; --time is ignored");
        }
        return;
    }
    const double* steps = information->Get(key);
    const double* chosen = steps + count - 1;
    if (time.has_value()) {
        chosen = std::min_element(steps, steps + count, [&](double a, double b) {
            return std::abs(a - *time) < std::abs(b - *time);
        });
        const auto [first, last] = std::minmax_element(steps, steps + count);
        refuseIf((*time < *first || *time > *last) &&
                     std::abs(*time - *chosen) > kTimeTolerance * std::abs(*time),
                 "there is no time ", *time, "; the times are ", listed(steps, count));
    }
    if (count > 1 || time.has_value()) {
        note(formatted("time %f, one of %d steps", *chosen, count));
    }
    information->Set(vtkStreamingDemandDrivenPipeline::UPDATE_TIME_STEP(), *chosen);
}

// The pieces as one grid, in which gradients reach across borders.
Data joinedPieces(vtkDataObject* data, const std::vector<vtkIdType>& pieces,
                  const std::string& path) {
    auto* grid = vtkUnstructuredGrid::SafeDownCast(data);
    if (grid == nullptr || pieces.size() < 2 ||
        std::accumulate(pieces.begin(), pieces.end(), vtkIdType{0}) != grid->GetNumberOfPoints()) {
        return data;
    }
    const JoinedGrid result = joinPieces(grid, pieces);
    note(pieces.size(), " pieces of ", path, " are joined at ", result.joinedPoints, " points by ",
         result.byGlobalIds ? "global ids" : "equal coordinates");
    if (result.wrongGlobalIds) {
        warn("the global ids of points in ", path,
             " are not used: one id stands for points at different places, or twice in a piece");
    }
    if (result.ambiguousPoints > 0) {
        warn(
            result.ambiguousPoints, " points at borders between pieces of ", path,
            " share their place with another of the same piece and are not joined; gradients there "
            "are one-sided (global ids of points would tell which belong together)");
    }
    return result.grid;
}

Data readBy(const std::function<Reader()>& make, const std::string& path,
            std::optional<double> time) {
    Data data;
    std::vector<vtkIdType> pieces;
    whileReading(path, [&] {
        const auto reader = make();
        run(reader, "reading " + path, [&] {
            reader->UpdateInformation();
            chooseTime(reader, time);
            reader->Update();
        });
        // The legacy readers warn where a file ends too early, and fill up with what they have.
        if (reader->IsA("vtkDataReader") != 0 && !vtkWarnings().empty()) {
            refuse("reading ", path, ": ", vtkWarnings().front());
        }
        data = reader->GetOutputDataObject(0);
        pieces = pointsOfPieces(reader);
    });
    const std::vector<Leaf> leaves = leavesOf(data);
    refuseIf(leaves.empty(), path, " has no points, or is damaged");
    for (const Leaf& leaf : leaves) {
        checkData(leaf.data, path);
    }
    // One data set is taken out of the composite around it, if there is one.
    return leaves.size() == 1 ? joinedPieces(leaves.front().data, pieces, path) : data;
}

Data readBlocks(const std::vector<InputFile>& files, std::optional<double> time) {
    auto blocks = vtkSmartPointer<vtkMultiBlockDataSet>::New();
    unsigned block = 0;
    for (const InputFile& file : files) {
        blocks->SetBlock(block, readFlow(file, time));
        blocks->GetMetaData(block++)->Set(vtkCompositeDataSet::NAME(),
                                          fs::path(file.path).stem().string().c_str());
    }
    return blocks;
}

// The pieces of a partitioned legacy file, if VTK cannot put them together.
std::vector<InputFile> separatePieces(const std::string& path) {
    pugi::xml_document file;
    const pugi::xml_node root =
        file.load_file(path.c_str()) ? file.child("File") : pugi::xml_node();
    const std::string type = root.attribute("dataType").value();
    refuseIf(type.empty(), path, " is no partitioned VTK file, or damaged");
    std::vector<InputFile> pieces;
    for (const pugi::xml_node& piece : root.children("Piece")) {
        refuseIf(!piece.attribute("fileName"), path, " has a piece without a file name");
        // An absolute name stays as it is.
        const fs::path name = fs::path(path).parent_path() / piece.attribute("fileName").value();
        pieces.push_back(recognise(name.string()));
        refuseIf(pieces.back().kind != FileKind::legacyVtk, name.string(), ", a piece of ", path,
                 ", is no legacy VTK file");
    }
    refuseIf(pieces.empty(), path, " has no pieces");
    const bool byVtk =
        type == "vtkUnstructuredGrid" || type == "vtkPolyData" || type == "vtkStructuredGrid";
    return byVtk ? std::vector<InputFile>() : pieces;
}

// A grid and a solution, in either order.
Data readPlot3d(const InputFile& first, const InputFile& second) {
    for (const auto& [grid, solution] : {std::pair(first, second), std::pair(second, first)}) {
        if (const auto reader = plot3dReader(grid, solution)) {
            return readBy([&reader = reader] { return reader; },
                          grid.path + " and " + solution.path, std::nullopt);
        }
    }
    refuse("neither ", first.path, " nor ", second.path, " is a PLOT3D grid, or they are damaged");
}

} // namespace

Data readFlow(const InputFile& file, std::optional<double> time) {
    if (file.kind == FileKind::partitionedLegacyVtk) {
        const std::vector<InputFile> pieces = separatePieces(file.path);
        if (!pieces.empty()) {
            return readBlocks(pieces, time);
        }
    }
    return readBy([&] { return makeReader(file); }, file.path, time);
}

Data readFlow(const std::vector<std::string>& paths, std::optional<double> time) {
    std::vector<InputFile> files;
    std::transform(paths.begin(), paths.end(), std::back_inserter(files), recognise);
    if (files.size() == 2 && files[0].mayBePlot3d() && files[1].mayBePlot3d()) {
        return readPlot3d(files[0], files[1]);
    }
    return files.size() == 1 ? readFlow(files.front(), time) : readBlocks(files, time);
}

} // namespace program
