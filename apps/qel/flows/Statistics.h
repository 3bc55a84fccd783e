#pragma once
// Minimum, maximum, mean and count of fields.

#include <string>
#include <vector>

#include <vtkDataArray.h>

namespace program {

/// Over the values that are finite and not the undefined marker; of vectors, over magnitudes.
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

} // namespace program
