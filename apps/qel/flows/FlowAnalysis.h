#pragma once
// The vortex filter over all data sets of a flow solution.

#include <map>
#include <set>

#include <vtkQELVortexFields.h>

#include "flows/Statistics.h"
#include "flows/VelocityFinder.h"

namespace program {

using Fields = std::set<vtkQELVortex::Field>;

struct FlowAnalysis {
    vtkSmartPointer<vtkDataObject> data; ///< the input with the fields added
    std::map<vtkQELVortex::Field, Statistics> statistics;
    double gradientTime = 0.0; ///< seconds
    double analysisTime = 0.0; ///< seconds
};

/// Adds fields to each data set that has the velocity. Data sets of fewer dimensions than others,
/// such as the walls beside a volume, and those without velocity stay as they are.
/// @throws UserError  if no data set can be analysed
FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity, const Fields& fields);

/// The data without some fields of the filter.
vtkSmartPointer<vtkDataObject> withoutFields(vtkDataObject* data, int association,
                                             const Fields& fields);

} // namespace program
