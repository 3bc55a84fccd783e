#pragma once
// VTK's reader for each kind of flow solution.

#include <vtkAlgorithm.h>
#include <vtkSmartPointer.h>

#include "reading/InputFile.h"

namespace program {

/// A reader that is set up to read everything in the file.
/// @throws UserError  if the file is damaged or of no kind that can be read by itself
vtkSmartPointer<vtkAlgorithm> makeReader(const InputFile& file);

/// A reader of density, momentum and stagnation energy on a PLOT3D grid; null if that is none. VTK
/// finds out how binary files are laid out; of text files the count of numbers tells.
vtkSmartPointer<vtkAlgorithm> plot3dReader(const InputFile& grid, const InputFile& solution);

} // namespace program
