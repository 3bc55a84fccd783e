#ifndef QEL_PROGRAM_CURVEPICTURE_H
#define QEL_PROGRAM_CURVEPICTURE_H

/// @file
/// The picture of curves before and after the operations.

#include <filesystem>
#include <vector>

#include "CurveSet.h"

namespace program {

/// Draws the curves in the plane of their two longest extents, both in the same scale, into a PNG
/// or SVG file.
/// @throws UserError  if the ending is neither, or there is nothing to draw on
void drawCurves(const std::vector<NamedCurve>& before, const std::vector<NamedCurve>& after,
                const std::filesystem::path& target);

/// @throws UserError  if the ending is neither .png nor .svg, or the file cannot be made
void checkCurvePicture(const std::filesystem::path& target);

} // namespace program

#endif
