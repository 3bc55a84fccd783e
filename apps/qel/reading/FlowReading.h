#pragma once
// Reading of flow solutions.

#include <optional>
#include <vector>

#include <vtkDataObject.h>
#include <vtkSmartPointer.h>

#include "reading/InputFile.h"

namespace program {

/// Reads what VTK reads: its own files, EnSight, Exodus, OpenFOAM, CGNS, and a PLOT3D grid with its
/// solution, in either order. Several files become the blocks of one multi-block data set.
///
/// @param time  of a solution with time steps, the one nearest to this is read; the last without
/// @throws UserError  if a file is missing, empty, damaged or of no kind that can be read
vtkSmartPointer<vtkDataObject> readFlow(const std::vector<std::string>& paths,
                                        std::optional<double> time);

/// Reads one file, other than PLOT3D.
vtkSmartPointer<vtkDataObject> readFlow(const InputFile& file, std::optional<double> time);

} // namespace program
