#ifndef QEL_TENSOR_FIELDACCESS_H
#define QEL_TENSOR_FIELDACCESS_H

/// @file
/// When an operation may work on the memory of its arrays instead of going through operator[] at
/// every point: the arrays are of the library's own kinds, not of a caller's (a class derived from
/// them included), and no output shares memory with an input or the other output.
///
/// Looking at memory goes through the same operator[] as the point by point loop, at the first
/// and the last point: what that expires expires here too, and an array that is too short is fatal
/// before anything is written.

#include <cstddef>
#include <functional>
#include <typeinfo>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TripletQELVector.h>

#include "tensor/Runs.h"

namespace qel {

inline bool isOwnKind(const FloatQELVector& array) {
    return typeid(array) == typeid(FloatQELVectorConcrete) ||
           typeid(array) == typeid(FloatQELVectorComponent);
}

/// Always: element access of triplet arrays is not virtual, so none has another way to its
/// elements.
inline bool isOwnKind(const TripletQELVector&) {
    return true;
}

/// The first n values; the array is of an own kind and n is positive.
inline FloatRun runOf(FloatQELVector& array, std::size_t n) {
    const bool owning = typeid(array) == typeid(FloatQELVectorConcrete);
    float* const first = &array[0];
    static_cast<void>(array[n - 1]);
    return {first, owning ? std::size_t{1} : std::size_t{3}};
}

inline TripletRun runOf(TripletQELVector& array, std::size_t n) {
    static_cast<void>(array[n - 1]);
    return {&array[0]};
}

inline ConstTripletRun runOf(const TripletQELVector& array, std::size_t n) {
    static_cast<void>(array[n - 1]);
    return {&array[0]};
}

/// The floats that an array of n points takes up, and every how many of them are its own.
struct Footprint {
    const float* first;
    const float* last; ///< the last one, inclusive
    std::size_t stride;

    Footprint(const FloatRun& run, std::size_t n)
        : first(run.first), last(run.first + (n - 1) * run.stride), stride(run.stride) {}
    template <typename Element>
    Footprint(const BasicTripletRun<Element>& run, std::size_t n)
        : first(&run.first[0].x), last(&run.first[n - 1].z), stride(1) {}

    bool meets(const Footprint& other) const {
        const std::less<> before;
        if (before(last, other.first) || before(other.last, first)) {
            return false;
        }
        // Two components of one triplet array lie between each other.
        return stride != 3 || other.stride != 3 || (first - other.first) % 3 == 0;
    }
};

/// True if the output, of n points, meets none of the inputs.
template <typename Output, typename... Inputs>
bool standsApart(std::size_t n, const Output& output, const Rows& rows, const Inputs&... inputs) {
    const Footprint written(output, n);
    const auto meets = [&](const auto& input) { return written.meets(Footprint(input, n)); };
    return !(meets(rows.row1) || meets(rows.row2) || meets(rows.row3) || (meets(inputs) || ...));
}

/// True if the outputs meet neither the rows nor each other.
inline bool standsApart(std::size_t n, const SwirlRuns& outputs, const Rows& rows) {
    return standsApart(n, outputs.strength, rows) &&
           standsApart(n, outputs.eigenvalue, rows, outputs.strength);
}

} // namespace qel

#endif
