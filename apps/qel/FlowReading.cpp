// Reading of flow solutions.
#include "FlowReading.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <utility>

#include <vtkAlgorithm.h>
#include <vtkCGNSReader.h>
#include <vtkCompositeDataSet.h>
#include <vtkExodusIIReader.h>
#include <vtkGenericDataObjectReader.h>
#include <vtkGenericEnSightReader.h>
#include <vtkInformation.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkMultiBlockPLOT3DReader.h>
#include <vtkNew.h>
#include <vtkPDataSetReader.h>
#include <vtkPOpenFOAMReader.h>
#include <vtkStreamingDemandDrivenPipeline.h>
#include <vtkXMLImageDataReader.h>
#include <vtkXMLMultiBlockDataReader.h>
#include <vtkXMLPImageDataReader.h>
#include <vtkXMLPPolyDataReader.h>
#include <vtkXMLPRectilinearGridReader.h>
#include <vtkXMLPStructuredGridReader.h>
#include <vtkXMLPUnstructuredGridReader.h>
#include <vtkXMLPartitionedDataSetCollectionReader.h>
#include <vtkXMLPartitionedDataSetReader.h>
#include <vtkXMLPolyDataReader.h>
#include <vtkXMLRectilinearGridReader.h>
#include <vtkXMLStructuredGridReader.h>
#include <vtkXMLUniformGridAMRReader.h>
#include <vtkXMLUnstructuredGridReader.h>
#include <vtk_cgns.h>

// clang-format off
#include VTK_CGNS(cgnslib.h)
// clang-format on

#include "Console.h"
#include "CrashGuard.h"
#include "DataCheck.h"
#include "FileKind.h"
#include "Leaves.h"
#include "NetcdfSize.h"
#include "PartitionedLegacy.h"
#include "Plot3d.h"
#include "VtkMessages.h"

namespace program {
namespace fs = std::filesystem;
namespace {

using Reader = vtkSmartPointer<vtkAlgorithm>;
using Make = std::function<Reader(const std::string&)>;

std::string lastWordsOf(const std::string& path) {
    return lastWords("reading " + path + ": the reader fails, the file is damaged");
}

// Has code of others work on a file. Some of it crashes where the file is damaged.
template <typename Work>
void guarded(const std::string& path, const Work& work) {
    const CrashGuard guard(lastWordsOf(path), kExitBadInput);
    work();
}

void updateInformation(vtkAlgorithm* reader, const std::string& path) {
    guarded(path, [&] { reader->UpdateInformation(); });
}

template <typename T>
Reader plainReader(const std::string& path) {
    auto reader = vtkSmartPointer<T>::New();
    reader->SetFileName(path.c_str());
    return reader;
}

// The reader would leave out all levels but the first.
Reader makeAmrReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkXMLUniformGridAMRReader>::New();
    reader->SetMaximumLevelsToReadByDefault(0);
    reader->SetFileName(path.c_str());
    return reader;
}

Reader makeXmlReader(const std::string& path) {
    static const std::map<std::string, Make> readers{
        {"ImageData", plainReader<vtkXMLImageDataReader>},
        {"RectilinearGrid", plainReader<vtkXMLRectilinearGridReader>},
        {"StructuredGrid", plainReader<vtkXMLStructuredGridReader>},
        {"UnstructuredGrid", plainReader<vtkXMLUnstructuredGridReader>},
        {"PolyData", plainReader<vtkXMLPolyDataReader>},
        {"PImageData", plainReader<vtkXMLPImageDataReader>},
        {"PRectilinearGrid", plainReader<vtkXMLPRectilinearGridReader>},
        {"PStructuredGrid", plainReader<vtkXMLPStructuredGridReader>},
        {"PUnstructuredGrid", plainReader<vtkXMLPUnstructuredGridReader>},
        {"PPolyData", plainReader<vtkXMLPPolyDataReader>},
        {"vtkMultiBlockDataSet", plainReader<vtkXMLMultiBlockDataReader>},
        {"vtkPartitionedDataSet", plainReader<vtkXMLPartitionedDataSetReader>},
        {"vtkPartitionedDataSetCollection", plainReader<vtkXMLPartitionedDataSetCollectionReader>},
        {"vtkOverlappingAMR", makeAmrReader},
        {"vtkNonOverlappingAMR", makeAmrReader},
    };
    const std::string type = xmlVtkType(path);
    const auto found = readers.find(type);
    if (found == readers.end()) {
        throw UserError(path + ": VTK files of type \"" + type + "\" are not read");
    }
    return found->second(path);
}

Reader makeLegacyReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkGenericDataObjectReader>::New();
    reader->SetFileName(path.c_str());
    reader->ReadAllScalarsOn();
    reader->ReadAllVectorsOn();
    reader->ReadAllNormalsOn();
    reader->ReadAllTensorsOn();
    reader->ReadAllFieldsOn();
    return reader;
}

Reader makeExodusReader(const std::string& path) {
    const std::optional<std::uint64_t> size = netcdfSize(path);
    if (size.has_value() && *size > fs::file_size(path)) {
        throw UserError(path + " is damaged: it ends too early");
    }
    auto reader = vtkSmartPointer<vtkExodusIIReader>::New();
    bool readable = false;
    guarded(path, [&] { readable = reader->CanReadFile(path.c_str()) != 0; });
    if (!readable) {
        throw UserError(path + " is damaged or no Exodus file");
    }
    reader->SetFileName(path.c_str());
    updateInformation(reader, path);
    reader->SetAllArrayStatus(vtkExodusIIReader::NODAL, 1);
    reader->SetAllArrayStatus(vtkExodusIIReader::ELEM_BLOCK, 1);
    return reader;
}

Reader makeFoamReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkPOpenFOAMReader>::New();
    const fs::path folder = fs::is_directory(path) ? fs::path(path) : fs::path(path).parent_path();
    const std::string name = fs::is_directory(path) ? (folder / "case.foam").string() : path;
    reader->SetFileName(name.c_str());
    const bool decomposed = fs::is_directory(folder / "processor0");
    reader->SetCaseType(decomposed ? vtkPOpenFOAMReader::DECOMPOSED_CASE
                                   : vtkPOpenFOAMReader::RECONSTRUCTED_CASE);
    reader->SkipZeroTimeOff();
    updateInformation(reader, path);
    reader->EnableAllCellArrays();
    reader->EnableAllPointArrays();
    return reader;
}

// VTK's reader ends the program where a file cannot be opened.
void checkCgns(const std::string& path) {
    bool readable = false;
    guarded(path, [&] {
        int file = 0;
        readable = cg_open(path.c_str(), CG_MODE_READ, &file) == CG_OK;
        if (readable) {
            cg_close(file);
        }
    });
    if (!readable) {
        throw UserError(path + " is damaged or no CGNS file: " + cg_get_error());
    }
}

Reader makeCgnsReader(const std::string& path) {
    checkCgns(path);
    auto reader = vtkSmartPointer<vtkCGNSReader>::New();
    reader->SetFileName(path.c_str());
    updateInformation(reader, path);
    reader->EnableAllBases();
    reader->EnableAllFamilies();
    reader->EnableAllPointArrays();
    reader->EnableAllCellArrays();
    return reader;
}

Reader makeEnSightReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkGenericEnSightReader>::New();
    reader->SetCaseFileName(path.c_str());
    reader->ReadAllVariablesOn();
    return reader;
}

Reader makeReader(const std::string& path) {
    switch (recognise(path)) {
    case FileKind::xmlVtk:
        return makeXmlReader(path);
    case FileKind::legacyVtk:
        return makeLegacyReader(path);
    case FileKind::ensight:
        return makeEnSightReader(path);
    case FileKind::openFoam:
        return makeFoamReader(path);
    case FileKind::exodus:
        return makeExodusReader(path);
    case FileKind::cgns:
        return makeCgnsReader(path);
    default:
        break;
    }
    if (findPlot3dLayout(path).has_value()) {
        throw UserError(path + " is a PLOT3D grid; name its solution file as well");
    }
    throw UserError(path + " is no flow solution that can be read, or is damaged");
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
    }
    if (count > 1 || time.has_value()) {
        note("time " + std::to_string(*chosen) + ", one of " + std::to_string(count) + " steps");
    }
    reader->GetOutputInformation(0)->Set(vtkStreamingDemandDrivenPipeline::UPDATE_TIME_STEP(),
                                         *chosen);
}

UserError tooLarge(const std::string& path) {
    return UserError("reading " + path + ": there is not enough memory, or it is damaged");
}

// Lets go of a reader at the end, however it comes: some take trees apart then that are too deep.
class GuardedRelease {
public:
    GuardedRelease(Reader& reader, const std::string& path)
        : reader_(reader), lastWords_(lastWordsOf(path)) {}
    ~GuardedRelease() {
        const CrashGuard guard(std::move(lastWords_), kExitBadInput); // memory may have run out
        reader_ = nullptr;
    }
    GuardedRelease(const GuardedRelease&) = delete;
    GuardedRelease& operator=(const GuardedRelease&) = delete;

private:
    Reader& reader_;
    std::string lastWords_;
};

vtkSmartPointer<vtkDataObject> read(const std::string& path, const Make& make,
                                    std::optional<double> time) {
    Reader reader;
    const GuardedRelease release(reader, path);
    try {
        reader = make(path);
        watched(reader, "reading " + path, [&] {
            updateInformation(reader, path);
            chooseTime(reader, time);
            guarded(path, [&] { reader->Update(); });
        });
    } catch (const std::bad_alloc&) {
        throw tooLarge(path);
    } catch (const std::length_error&) {
        throw tooLarge(path);
    }
    // The legacy readers warn where a file ends too early, and fill up with what they have.
    const std::vector<std::string>& warnings = VtkMessages::instance().warnings();
    if (reader->IsA("vtkDataReader") != 0 && !warnings.empty()) {
        throw UserError("reading " + path + ": " + warnings.front());
    }
    vtkSmartPointer<vtkDataObject> data = reader->GetOutputDataObject(0);
    const std::vector<Leaf> leaves = data == nullptr ? std::vector<Leaf>() : leavesOf(data);
    if (leaves.empty()) {
        throw UserError(path + " has no points, or is damaged");
    }
    for (const Leaf& leaf : leaves) {
        checkData(leaf.data, path);
    }
    if (leaves.size() == 1) {
        return leaves.front().data; // without the composite around it, if there is one
    }
    return data;
}

vtkSmartPointer<vtkDataObject> readFile(const std::string& path, std::optional<double> time);

vtkSmartPointer<vtkDataObject> readBlocks(const std::vector<std::string>& paths,
                                          std::optional<double> time) {
    auto blocks = vtkSmartPointer<vtkMultiBlockDataSet>::New();
    unsigned block = 0;
    for (const std::string& path : paths) {
        blocks->SetBlock(block, readFile(path, time));
        blocks->GetMetaData(block)->Set(vtkCompositeDataSet::NAME(),
                                        fs::path(path).stem().string().c_str());
        ++block;
    }
    return blocks;
}

void checkPiece(const std::string& piece, const std::string& of) {
    if (recognise(piece) != FileKind::legacyVtk) {
        throw UserError(piece + ", a piece of " + of + ", is no legacy VTK file");
    }
}

// Pieces that VTK cannot put together become blocks.
vtkSmartPointer<vtkDataObject> readPieces(const std::string& path, std::optional<double> time) {
    const PartitionedLegacy file = readPartitionedLegacy(path);
    for (const std::string& piece : file.pieces) {
        checkPiece(piece, path);
    }
    return file.isPutTogetherByVtk() ? read(path, plainReader<vtkPDataSetReader>, time)
                                     : readBlocks(file.pieces, time);
}

vtkSmartPointer<vtkDataObject> readFile(const std::string& path, std::optional<double> time) {
    return recognise(path) == FileKind::partitionedLegacyVtk ? readPieces(path, time)
                                                             : read(path, makeReader, time);
}

bool isPlot3dCandidate(const std::string& path) {
    const FileKind kind = recognise(path);
    return kind == FileKind::binary || kind == FileKind::text;
}

std::string notOnGrid(const std::string& solution, const std::string& grid) {
    return solution + " is no PLOT3D solution on the grid " + grid + ", or is damaged";
}

// A grid and a solution, in either order.
vtkSmartPointer<vtkDataObject> readPlot3d(const std::string& first, const std::string& second) {
    std::string refused;
    for (const auto& [grid, solution] : {std::pair(first, second), std::pair(second, first)}) {
        const std::optional<Plot3dLayout> layout = findPlot3dLayout(grid);
        if (layout.has_value() && isPlot3dSolution(solution, grid, *layout)) {
            const auto make = [&, &solution = solution](const std::string& path) {
                return plot3dReader(path, solution, *layout);
            };
            return read(grid, make, std::nullopt);
        }
        if (layout.has_value() && refused.empty()) {
            refused = notOnGrid(solution, grid);
        }
    }
    throw UserError(!refused.empty() ? refused
                                     : "neither " + first + " nor " + second +
                                           " is a PLOT3D grid, or they are damaged");
}

} // namespace

vtkSmartPointer<vtkDataObject> readVtk(const std::string& path) {
    return readFile(path, std::nullopt);
}

vtkSmartPointer<vtkDataObject> readFlow(const std::vector<std::string>& paths,
                                        std::optional<double> time) {
    if (paths.size() == 2 && isPlot3dCandidate(paths[0]) && isPlot3dCandidate(paths[1])) {
        return readPlot3d(paths[0], paths[1]);
    }
    return paths.size() == 1 ? readFile(paths[0], time) : readBlocks(paths, time);
}

} // namespace program
