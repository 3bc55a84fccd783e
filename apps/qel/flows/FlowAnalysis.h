#pragma once
// The vortex filter over all data sets of a flow solution, and statistics of its fields.

#include <map>
#include <set>
#include <string>
#include <vector>

#include <vtkQELVortexFields.h>

#include "flows/VelocityFinder.h"

namespace program {

/// Of the values of a field that are finite and not the undefined marker; of the magnitudes of
/// vectors.
struct Statistics {
    std::string name;
    std::string unit;
    double minimum = 0.0;
    double maximum = 0.0;
    double sum = 0.0;
    long long valid = 0;
    long long total = 0;

    double mean() const { return sum / static_cast<double>(valid); }

    /// Adds the values of a float array.
    void add(vtkDataArray* array);
};

/// For people, in columns.
std::string asTable(const std::vector<Statistics>& all);
/// For programs: a header and one line for each field, in full precision; nothing between the
/// commas where a field has no valid value.
std::string asCsv(const std::vector<Statistics>& all);

using Fields = std::set<vtkQELVortex::Field>;

struct FlowAnalysis {
    vtkSmartPointer<vtkDataObject> data; ///< the input with the fields added
    std::map<vtkQELVortex::Field, Statistics> statistics;
    long long belowNoiseFloor = 0; ///< points at which the floor set something to 0
    long long zeroedSwirls = 0;    ///< points whose swirl was NaN by rounding, and is 0
    double gradientTime = 0.0;     ///< seconds
    double analysisTime = 0.0;     ///< seconds
};

/// Adds fields to each data set that has the velocity. Data sets of fewer dimensions than others,
/// such as the walls beside a volume, and those without velocity stay as they are.
/// @param noiseFloor  as qel::GradientOptions has it
/// @throws UserError  if no data set can be analysed
FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity, const Fields& fields,
                     double noiseFloor);

/// The data with no more than some of the fields that were added.
vtkSmartPointer<vtkDataObject> dataWith(const Fields& wanted, const FlowAnalysis& analysis,
                                        int association);

} // namespace program
