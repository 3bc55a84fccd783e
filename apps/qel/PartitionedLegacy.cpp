// What a partitioned legacy VTK file says of its pieces.
#include "PartitionedLegacy.h"

#include <cstring>
#include <filesystem>

#include <vtkXMLDataElement.h>

#include "Console.h"
#include "XmlFile.h"

namespace program {
namespace fs = std::filesystem;

bool PartitionedLegacy::isPutTogetherByVtk() const {
    return type == "vtkUnstructuredGrid" || type == "vtkPolyData" || type == "vtkStructuredGrid";
}

PartitionedLegacy readPartitionedLegacy(const std::string& path) {
    const auto root = readXml(path, "File");
    const char* type = root == nullptr ? nullptr : root->GetAttribute("dataType");
    if (type == nullptr) {
        throw UserError(path + " is no partitioned VTK file, or damaged");
    }
    PartitionedLegacy file;
    file.type = type;
    for (int i = 0; i < root->GetNumberOfNestedElements(); ++i) {
        vtkXMLDataElement* piece = root->GetNestedElement(i);
        const char* name = piece->GetAttribute("fileName");
        if (std::strcmp(piece->GetName(), "Piece") != 0 || name == nullptr) {
            throw UserError(path + " has a piece without a file name");
        }
        // An absolute name stays as it is.
        file.pieces.push_back((fs::path(path).parent_path() / name).string());
    }
    if (file.pieces.empty()) {
        throw UserError(path + " has no pieces");
    }
    return file;
}

} // namespace program
