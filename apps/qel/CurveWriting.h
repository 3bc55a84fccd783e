#ifndef QEL_PROGRAM_CURVEWRITING_H
#define QEL_PROGRAM_CURVEWRITING_H

/// @file
/// Writing of curves.

#include <filesystem>
#include <vector>

#include "CurveSet.h"

namespace program {

/// @throws UserError  if the ending of the name is none that writeCurves() knows
void checkCurveOutput(const std::filesystem::path& target);

/// Writes by the ending of the name: .csv with s-values and point data, .vtp or .vtk polylines with
/// point data, .txt or .dat the library's own text export, curves parted by a blank line.
/// @throws UserError  if the ending is none of these, or the file cannot be written
void writeCurves(const std::vector<NamedCurve>& curves, const std::filesystem::path& target);

} // namespace program

#endif
