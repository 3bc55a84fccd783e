#pragma once
// Writing of curves.

#include <filesystem>

#include "curves/Curves.h"

namespace program {
namespace fs = std::filesystem;

/// @throws UserError  if the ending of the name is none that writeCurves() knows
void checkCurveOutput(const fs::path& target);

/// Writes by the ending of the name: .csv with s-values and point data, .vtp or .vtk polylines with
/// point data, .txt or .dat the library's own text export, curves parted by a blank line. - writes
/// CSV to standard output.
/// @throws UserError  if the ending is none of these, or the file cannot be written
void writeCurves(const Curves& curves, const fs::path& target);

} // namespace program
