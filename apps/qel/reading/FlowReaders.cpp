// VTK's reader for each kind of flow solution.
#include "reading/FlowReaders.h"

#include <array>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <netcdf.h>
#include <netcdf_mem.h>
#include <vtkCGNSReader.h>
#include <vtkExodusIIReader.h>
#include <vtkGenericDataObjectReader.h>
#include <vtkGenericEnSightReader.h>
#include <vtkNew.h>
#include <vtkPDataSetReader.h>
#include <vtkPOpenFOAMReader.h>
#include <vtkXMLGenericDataObjectReader.h>
#include <vtkXMLUniformGridAMRReader.h>
#include <vtk_cgns.h>

// clang-format off
#include VTK_CGNS(cgnslib.h)
// clang-format on

#include "console/Messages.h"

namespace program {
namespace fs = std::filesystem;
namespace {

using Reader = vtkSmartPointer<vtkAlgorithm>;

Reader makeXmlReader(const std::string& path) {
    bool parallel = false;
    const int type =
        vtkNew<vtkXMLGenericDataObjectReader>()->ReadOutputType(path.c_str(), parallel);
    auto reader = vtkXMLGenericDataObjectReader::CreateReader(type, parallel);
    refuseIf(reader == nullptr, path, ": VTK files of this type are not read");
    if (auto* levels = vtkXMLUniformGridAMRReader::SafeDownCast(reader)) {
        levels->SetMaximumLevelsToReadByDefault(0); // all
    }
    reader->SetFileName(path.c_str());
    return reader;
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

Reader makePiecesReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkPDataSetReader>::New();
    reader->SetFileName(path.c_str());
    return reader;
}

// -- Exodus ----

bool hasLastValue(int file, int variable) {
    int axes = 0;
    std::array<int, NC_MAX_VAR_DIMS> dimensions{};
    nc_inq_varndims(file, variable, &axes);
    nc_inq_vardimid(file, variable, dimensions.data());
    std::vector<std::size_t> last(static_cast<std::size_t>(axes));
    for (std::size_t axis = 0; axis < last.size(); ++axis) {
        std::size_t length = 0;
        nc_inq_dimlen(file, dimensions[axis], &length);
        if (length == 0) {
            return true; // there is no value
        }
        last[axis] = length - 1;
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

Reader makeExodusReader(const InputFile& file) {
    const std::string& path = file.path;
    refuseIf(file.kind == FileKind::classicExodus && !isWholeNetcdf(path), path,
             " is damaged: it ends too early");
    auto reader = vtkSmartPointer<vtkExodusIIReader>::New();
    refuseIf(reader->CanReadFile(path.c_str()) == 0, path, " is damaged or no Exodus file");
    reader->SetFileName(path.c_str());
    reader->UpdateInformation();
    reader->SetAllArrayStatus(vtkExodusIIReader::NODAL, 1);
    reader->SetAllArrayStatus(vtkExodusIIReader::ELEM_BLOCK, 1);
    return reader;
}

// -- Others ----

Reader makeFoamReader(const std::string& path) {
    auto reader = vtkSmartPointer<vtkPOpenFOAMReader>::New();
    const fs::path folder = fs::is_directory(path) ? fs::path(path) : fs::path(path).parent_path();
    const std::string name = fs::is_directory(path) ? (folder / "case.foam").string() : path;
    reader->SetFileName(name.c_str());
    reader->SetCaseType(fs::is_directory(folder / "processor0")
                            ? vtkPOpenFOAMReader::DECOMPOSED_CASE
                            : vtkPOpenFOAMReader::RECONSTRUCTED_CASE);
    reader->SkipZeroTimeOff();
    reader->UpdateInformation();
    reader->EnableAllCellArrays();
    reader->EnableAllPointArrays();
    return reader;
}

Reader makeCgnsReader(const std::string& path) {
    int file = 0;
    // VTK's reader ends the program where a file cannot be opened.
    const bool opened = cg_open(path.c_str(), CG_MODE_READ, &file) == CG_OK;
    refuseIf(!opened, path, " is damaged or no CGNS file: ", cg_get_error());
    cg_close(file);
    auto reader = vtkSmartPointer<vtkCGNSReader>::New();
    reader->SetFileName(path.c_str());
    reader->UpdateInformation();
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

} // namespace

Reader makeReader(const InputFile& file) {
    switch (file.kind) {
    case FileKind::xmlVtk:
        return makeXmlReader(file.path);
    case FileKind::legacyVtk:
        return makeLegacyReader(file.path);
    case FileKind::partitionedLegacyVtk:
        return makePiecesReader(file.path);
    case FileKind::ensight:
        return makeEnSightReader(file.path);
    case FileKind::openFoam:
        return makeFoamReader(file.path);
    case FileKind::exodus:
    case FileKind::classicExodus:
        return makeExodusReader(file);
    case FileKind::cgns:
        return makeCgnsReader(file.path);
    default:
        refuse(file.path, " is no flow solution that can be read, or is damaged (to a PLOT3D "
                          "grid, name its solution file as well)");
    }
}

} // namespace program
