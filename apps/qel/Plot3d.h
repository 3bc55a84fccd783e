#ifndef QEL_PROGRAM_PLOT3D_H
#define QEL_PROGRAM_PLOT3D_H

/// @file
/// The layout of PLOT3D files, found out from the files themselves.

#include <optional>
#include <string>

#include <vtkSmartPointer.h>

class vtkMultiBlockPLOT3DReader;

namespace program {

/// How a PLOT3D grid file is laid out. Nothing in the file says so.
struct Plot3dLayout {
    bool text = false; ///< numbers written out; byte order, records and precision play no part
    bool bigEndian = false;
    bool records = false; ///< Fortran: each record between two byte counts
    bool multiGrid = false;
    bool doublePrecision = false;
    bool blanking = false; ///< with an iblank number for each point
    bool planar = false;   ///< two-dimensional
};

/// The one layout under which the numbers at the start of the file give exactly its size; none if
/// it is no PLOT3D grid.
std::optional<Plot3dLayout> findPlot3dLayout(const std::string& gridPath);

/// Whether a solution file has the dimensions of a grid file and is long enough for them. Some
/// programs pad solutions at the end.
bool isPlot3dSolution(const std::string& path, const std::string& gridPath,
                      const Plot3dLayout& layout);

/// A reader of density, momentum and stagnation energy on the grid, set up for the layout.
vtkSmartPointer<vtkMultiBlockPLOT3DReader> plot3dReader(const std::string& gridPath,
                                                        const std::string& solutionPath,
                                                        const Plot3dLayout& layout);

} // namespace program

#endif
