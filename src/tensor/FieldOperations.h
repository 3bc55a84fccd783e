#ifndef QEL_TENSOR_FIELDOPERATIONS_H
#define QEL_TENSOR_FIELDOPERATIONS_H

/// @file
/// Operations: the formula at one point, which defines them, and the kernel for many.

#include <cstddef>

#include "platform/VectorDispatch.h"
#include "platform/VectorUnit.h"
#include "tensor/FieldKernels.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootEnclosures.h"

namespace qel {

/// A formula in single precision.
template <typename Formula>
struct InGroups : Formula {
    template <std::size_t width>
    using Kernel = GroupKernel<Formula, width>;
};

struct Discriminant {
    template <typename Divisor = double>
    QEL_KERNEL static float at(const Gradient& t) {
        return static_cast<float>(characteristicCubic<Divisor>(t).discriminant);
    }
    QEL_KERNEL static Enclosure<float> enclose(const Gradient& t) {
        const float value = at<ConstantDivisor>(t);
        return {value, value};
    }
    template <std::size_t width>
    using Kernel = EnclosureKernel<Discriminant, width>;
};

struct SecondEigenvalue {
    static float at(const Gradient& t) { return middleRoot(symmetricCubic<double>(t)); }
    QEL_KERNEL static Enclosure<float> enclose(const Gradient& t) {
        return encloseMiddleRoot(symmetricCubic<ConstantDivisor>(t));
    }
    template <std::size_t width>
    using Kernel = EnclosureKernel<SecondEigenvalue, width>;
};

struct SwirlAnalysis {
    static Swirl at(const Gradient& t) { return swirlOf(characteristicCubic<double>(t)); }
    QEL_KERNEL static Enclosure<Swirl> enclose(const Gradient& t) {
        return encloseSwirl(characteristicCubic<ConstantDivisor>(t));
    }
    template <std::size_t width>
    using Kernel = EnclosureKernel<SwirlAnalysis, width>;
};

/// out = the operation at each of n points.
template <typename Operation, typename Output, typename... Inputs>
void compute(std::size_t n, const Output& out, const Inputs&... inputs) {
    std::size_t k = onFloatLanes<Operation::template Kernel>(n, out, inputs...);
    for (; k < n; ++k) {
        out.set(k, Operation::at(inputs.at(k)...));
    }
}

} // namespace qel

#endif
