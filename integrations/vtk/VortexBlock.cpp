// The analysis of one block of points, from a gradient to the chosen fields.
#include "VortexBlock.h"

#include <algorithm>
#include <cmath>

#include <vtkDoubleArray.h>

namespace vtkQELVortex {
namespace {

constexpr std::size_t kElements = 9; // of a gradient

// A gradient of two velocity components has six numbers; that of the third is zero.
template <typename T>
void narrow(const T* tuple, int components, float* t) {
    std::fill_n(t, kElements, 0.0F);
    std::transform(tuple, tuple + components, t, [](T value) { return static_cast<float>(value); });
}

bool allFinite(const float* t) {
    return std::all_of(t, t + kElements, [](float value) { return std::isfinite(value); });
}

} // namespace

// -- Reading ----

void VortexBlock::loadGradient(vtkDataArray* gradient, vtkIdType first, vtkIdType count,
                               const unsigned char* mask) {
    const int components = std::min(gradient->GetNumberOfComponents(), int{kElements});
    finite_.resize(static_cast<std::size_t>(count));
    gradients_.resize(kElements * finite_.size());
    if (auto* floats = vtkFloatArray::FastDownCast(gradient)) {
        readGradient(floats->GetPointer(first * components), components, mask);
    } else if (auto* doubles = vtkDoubleArray::FastDownCast(gradient)) {
        readGradient(doubles->GetPointer(first * components), components, mask);
    } else {
        buffer_.resize(finite_.size() * static_cast<std::size_t>(components));
        for (vtkIdType i = 0; i < count; ++i) {
            gradient->GetTuple(first + i, buffer_.data() + i * components);
        }
        readGradient(buffer_.data(), components, mask);
    }
}

template <typename T>
void VortexBlock::readGradient(const T* tuples, int components, const unsigned char* mask) {
    for (std::size_t i = 0; i < finite_.size(); ++i, tuples += components) {
        float* const t = gradients_.data() + kElements * i;
        narrow(tuples, components, t);
        finite_[i] = allFinite(t);
        if (!finite_[i] || (mask != nullptr && mask[i] != 0)) {
            std::fill_n(t, kElements, 0.0F);
        }
    }
}

void VortexBlock::loadVelocity(vtkDataArray* velocity, vtkIdType first) {
    velocity_.resize(3 * finite_.size());
    double u[3] = {0.0, 0.0, 0.0};
    for (std::size_t i = 0; i < finite_.size(); ++i) {
        // Safe on several threads, as GetComponent() is not always.
        velocity->GetTuple(first + static_cast<vtkIdType>(i), u);
        std::transform(u, u + 3, velocity_.data() + 3 * i,
                       [](double value) { return static_cast<float>(value); });
    }
}

// -- Fields ----

qel::ScalarView<float> VortexBlock::scalars(Field field, vtkIdType first) const {
    return outputs_[field] == nullptr
               ? qel::ScalarView<float>()
               : qel::ScalarView<float>(outputs_[field]->GetPointer(first), finite_.size());
}

qel::TripletView<float> VortexBlock::triplets(Field field, vtkIdType first) const {
    return outputs_[field] == nullptr
               ? qel::TripletView<float>()
               : qel::TripletView<float>(outputs_[field]->GetPointer(3 * first), finite_.size());
}

qel::GradientReport VortexBlock::store(vtkIdType first) {
    qel::GradientFields<float> out;
    out.invariantQ = scalars(Q, first);
    out.qCriterion = scalars(QCriterion, first);
    out.divergence = scalars(Divergence, first);
    out.discriminant = scalars(Discriminant, first);
    out.vorticity = triplets(Vorticity, first);
    out.helicity = scalars(Helicity, first);
    out.lambda2 = scalars(Lambda2, first);
    out.swirlStrength = scalars(SwirlStrength, first);
    out.realEigenvalue = scalars(RealEigenvalue, first);
    out.realEigenvector = triplets(RealEigenvector, first);
    out.swirlNormal = triplets(SwirlNormal, first);
    out.swirlStretchRate = scalars(SwirlStretchRate, first);
    out.realEigenHelicity = scalars(RealEigenHelicity, first);
    out.normalEigenHelicity = scalars(NormalEigenHelicity, first);
    const qel::TensorView<const float> gradients(gradients_.data(), finite_.size());
    if (out.helicity.empty()) {
        return qel::analyzeGradients(gradients, out, options_);
    }
    const qel::TripletView<const float> velocity(velocity_.data(), finite_.size());
    return qel::analyzeGradients(gradients, velocity, out, options_);
}

} // namespace vtkQELVortex
