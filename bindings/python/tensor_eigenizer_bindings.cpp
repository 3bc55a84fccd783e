#include <algorithm>
#include <cstddef>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

using Tensors = TensorView<const float>;

// The rows of this many points at once stay in the cache; a whole field is never copied.
constexpr std::size_t kBlock = 4096;

Tensors tensors(const py::array& a) {
    const bool isFlat = a.ndim() == 2;
    requireShape(a, "gradients", isFlat ? Shape{-1, 9} : Shape{-1, 3, 3});
    if (!holds<float>(a)) {
        refuseDtype(a, "gradients", "float32");
    }
    const auto n = static_cast<std::size_t>(a.shape(0));
    const py::ssize_t toColumn = a.strides(isFlat ? 1 : 2);
    const py::ssize_t toRow = isFlat ? 3 * toColumn : a.strides(1);
    const auto row = [&](py::ssize_t i) {
        const char* first = static_cast<const char*>(a.data()) + (n == 0 ? 0 : i * toRow);
        return TripletView<const float>(reinterpret_cast<const float*>(first), n, a.strides(0),
                                        toColumn);
    };
    return {row(0), row(1), row(2)};
}

// Calls compute(eigenizer, first, count) for one block of points after the other.
template <typename Compute>
void forEachBlock(const Tensors& field, Compute&& compute) {
    TripletQELVector rows[3];
    for (std::size_t first = 0; first < field.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, field.size() - first);
        for (int r = 0; r < 3; ++r) {
            rows[r].resize(count);
            const TripletView<float> block(rows[r]);
            const TripletView<const float> source = field.row(r).part(first, count);
            for (std::size_t i = 0; i < count; ++i) {
                block.set(i, source[i]);
            }
        }
        compute(TensorEigenizer(count, rows[0], rows[1], rows[2]), first, count);
    }
}

// The array given, or a fresh one.
py::array outArgument(const py::object& out, const Shape& shape, const py::array& input) {
    if (out.is_none()) {
        return py::array_t<float>(shape);
    }
    const py::array array = requireArray(out, "out");
    requireShape(array, "out", shape);
    if (!holds<float>(array)) {
        refuseDtype(array, "out", "float32");
    }
    requireWritable(array, input);
    if (shape[0] > 1 && array.strides(0) == 0) {
        throw py::value_error("out overlaps itself");
    }
    return array;
}

ScalarView<float> writable(py::array& a) {
    return {static_cast<float*>(a.mutable_data()), static_cast<std::size_t>(a.shape(0)),
            a.strides(0)};
}

using Quantity = void (TensorEigenizer::*)(FloatQELVector&) const;

auto scalarQuantity(Quantity quantity) {
    return [quantity](const py::object& gradients, const py::object& out) {
        const py::array input = requireArray(gradients, "gradients");
        const Tensors field = tensors(input);
        py::array result = outArgument(out, {input.shape(0)}, input);
        const ScalarView<float> target = writable(result);
        {
            const py::gil_scoped_release unlocked;
            FloatQELVectorConcrete values;
            forEachBlock(field,
                         [&](const TensorEigenizer& block, std::size_t first, std::size_t n) {
                             (block.*quantity)(values);
                             for (std::size_t i = 0; i < n; ++i) {
                                 target.set(first + i, values.getInternals()[i]);
                             }
                         });
        }
        return result;
    };
}

py::tuple swirlStrength(const py::object& gradients) {
    const py::array input = requireArray(gradients, "gradients");
    const Tensors field = tensors(input);
    py::array swirl = outArgument(py::none(), {input.shape(0)}, input);
    py::array real = outArgument(py::none(), {input.shape(0)}, input);
    const ScalarView<float> swirlOut = writable(swirl);
    const ScalarView<float> realOut = writable(real);
    {
        const py::gil_scoped_release unlocked;
        FloatQELVectorConcrete s;
        FloatQELVectorConcrete r;
        forEachBlock(field, [&](const TensorEigenizer& block, std::size_t first, std::size_t n) {
            block.getSwirlStrength(s, r);
            for (std::size_t i = 0; i < n; ++i) {
                swirlOut.set(first + i, s.getInternals()[i]);
                realOut.set(first + i, r.getInternals()[i]);
            }
        });
    }
    return py::make_tuple(swirl, real);
}

} // namespace

void bindTensorEigenizer(py::module_& module) {
    const auto define = [&](const char* name, Quantity quantity, const char* text) {
        module.def(name, scalarQuantity(quantity), py::arg("gradients"),
                   py::arg("out") = py::none(), text);
    };
    define("invariant_q", &TensorEigenizer::getInvariantQ,
           "Second invariant Q of gradients (n, 9) or (n, 3, 3), float32: (n,) float32, unit of "
           "the gradients squared. O(n).");
    define("divergence", &TensorEigenizer::getDivergence,
           "Trace of gradients (n, 9) or (n, 3, 3), float32: (n,) float32. O(n).");
    define("discriminant", &TensorEigenizer::getDiscrim,
           "Discriminant of the characteristic cubic of gradients (n, 9) or (n, 3, 3), float32: "
           "(n,) float32, unit of the gradients to the sixth power. O(n).");
    define(
        "lambda2", &TensorEigenizer::get2ndEValSymmTT,
        "Lambda-2 of gradients (n, 9) or (n, 3, 3), float32: (n,) float32, unit of the gradients "
        "squared. O(n).");
    module.def("swirl_strength", &swirlStrength, py::arg("gradients"),
               "Swirl strength and real eigenvalue of gradients (n, 9) or (n, 3, 3), float32: two "
               "(n,) float32, unit of the gradients. O(n).");
}

} // namespace qel::python
