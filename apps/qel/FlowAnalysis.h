#ifndef QEL_PROGRAM_FLOWANALYSIS_H
#define QEL_PROGRAM_FLOWANALYSIS_H

/// @file
/// The vortex filter over all data sets of a flow solution.

#include <set>
#include <string>
#include <vector>

#include <vtkDataObject.h>
#include <vtkSmartPointer.h>

#include <vtkQELVortexFields.h>

#include "Statistics.h"
#include "VelocityFinder.h"

namespace program {

struct FlowAnalysis {
    vtkSmartPointer<vtkDataObject> data; ///< the input with the fields added
    std::vector<Statistics> statistics;  ///< of the fields, in the order of the table of fields
    double gradientTime = 0.0;           ///< seconds
    double analysisTime = 0.0;           ///< seconds
};

/// The keys in a list separated by commas; all of them for "all" and for an empty list.
/// @throws UserError  listing the keys, for one that is unknown
std::set<vtkQELVortex::Field> parseFields(const std::string& list);

/// Adds fields to each data set that has the velocity. Data sets of fewer dimensions than others,
/// such as the walls beside a volume, and those without velocity stay as they are.
/// @throws UserError  if no data set can be analysed
FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity,
                     const std::set<vtkQELVortex::Field>& fields);

} // namespace program

#endif
