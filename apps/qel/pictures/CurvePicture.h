#pragma once
// The picture of curves before and after the operations.

#include <filesystem>

#include "curves/Curves.h"

namespace program {
namespace fs = std::filesystem;

/// Draws the curves in the plane of their two longest extents, both in the same scale, into a PNG
/// or SVG file.
/// @throws UserError  if they are too large to draw, or there is nothing to draw on
void drawCurves(const Curves& before, const Curves& after, const fs::path& target);

/// @throws UserError  if the ending is neither .png nor .svg, or the file cannot be made
void checkCurvePicture(const fs::path& target);

} // namespace program
