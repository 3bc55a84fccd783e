// Minimum, maximum, mean and count of fields.
#include "flows/Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <vtkFloatArray.h>

#include "console/Text.h"

namespace program {

void Statistics::add(vtkDataArray* array) {
    auto* floats = vtkFloatArray::FastDownCast(array);
    const int components = floats == nullptr ? 0 : floats->GetNumberOfComponents();
    for (vtkIdType i = 0; floats != nullptr && i < floats->GetNumberOfTuples(); ++i) {
        const float* value = floats->GetPointer(i * components);
        ++total;
        if (!std::all_of(value, value + components, [](float x) {
                return std::isfinite(x) && x != std::numeric_limits<float>::max();
            })) {
            continue;
        }
        double measure = double{value[0]};
        if (components > 1) {
            measure = 0.0;
            for (int c = 0; c < components; ++c) {
                measure += double{value[c]} * double{value[c]};
            }
            measure = std::sqrt(measure);
        }
        minimum = valid == 0 ? measure : std::min(minimum, measure);
        maximum = valid == 0 ? measure : std::max(maximum, measure);
        sum += measure;
        ++valid;
    }
}

std::string asTable(const std::vector<Statistics>& all) {
    std::string text = formatted("%-26s %-6s %14s %14s %14s %12s %12s\n", "field", "unit",
                                 "minimum", "maximum", "mean", "valid", "undefined");
    for (const Statistics& one : all) {
        text += formatted("%-26s %-6s ", one.name.c_str(), one.unit.c_str());
        text += one.valid == 0
                    ? formatted("%14s %14s %14s", "-", "-", "-")
                    : formatted("%14.6g %14.6g %14.6g", one.minimum, one.maximum, one.mean());
        text += formatted(" %12lld %12lld\n", one.valid, one.total - one.valid);
    }
    return text;
}

std::string asCsv(const std::vector<Statistics>& all) {
    std::string text = "field,unit,minimum,maximum,mean,valid,undefined\n";
    for (const Statistics& one : all) {
        text += one.name + "," + one.unit + ",";
        text += one.valid == 0 ? ",,"
                               : formatted("%.9g,%.9g,%.9g", one.minimum, one.maximum, one.mean());
        text += formatted(",%lld,%lld\n", one.valid, one.total - one.valid);
    }
    return text;
}

} // namespace program
