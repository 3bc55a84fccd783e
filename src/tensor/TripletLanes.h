#ifndef QEL_TENSOR_TRIPLETLANES_H
#define QEL_TENSOR_TRIPLETLANES_H

/// @file
/// Several points at once: a number of each in the lanes of one vector register, which the
/// formulas take like a float, and how triplets get into registers and out of them.
///
/// Three registers in a row hold the triplets of as many points as one has lanes. A component
/// stands in every third of their floats, and as three does not divide the number of lanes, it
/// stands in every lane once: two blends gather it in one register. That leaves its points in an
/// order of its own, so y and z are brought into the order of x; no more is needed to compute.
/// Results get into the order of memory when they are written.

#include <cstddef>
#include <utility>

#include "platform/Lanes.h"
#include "tensor/PointFormulas.h"

#if defined(QEL_SHUFFLES)

namespace qel {

/// Floats that are computed with lane by lane.
template <std::size_t width>
using FloatLanes = Lanes<float, width>;

// -- Where the components stand ----

/// Which component, 0 to 2, stands in the lane of the register.
constexpr std::size_t componentIn(std::size_t width, std::size_t which, std::size_t lane) {
    return (which * width + lane) % 3;
}

/// Which register, 0 to 2, has the component in the lane.
constexpr std::size_t registerWith(std::size_t width, std::size_t component, std::size_t lane) {
    std::size_t which = 0;
    while (componentIn(width, which, lane) != component) {
        ++which;
    }
    return which;
}

/// Whose component the lane holds once it is gathered.
constexpr std::size_t pointIn(std::size_t width, std::size_t component, std::size_t lane) {
    return (registerWith(width, component, lane) * width + lane) / 3;
}

/// Which lane then holds that of the point.
constexpr std::size_t laneOf(std::size_t width, std::size_t component, std::size_t point) {
    std::size_t lane = 0;
    while (pointIn(width, component, lane) != point) {
        ++lane;
    }
    return lane;
}

// -- Shuffles ----

/// The lane of b where `second` is true, else that of a.
constexpr int blended(std::size_t width, std::size_t lane, bool second) {
    return static_cast<int>(second ? width + lane : lane);
}

/// The component out of three registers in a row, its points in an order of its own.
template <std::size_t component, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> gathered(const FloatLanes<width>& r0, const FloatLanes<width>& r1,
                                      const FloatLanes<width>& r2, std::index_sequence<lane...>) {
    const FloatLanes<width> two = {__builtin_shufflevector(
        r0.value, r1.value, blended(width, lane, registerWith(width, component, lane) == 1)...)};
    return {__builtin_shufflevector(
        two.value, r2.value, blended(width, lane, registerWith(width, component, lane) == 2)...)};
}

/// The register of three in a row, out of gathered components: the converse.
template <std::size_t which, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> scattered(const BasicTriple<FloatLanes<width>>& t,
                                       std::index_sequence<lane...>) {
    const FloatLanes<width> two = {__builtin_shufflevector(
        t.x.value, t.y.value, blended(width, lane, componentIn(width, which, lane) == 1)...)};
    return {__builtin_shufflevector(two.value, t.z.value,
                                    blended(width, lane, componentIn(width, which, lane) == 2)...)};
}

/// From the order in which one component is gathered into that of another.
template <std::size_t from, std::size_t to, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> reordered(const FloatLanes<width>& v, std::index_sequence<lane...>) {
    return {__builtin_shufflevector(
        v.value, v.value, static_cast<int>(laneOf(width, from, pointIn(width, to, lane)))...)};
}

/// From the order in which x is gathered into that of the points.
template <std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> inOrder(const FloatLanes<width>& v, std::index_sequence<lane...>) {
    return {__builtin_shufflevector(v.value, v.value, static_cast<int>(laneOf(width, 0, lane))...)};
}

// -- Memory ----

/// The triplets of as many points as there are lanes, in the order in which x is gathered.
template <std::size_t width>
QEL_KERNEL BasicTriple<FloatLanes<width>> readTriples(const char* from) {
    constexpr std::make_index_sequence<width> lanes{};
    constexpr std::size_t kBytes = FloatLanes<width>::kBytes;
    FloatLanes<width> r0 = FloatLanes<width>::read(from);
    FloatLanes<width> r1 = FloatLanes<width>::read(from + kBytes);
    FloatLanes<width> r2 = FloatLanes<width>::read(from + 2 * kBytes);
#if !defined(__clang__) // which reads once by itself
    // To stay in registers: otherwise each use becomes a read of its own again. (An array of the
    // three would be in memory.)
    __asm__("" : "+v"(r0.value), "+v"(r1.value), "+v"(r2.value));
#endif
    return {gathered<0>(r0, r1, r2, lanes), reordered<1, 0>(gathered<1>(r0, r1, r2, lanes), lanes),
            reordered<2, 0>(gathered<2>(r0, r1, r2, lanes), lanes)};
}

/// Both take what is in the order of readTriples.
template <std::size_t width>
QEL_KERNEL void writeTriples(const BasicTriple<FloatLanes<width>>& t, char* to) {
    constexpr std::make_index_sequence<width> lanes{};
    constexpr std::size_t kBytes = FloatLanes<width>::kBytes;
    const BasicTriple<FloatLanes<width>> own = {t.x, reordered<0, 1>(t.y, lanes),
                                                reordered<0, 2>(t.z, lanes)};
    scattered<0>(own, lanes).write(to);
    scattered<1>(own, lanes).write(to + kBytes);
    scattered<2>(own, lanes).write(to + 2 * kBytes);
}

template <std::size_t width>
QEL_KERNEL void writeNumbers(const FloatLanes<width>& v, char* to) {
    constexpr std::make_index_sequence<width> lanes{};
    inOrder(v, lanes).write(to);
}

} // namespace qel

#endif

#endif
