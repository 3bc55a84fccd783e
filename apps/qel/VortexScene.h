#ifndef QEL_PROGRAM_VORTEXSCENE_H
#define QEL_PROGRAM_VORTEXSCENE_H

/// @file
/// The data behind the picture of a flow.

#include <string>
#include <vector>

#include <vtkDataSet.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include "Leaves.h"

namespace program {

/// A data set with no more than some fields on its points, and without the cells at which one of
/// them is undefined.
vtkSmartPointer<vtkDataSet> drawable(vtkDataSet* data, int association,
                                     const std::vector<std::string>& fields);

/// The iso-surface of a field on points.
vtkSmartPointer<vtkPolyData> isoSurface(vtkDataSet* data, const std::string& field, double value);

/// The surface of a data set, or itself if it has no volume.
vtkSmartPointer<vtkPolyData> surfaceOf(vtkDataSet* data);

/// The edges of a data set's shape: those of its block if it is structured, otherwise the open and
/// the sharp edges of its surface.
vtkSmartPointer<vtkPolyData> outlineOf(vtkDataSet* data);

/// Values at some thousand points of a field, sorted.
std::vector<double> sortedSample(const std::vector<vtkSmartPointer<vtkDataSet>>& pieces,
                                 const std::string& field);

/// The value below which a share of sorted values lies; 0 for none.
double quantile(const std::vector<double>& sorted, double share);

} // namespace program

#endif
