#ifndef QEL_PROGRAM_FLOWREADING_H
#define QEL_PROGRAM_FLOWREADING_H

/// @file
/// Reading of flow solutions.

#include <optional>
#include <string>
#include <vector>

#include <vtkDataObject.h>
#include <vtkSmartPointer.h>

namespace program {

/// Reads what VTK reads: its own files, EnSight, Exodus, OpenFOAM, CGNS, and a PLOT3D grid with its
/// solution, in either order. Kinds are told by the contents. Several files become the blocks of
/// one multi-block data set.
///
/// @param time  of a solution with time steps, the one nearest to this is read; the last without
/// @throws UserError  if a file is missing, empty, damaged or of no kind that can be read
vtkSmartPointer<vtkDataObject> readFlow(const std::vector<std::string>& paths,
                                        std::optional<double> time);

/// Reads one VTK file, XML or legacy, serial or partitioned.
vtkSmartPointer<vtkDataObject> readVtk(const std::string& path);

} // namespace program

#endif
