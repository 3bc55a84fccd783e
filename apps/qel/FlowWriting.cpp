// Writing of data sets as compressed XML VTK files.
#include "FlowWriting.h"

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

} // namespace

std::filesystem::path outputName(const std::filesystem::path& wanted, vtkDataObject* data) {
    const std::string ending = endingFor(data);
    std::filesystem::path name = wanted;
    if (!name.has_extension()) {
        name += ending;
    } else if (name.extension() != ending) {
        throw UserError("cannot write " + wanted.string() + ": a " + data->GetClassName() +
                        " is written to a file that ends in " + ending);
    }
    return name;
}

void writeFlow(vtkDataObject* data, const std::filesystem::path& target) {
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
    int written = 0;
    watched(writer, "writing " + target.string(), [&] { written = writer->Write(); });
    if (written == 0) {
        throw UserError("cannot write " + target.string());
    }
    staged.commit();
}

} // namespace program
