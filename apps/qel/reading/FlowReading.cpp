// Reading of flow solutions.
#include "reading/FlowReading.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include <vtkCompositeDataSet.h>
#include <vtkInformation.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkStreamingDemandDrivenPipeline.h>
#include <vtk_pugixml.h>

#include "console/ChildProcess.h"
#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "flows/Leaves.h"
#include "reading/DataCheck.h"
#include "reading/FlowReaders.h"

namespace program {
namespace fs = std::filesystem;
namespace {

using Data = vtkSmartPointer<vtkDataObject>;

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
        note(formatted("time %f, one of %d steps", *chosen, count));
    }
    information->Set(vtkStreamingDemandDrivenPipeline::UPDATE_TIME_STEP(), *chosen);
}

using Make = std::function<vtkSmartPointer<vtkAlgorithm>()>;

Data readBy(const Make& make, const std::string& path, std::optional<double> time) {
    Data data;
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
    });
    const std::vector<Leaf> leaves = leavesOf(data);
    refuseIf(leaves.empty(), path, " has no points, or is damaged");
    for (const Leaf& leaf : leaves) {
        checkData(leaf.data, path);
    }
    // One data set is taken out of the composite around it, if there is one.
    return leaves.size() == 1 ? Data(leaves.front().data) : data;
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
