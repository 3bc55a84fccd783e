#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include <pybind11/stl.h>

#include <qel/GradientAnalysis.h>

#include "array_arguments.h"
#include "bindings.h"
#include "progress_argument.h"

namespace qel::python {

namespace {

// A field by its name: one of the two members is set.
template <typename T>
struct Field {
    const char* name;
    ScalarView<T> GradientFields<T>::*scalar;
    TripletView<T> GradientFields<T>::*triplet;
};

template <typename T>
const std::vector<Field<T>>& fields() {
    using Fields = GradientFields<T>;
    static const std::vector<Field<T>> all = {
        {"invariant_q", &Fields::invariantQ, nullptr},
        {"q_criterion", &Fields::qCriterion, nullptr},
        {"divergence", &Fields::divergence, nullptr},
        {"discriminant", &Fields::discriminant, nullptr},
        {"lambda2", &Fields::lambda2, nullptr},
        {"swirl_strength", &Fields::swirlStrength, nullptr},
        {"real_eigenvalue", &Fields::realEigenvalue, nullptr},
        {"vorticity", nullptr, &Fields::vorticity},
        {"vorticity_magnitude", &Fields::vorticityMagnitude, nullptr},
        {"strain_magnitude", &Fields::strainMagnitude, nullptr},
        {"real_eigenvector", nullptr, &Fields::realEigenvector},
        {"swirl_normal", nullptr, &Fields::swirlNormal},
        {"swirl_stretch_rate", &Fields::swirlStretchRate, nullptr},
        {"real_eigen_helicity", &Fields::realEigenHelicity, nullptr},
        {"normal_eigen_helicity", &Fields::normalEigenHelicity, nullptr},
        {"helicity", &Fields::helicity, nullptr},
    };
    return all;
}

template <typename T>
const Field<T>& findField(const std::string& name) {
    std::string names;
    for (const Field<T>& field : fields<T>()) {
        if (name == field.name) {
            return field;
        }
        names += std::string(names.empty() ? "" : ", ") + field.name;
    }
    throw py::value_error("There is no field \"" + name + "\"; there are " + names);
}

template <typename T>
TensorView<const T> tensors(const py::array& a) {
    const bool isFlat = a.ndim() == 2;
    requireShape(a, "gradients", isFlat ? Shape{-1, 9} : Shape{-1, 3, 3});
    const py::ssize_t toColumn = a.strides(isFlat ? 1 : 2);
    const py::ssize_t toRow = isFlat ? 3 * toColumn : a.strides(1);
    return {static_cast<const T*>(a.data()), static_cast<std::size_t>(a.shape(0)), a.strides(0),
            toRow, toColumn};
}

// The array given, or a fresh one.
template <typename T>
py::array outArgument(const py::object& out, const Shape& shape, const py::array& input) {
    if (out.is_none()) {
        return py::array_t<T>(shape);
    }
    const py::array array = requireArray(out, "out");
    requireShape(array, "out", shape);
    if (!holds<T>(array)) {
        refuseDtype(array, "out", std::is_same_v<T, float> ? "float32" : "float64");
    }
    requireWritable(array, input);
    if (shape[0] > 1 && array.strides(0) == 0) {
        throw py::value_error("out overlaps itself");
    }
    return array;
}

// Where one field goes.
template <typename T>
py::array addOutput(const Field<T>& field, const py::object& out, const py::array& input,
                    GradientFields<T>& outputs) {
    const auto n = static_cast<std::size_t>(input.shape(0));
    if (field.scalar != nullptr) {
        py::array array = outArgument<T>(out, {input.shape(0)}, input);
        outputs.*field.scalar =
            ScalarView<T>(static_cast<T*>(array.mutable_data()), n, array.strides(0));
        return array;
    }
    py::array array = outArgument<T>(out, {input.shape(0), 3}, input);
    outputs.*field.triplet = TripletView<T>(static_cast<T*>(array.mutable_data()), n,
                                            array.strides(0), array.strides(1));
    return array;
}

template <typename T>
GradientReport analyze(const py::array& input, const py::object& velocity,
                       const GradientFields<T>& outputs, const GradientOptions& options) {
    const TensorView<const T> gradients = tensors<T>(input);
    if (velocity.is_none()) {
        const py::gil_scoped_release unlocked;
        return analyzeGradients(gradients, outputs, options);
    }
    const py::array array = requireArray(velocity, "velocity");
    requireShape(array, "velocity", {-1, 3});
    if (!holds<T>(array)) {
        refuseDtype(array, "velocity", std::is_same_v<T, float> ? "float32" : "float64");
    }
    const TripletView<const T> view = triplets<T>(array);
    const py::gil_scoped_release unlocked;
    return analyzeGradients(gradients, view, outputs, options);
}

template <typename T>
py::tuple analyzeFields(const py::array& input, const std::vector<std::string>& names,
                        const py::object& velocity, const py::dict& out,
                        const GradientOptions& options) {
    GradientFields<T> outputs;
    py::dict arrays;
    for (const std::string& name : names) {
        const py::object given = out.contains(name) ? py::object(out[name.c_str()]) : py::none();
        arrays[name.c_str()] = addOutput(findField<T>(name), given, input, outputs);
    }
    for (const auto& entry : out) {
        if (!arrays.contains(entry.first)) {
            throw py::value_error("out has \"" + std::string(py::str(entry.first)) +
                                  "\", which is not asked for");
        }
    }
    const GradientReport report = analyze(input, velocity, outputs, options);
    py::dict counts;
    counts["analyzed"] = report.analyzed;
    counts["below_floor"] = report.belowFloor;
    counts["made_zero"] = report.madeZero;
    return py::make_tuple(arrays, counts);
}

// Returns visit(T()) for the number type of the gradients.
template <typename Visit>
auto visitNumbers(const py::array& input, Visit&& visit) {
    if (holds<double>(input)) {
        return visit(0.0);
    }
    if (!holds<float>(input)) {
        refuseDtype(input, "gradients", "float32 or float64");
    }
    return visit(0.0F);
}

py::tuple analyzeGradientFields(const py::object& gradients, const std::vector<std::string>& names,
                                const py::object& velocity, const py::dict& out, double noiseFloor,
                                bool zeroNegligible, bool isScaled, const py::object& progress) {
    const py::array input = requireArray(gradients, "gradients");
    GradientOptions options;
    options.noiseFloor = noiseFloor;
    options.notANumber = zeroNegligible ? GradientOptions::NotANumber::zeroNegligible
                                        : GradientOptions::NotANumber::keep;
    options.isScaled = isScaled;
    options.progress = progressArgument(progress);
    return visitNumbers(input, [&](auto number) {
        return analyzeFields<decltype(number)>(input, names, velocity, out, options);
    });
}

// One field alone, without options.
auto singleField(const char* name) {
    return [name](const py::object& gradients, const py::object& out) {
        const py::array input = requireArray(gradients, "gradients");
        return visitNumbers(input, [&](auto number) -> py::array {
            using T = decltype(number);
            GradientFields<T> outputs;
            py::array result = addOutput(findField<T>(name), out, input, outputs);
            GradientOptions options;
            options.progress = progressArgument(py::none());
            analyze(input, py::none(), outputs, options);
            return result;
        });
    };
}

} // namespace

void bindGradientAnalysis(py::module_& module) {
    const auto define = [&](const char* name, const std::string& what) {
        const std::string text = what + " of gradients (n, 9) or (n, 3, 3), float32 or float64, " +
                                 "du_i/dx_j row by row. Read in place; O(n).";
        module.def(name, singleField(name), py::arg("gradients"), py::arg("out") = py::none(),
                   text.c_str());
    };
    define("invariant_q", "Second invariant Q, (n,), unit of the gradients squared,");
    define("q_criterion", "-tr(T^2) / 2, (n,), unit of the gradients squared,");
    define("divergence", "Trace, (n,), unit of the gradients,");
    define("discriminant", "Discriminant of the characteristic cubic, (n,), unit of the gradients "
                           "to the sixth power,");
    define("lambda2", "Lambda-2, (n,), unit of the gradients squared,");
    define("swirl_strength", "Swirl strength, (n,), unit of the gradients,");
    define("real_eigenvalue", "Real eigenvalue, of use where the swirl strength is positive, (n,), "
                              "unit of the gradients,");
    define("vorticity", "Vorticity, (n, 3), unit of the gradients,");
    module.def(
        "analyze_gradients", &analyzeGradientFields, py::arg("gradients"), py::arg("fields"),
        py::arg("velocity") = py::none(), py::arg("out") = py::dict(), py::kw_only(),
        py::arg("noise_floor") = 0.0, py::arg("zero_negligible") = false, py::arg("scaled") = false,
        py::arg("progress") = py::none(),
        "Many fields in one pass: a dict of arrays by the names asked for, and a dict of counts "
        "(analyzed, below_floor, made_zero).\n\n"
        "gradients: (n, 9) or (n, 3, 3), float32 or float64. fields: names such as lambda2, "
        "swirl_strength, vorticity_magnitude; helicity needs the velocity (n, 3). out: arrays to "
        "write into, by name. noise_floor: share of |T|^2 below which lambda2, discriminant and "
        "swirl strength are 0. zero_negligible: 0 for a swirl strength that rounding makes NaN. "
        "scaled: powers of two against overflow and thresholds. progress: called with the share "
        "done since it was called last; False stops. Raises qel.DataInvalid for outputs that "
        "overlap or a floor that is negative.");
}

} // namespace qel::python
