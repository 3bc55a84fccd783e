// The analysis of one block of points, from a gradient to the chosen fields.
#include "VortexBlock.h"

#include <algorithm>
#include <cmath>

#include <vtkDoubleArray.h>

namespace vtkQELVortex {
namespace {

// A gradient of two velocity components has six numbers; that of the third is zero.
template <typename T>
std::array<float, 9> narrowed(const T* tuple, int components, double factor) {
    std::array<float, 9> t{};
    for (int i = 0; i < components; ++i) {
        t[static_cast<std::size_t>(i)] = static_cast<float>(static_cast<double>(tuple[i]) * factor);
    }
    return t;
}

bool allFinite(const std::array<float, 9>& t) {
    return std::all_of(t.begin(), t.end(), [](float value) { return std::isfinite(value); });
}

static_assert(sizeof(qel::TripletBase<float>) == 3 * sizeof(float), "triplets without gaps");

const float* firstFloat(const qel::TripletQELVector& values) {
    return values.empty() ? nullptr : &values.getInternals().data()->x;
}

} // namespace

// -- Reading ----

void VortexBlock::loadGradient(vtkDataArray* gradient, vtkIdType first, vtkIdType count) {
    const int components = std::min(gradient->GetNumberOfComponents(), 9);
    const auto n = static_cast<std::size_t>(count);
    if (auto* floats = vtkFloatArray::FastDownCast(gradient)) {
        readGradient(floats->GetPointer(first * components), components, n);
    } else if (auto* doubles = vtkDoubleArray::FastDownCast(gradient)) {
        readGradient(doubles->GetPointer(first * components), components, n);
    } else {
        buffer_.resize(n * static_cast<std::size_t>(components));
        for (vtkIdType i = 0; i < count; ++i) {
            gradient->GetTuple(first + i, buffer_.data() + i * components);
        }
        readGradient(buffer_.data(), components, n);
    }
}

template <typename T>
void VortexBlock::readGradient(const T* tuples, int components, std::size_t count) {
    finite_.resize(count);
    for (qel::TripletQELVector& row : rows_) {
        row.resize(count);
    }
    auto row1 = rows_[0].begin();
    auto row2 = rows_[1].begin();
    auto row3 = rows_[2].begin();
    const double factor = std::ldexp(1.0, exponent_);
    for (std::size_t i = 0; i < count; ++i, ++row1, ++row2, ++row3) {
        std::array<float, 9> t = narrowed(tuples, components, factor);
        tuples += components;
        finite_[i] = allFinite(t);
        if (!finite_[i]) {
            t.fill(0.0F);
        }
        *row1 = {t[0], t[1], t[2]};
        *row2 = {t[3], t[4], t[5]};
        *row3 = {t[6], t[7], t[8]};
    }
}

void VortexBlock::loadVelocity(vtkDataArray* velocity, vtkIdType first) {
    velocity_.resize(finite_.size());
    double u[3] = {0.0, 0.0, 0.0};
    vtkIdType tuple = first;
    for (qel::TripletBase<float>& value : velocity_) {
        velocity->GetTuple(tuple, u); // safe on several threads, as GetComponent() is not always
        value = {static_cast<float>(u[0]), static_cast<float>(u[1]), static_cast<float>(u[2])};
        ++tuple;
    }
}

double VortexBlock::largest(const unsigned char* mask) const {
    float most = 0.0F;
    for (const qel::TripletQELVector& row : rows_) {
        auto value = row.begin();
        for (std::size_t i = 0; i < finite_.size(); ++i, ++value) {
            if (mask == nullptr || mask[i] == 0) {
                most = std::max({most, std::abs(value->x), std::abs(value->y), std::abs(value->z)});
            }
        }
    }
    return std::ldexp(static_cast<double>(most), -exponent_);
}

// -- Fields ----

void VortexBlock::store(vtkIdType first) {
    const qel::TensorEigenizer tensor(finite_.size(), rows_[0], rows_[1], rows_[2]);
    storeInvariants(tensor, first);
    storeEigenAnalysis(tensor, first);
}

void VortexBlock::storeInvariants(const qel::TensorEigenizer& tensor, vtkIdType first) {
    if (wants(Q)) {
        tensor.getInvariantQ(scalar_);
        put(Q, scalar_, first);
    }
    if (wants(QCriterion)) {
        computeQCriterion();
        put(QCriterion, scalar_, first);
    }
    if (wants(Divergence)) {
        tensor.getDivergence(scalar_);
        put(Divergence, scalar_, first);
    }
    if (wants(Discriminant)) {
        tensor.getDiscrim(scalar_);
        put(Discriminant, scalar_, first);
    }
    if (wants(Vorticity)) {
        tensor.getVorticity(triplet_);
        put(Vorticity, triplet_, first);
    }
    if (wants(Helicity)) {
        tensor.getHelicity(velocity_, scalar_);
        put(Helicity, scalar_, first);
    }
    if (wants(Lambda2)) {
        tensor.get2ndEValSymmTT(scalar_);
        put(Lambda2, scalar_, first);
    }
}

void VortexBlock::storeEigenAnalysis(const qel::TensorEigenizer& tensor, vtkIdType first) {
    bool any = false;
    for (int field = SwirlStrength; field < kFieldCount; ++field) {
        any = any || wants(static_cast<Field>(field));
    }
    if (!any) {
        return;
    }
    tensor.getSwirlStrength(swirl_, realEigenvalue_);
    put(SwirlStrength, swirl_, first);
    put(RealEigenvalue, realEigenvalue_, first);
    if (wants(RealEigenvector)) {
        tensor.getEVecReal(swirl_, realEigenvalue_, triplet_);
        put(RealEigenvector, triplet_, first);
    }
    if (wants(SwirlNormal)) {
        tensor.getSwirlNormal(swirl_, realEigenvalue_, triplet_);
        put(SwirlNormal, triplet_, first);
    }
    if (wants(SwirlStretchRate)) {
        tensor.getSwirlStretchRate(swirl_, realEigenvalue_, scalar_);
        put(SwirlStretchRate, scalar_, first);
    }
    if (wants(RealEigenHelicity)) {
        tensor.getRealEigenHelicity(swirl_, realEigenvalue_, scalar_);
        put(RealEigenHelicity, scalar_, first);
    }
    if (wants(NormalEigenHelicity)) {
        tensor.getNormEigenHelicity(swirl_, realEigenvalue_, scalar_);
        put(NormalEigenHelicity, scalar_, first);
    }
}

// The library's Q less half the square of the divergence; in double, where the two nearly cancel.
void VortexBlock::computeQCriterion() {
    scalar_.resize(finite_.size());
    auto a = rows_[0].begin();
    auto b = rows_[1].begin();
    auto c = rows_[2].begin();
    for (float& value : scalar_) {
        const double squares = double{a->x} * a->x + double{b->y} * b->y + double{c->z} * c->z;
        const double products = double{a->y} * b->x + double{a->z} * c->x + double{b->z} * c->y;
        value = static_cast<float>(-0.5 * squares - products);
        ++a;
        ++b;
        ++c;
    }
}

// -- Writing ----

void VortexBlock::put(Field field, const qel::FloatQELVectorConcrete& values, vtkIdType first) {
    put(field, values.getInternals().data(), values.size(), first);
}

void VortexBlock::put(Field field, const qel::TripletQELVector& values, vtkIdType first) {
    put(field, firstFloat(values), 3 * values.size(), first);
}

void VortexBlock::put(Field field, const float* values, std::size_t count, vtkIdType first) {
    if (!wants(field)) {
        return;
    }
    float* target = outputs_[field]->GetPointer(first * info(field).components);
    if (exponent_ == 0) {
        std::copy(values, values + count, target);
        return;
    }
    const double factor = std::ldexp(1.0, -exponent_ * info(field).degree);
    std::transform(values, values + count, target, [factor](float value) {
        return static_cast<float>(static_cast<double>(value) * factor);
    });
}

} // namespace vtkQELVortex
