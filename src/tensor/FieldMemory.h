#ifndef QEL_TENSOR_FIELDMEMORY_H
#define QEL_TENSOR_FIELDMEMORY_H

/// @file
/// The memory of arrays: what the kernels read and write. Each type has at(k), the value at point
/// k, where it is written to set(k, value), and after(n), the same without its first n points. The
/// rows of the tensor are a type of their own, so that another layout of the nine components needs
/// no other kernel.
///
/// Memory is asked for with the same element access as in a loop over the points: what that expires
/// expires here too, and an array that is too short is fatal before anything is written.

#include <cstddef>
#include <functional>
#include <typeinfo>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TripletQELVector.h>

#include "platform/VectorUnit.h"
#include "tensor/PointFormulas.h"

namespace qel {

/// Floats, each `stride` behind the one before: 1 or 3.
struct StridedFloats {
    float* first;
    std::size_t stride;

    QEL_KERNEL float at(std::size_t k) const { return first[k * stride]; }
    QEL_KERNEL void set(std::size_t k, float value) const { first[k * stride] = value; }
    QEL_KERNEL StridedFloats after(std::size_t n) const { return {first + n * stride, stride}; }
};

/// Triplets side by side.
struct Triplets {
    const TripletBase<float>* first;

    QEL_KERNEL Triple at(std::size_t k) const { return tripleOf(first[k]); }
    QEL_KERNEL Triplets after(std::size_t n) const { return {first + n}; }
};

/// The tensor, row by row in three arrays.
struct GradientRows {
    Triplets row1, row2, row3;

    QEL_KERNEL Gradient at(std::size_t k) const {
        return gradientOf(row1.first[k], row2.first[k], row3.first[k]);
    }
    QEL_KERNEL GradientRows after(std::size_t n) const {
        return {row1.after(n), row2.after(n), row3.after(n)};
    }
};

/// The values of an output, side by side.
template <typename Element>
struct Elements {
    Element* first;

    QEL_KERNEL Element at(std::size_t k) const { return first[k]; }
    template <typename Value>
    QEL_KERNEL void set(std::size_t k, const Value& value) const {
        first[k] = value;
    }
    QEL_KERNEL Elements after(std::size_t n) const { return {first + n}; }
};

/// The two outputs of the swirl analysis. If they are one array, the eigenvalue stays.
/// @tparam Floats  Elements<float> or StridedFloats
template <typename Floats>
struct SwirlValues {
    Floats strength, eigenvalue;

    QEL_KERNEL Swirl at(std::size_t k) const { return {strength.at(k), eigenvalue.at(k)}; }
    QEL_KERNEL void set(std::size_t k, const Swirl& value) const {
        strength.set(k, value.strength);
        eigenvalue.set(k, value.realEigenvalue);
    }
    QEL_KERNEL SwirlValues after(std::size_t n) const {
        return {strength.after(n), eigenvalue.after(n)};
    }
};

/// False for an array of a caller's kind, a class derived from the library's included.
inline bool isLibraryArray(const FloatQELVector& array) {
    return typeid(array) == typeid(FloatQELVectorConcrete) ||
           typeid(array) == typeid(FloatQELVectorComponent);
}

/// Always: element access of triplet arrays is not virtual, so none has another way to its
/// elements.
inline bool isLibraryArray(const TripletQELVector&) {
    return true;
}

/// The memory of the first n values of a library array; n is positive.
inline StridedFloats memoryOf(FloatQELVector& array, std::size_t n) {
    if (typeid(array) == typeid(FloatQELVectorConcrete)) {
        auto& owning = static_cast<FloatQELVectorConcrete&>(array);
        owning.invalidateCache();
        static_cast<void>(owning.getInternals()[n - 1]);
        return {&*owning.begin(), 1};
    }
    static_cast<void>(array[n - 1]);
    return {&array[0], 3};
}

/// @tparam Array  TripletQELVector, const or not: they differ in what their access expires
template <typename Array>
Triplets memoryOf(Array& array, std::size_t n) {
    static_cast<void>(array[n - 1]);
    return {&array[0]};
}

/// From the first to the last float of an array of n points, others between them included.
struct MemoryRange {
    const float* first;
    const float* last;

    MemoryRange(const StridedFloats& floats, std::size_t n)
        : first(floats.first), last(floats.first + (n - 1) * floats.stride) {}
    MemoryRange(const Triplets& triplets, std::size_t n)
        : first(&triplets.first[0].x), last(&triplets.first[n - 1].z) {}

    bool holds(const float* place) const {
        const std::less_equal<> isUpTo;
        return isUpTo(first, place) && isUpTo(place, last);
    }
};

} // namespace qel

#endif
