#pragma once
// PLOT3D files.

#include <vtkAlgorithm.h>
#include <vtkSmartPointer.h>

#include "reading/InputFile.h"

namespace program {

/// A reader of density, momentum and stagnation energy on a PLOT3D grid; null if that is none. VTK
/// finds out how binary files are laid out; of text files the count of numbers tells.
vtkSmartPointer<vtkAlgorithm> plot3dReader(const InputFile& grid, const InputFile& solution);

} // namespace program
