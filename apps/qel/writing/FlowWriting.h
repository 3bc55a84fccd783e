#pragma once
// Writing of data sets as XML VTK files, compressed by LZ4.

#include <filesystem>

#include <vtkDataObject.h>

namespace program {
namespace fs = std::filesystem;

/// The file that a data object would be written to: the given name, with the ending for its type
/// added if the name has none.
/// @throws UserError  if the ending belongs to another type
fs::path outputName(const fs::path& wanted, vtkDataObject* data);

/// Writes a data set, or a composite one as a .vtm file with a folder of pieces beside it.
/// @throws UserError  if it cannot be written
void writeFlow(vtkDataObject* data, const fs::path& target);

} // namespace program
