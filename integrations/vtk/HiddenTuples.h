#ifndef QEL_VTK_HIDDENTUPLES_H
#define QEL_VTK_HIDDENTUPLES_H

/// @file
/// Which points or cells of a data set have no value of their own.

#include <vector>

class vtkDataSet;

namespace vtkQELVortex {

/// One entry for each point or cell, nonzero where it is hidden (blanked), a ghost, or refined by
/// others; empty if there is none such. Blanking may come as VTK's ghost array or as PLOT3D's
/// array IBlank, in which 0 stands for a blanked point. A cell with a hidden point is hidden.
std::vector<unsigned char> hiddenTuples(vtkDataSet* data, int association);

} // namespace vtkQELVortex

#endif
