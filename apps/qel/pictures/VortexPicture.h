#pragma once
// The picture of the vortices in a flow.

#include <filesystem>
#include <optional>
#include <string>

#include <vtkDataObject.h>

#include <vtkQELVortexFields.h>

namespace program {
namespace fs = std::filesystem;

/// What the picture shows.
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
