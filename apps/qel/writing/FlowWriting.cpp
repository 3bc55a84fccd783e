// Writing of data sets as XML VTK files, compressed by LZ4.
#include "writing/FlowWriting.h"

#include <fstream>
#include <iterator>

#include <vtkCompositeDataSet.h>
#include <vtkInformation.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkXMLDataObjectWriter.h>
#include <vtkXMLMultiBlockDataWriter.h>
#include <vtkXMLWriter.h>

#include "console/Messages.h"
#include "console/VtkRun.h"
#include "flows/Leaves.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

// One level of blocks with their names. VTK's writer fails on nested blocks that are empty, as
// several readers make them.
vtkSmartPointer<vtkDataObject> writable(vtkDataObject* data) {
    if (data->IsA("vtkCompositeDataSet") == 0) {
        return data;
    }
    auto blocks = vtkSmartPointer<vtkMultiBlockDataSet>::New();
    unsigned block = 0;
    for (const Leaf& leaf : leavesOf(data)) {
        blocks->SetBlock(block, leaf.data);
        blocks->GetMetaData(block++)->Set(vtkCompositeDataSet::NAME(), leaf.name.c_str());
    }
    return blocks;
}

vtkSmartPointer<vtkXMLWriter> writerFor(vtkDataObject* data) {
    if (data->IsA("vtkCompositeDataSet") != 0) {
        return vtkSmartPointer<vtkXMLMultiBlockDataWriter>::New();
    }
    return vtk::TakeSmartPointer(vtkXMLDataObjectWriter::NewWriter(data->GetDataObjectType()));
}

// VTK's writers do not notice every failure, such as a disk that is full at the last moment.
void checkComplete(const fs::path& folder, const fs::path& target) {
    constexpr std::streamoff kTail = 32;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        file.seekg(-kTail, std::ios::end);
        const std::string tail{std::istreambuf_iterator<char>(file), {}};
        refuseIf(tail.find("</VTKFile>") == std::string::npos, "cannot write ", target.string(),
                 ": the disk may be full");
    }
}

} // namespace

fs::path outputName(const fs::path& wanted, vtkDataObject* data) {
    const std::string ending = std::string(".") + writerFor(data)->GetDefaultFileExtension();
    fs::path name = wanted;
    name += name.has_extension() ? "" : ending;
    refuseIf(name.extension() != ending, "cannot write ", wanted.string(), ": a ",
             data->GetClassName(), " is written to a file that ends in ", ending);
    checkWritable(name);
    if (ending == ".vtm") {
        checkPieceFolder(fs::path(name).replace_extension());
    }
    return name;
}

void writeFlow(vtkDataObject* data, const fs::path& target) {
    const auto writer = writerFor(data);
    writer->SetInputDataObject(writable(data));
    StagedOutput staged(target);
    // On fields of floats six times as fast as zlib, for files a sixth larger.
    writer->SetCompressorTypeToLZ4();
    writer->SetDataModeToAppended();
    writer->EncodeAppendedDataOff();
    writer->SetHeaderTypeToUInt64();
    writer->SetFileName(staged.path().c_str());
    run(writer, "writing " + target.string(), [&] { writer->Write(); });
    checkComplete(fs::path(staged.path()).parent_path(), target);
    staged.commit();
}

} // namespace program
