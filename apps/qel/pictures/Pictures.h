#pragma once
// The pictures of curves and of flows.

#include <filesystem>
#include <optional>
#include <string>

#include <vtkDataObject.h>

#include <vtkQELVortexFields.h>

#include "curves/Curves.h"

namespace program {
namespace fs = std::filesystem;

/// Draws the curves, all axes in the same scale, into a PNG or SVG file: in the plane of their two
/// longest extents or, if they are not flat, in a box seen from aslant.
/// @param before  as they were before the operations; empty if those changed nothing
/// @throws UserError  if they are too large to draw, or there is nothing to draw on
void drawCurves(const Curves& before, const Curves& after, const fs::path& target);

/// @throws UserError  if the ending is neither .png nor .svg, or the file cannot be made
void checkCurvePicture(const fs::path& target);

/// What the picture of a flow shows.
struct PictureChoice {
    vtkQELVortex::Field field = vtkQELVortex::Lambda2;
    vtkQELVortex::Field colour = vtkQELVortex::SwirlStrength;
    std::optional<double> value; ///< of the iso-surface; without, one that suits the field
};

/// Reads FIELD or FIELD=VALUE; empty gives the default.
/// @throws UserError  if that is no scalar field or no number
PictureChoice parsePictureChoice(const std::string& text);

/// Draws the iso-surface of a field coloured by another one with the outline of the geometry, or,
/// of a plane flow, filled contours of the field; with a colour bar and labels.
///
/// @param flow         holds the fields of the choice
/// @param association  of the fields
/// @throws UserError  if there is nothing to draw, or nothing to draw on
void drawVortices(vtkDataObject* flow, int association, const PictureChoice& choice,
                  const fs::path& target);

} // namespace program
