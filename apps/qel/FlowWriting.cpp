// Writing of data sets as compressed XML VTK files.
#include "FlowWriting.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <vtkCompositeDataSet.h>
#include <vtkInformation.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkNew.h>
#include <vtkXMLDataSetWriter.h>
#include <vtkXMLMultiBlockDataWriter.h>
#include <vtkXMLWriter.h>

#include "Console.h"
#include "Leaves.h"
#include "StagedOutput.h"

namespace program {
namespace fs = std::filesystem;
namespace {

std::string endingFor(vtkDataObject* data) {
    if (data->IsA("vtkCompositeDataSet") != 0) {
        return ".vtm";
    }
    switch (data->GetDataObjectType()) {
    case VTK_IMAGE_DATA:
    case VTK_UNIFORM_GRID:
    case VTK_STRUCTURED_POINTS:
        return ".vti";
    case VTK_RECTILINEAR_GRID:
        return ".vtr";
    case VTK_STRUCTURED_GRID:
        return ".vts";
    case VTK_POLY_DATA:
        return ".vtp";
    default:
        return ".vtu";
    }
}

// One level of blocks with their names. VTK's writer fails on nested blocks that are empty, as
// several readers make them.
vtkSmartPointer<vtkMultiBlockDataSet> asBlocks(vtkDataObject* data) {
    auto blocks = vtkSmartPointer<vtkMultiBlockDataSet>::New();
    unsigned block = 0;
    for (const Leaf& leaf : leavesOf(data)) {
        blocks->SetBlock(block, leaf.data);
        blocks->GetMetaData(block++)->Set(vtkCompositeDataSet::NAME(), leaf.name.c_str());
    }
    return blocks;
}

// VTK's writers do not notice every failure, such as a disk that is full at the last moment.
void checkComplete(const fs::path& folder, const fs::path& target) {
    constexpr std::streamoff kTail = 32;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        file.seekg(-std::min<std::streamoff>(kTail, static_cast<std::streamoff>(entry.file_size())),
                   std::ios::end);
        const std::string tail{std::istreambuf_iterator<char>(file), {}};
        if (tail.find("</VTKFile>") == std::string::npos) {
            throw UserError("cannot write " + target.string() + ": the disk may be full");
        }
    }
}

} // namespace

fs::path outputName(const fs::path& wanted, vtkDataObject* data) {
    const std::string ending = endingFor(data);
    fs::path name = wanted;
    if (!name.has_extension()) {
        name += ending;
    } else if (name.extension() != ending) {
        throw UserError("cannot write " + wanted.string() + ": a " + data->GetClassName() +
                        " is written to a file that ends in " + ending);
    }
    checkWritable(name);
    if (ending == ".vtm") {
        checkPieceFolder(fs::path(name).replace_extension());
    }
    return name;
}

void writeFlow(vtkDataObject* data, const fs::path& target) {
    vtkSmartPointer<vtkXMLWriter> writer;
    if (data->IsA("vtkCompositeDataSet") != 0) {
        writer = vtkSmartPointer<vtkXMLMultiBlockDataWriter>::New();
        writer->SetInputData(asBlocks(data));
    } else {
        writer = vtkSmartPointer<vtkXMLDataSetWriter>::New();
        writer->SetInputData(data);
    }
    StagedOutput staged(target);
    // On fields of floats six times as fast as zlib, for files a sixth larger.
    writer->SetCompressorTypeToLZ4();
    writer->SetDataModeToAppended();
    writer->EncodeAppendedDataOff();
    writer->SetHeaderTypeToUInt64();
    writer->SetFileName(staged.path().c_str());
    watched(writer, "writing " + target.string(), [&] { writer->Write(); });
    checkComplete(fs::path(staged.path()).parent_path(), target);
    staged.commit();
}

} // namespace program
