#ifndef QEL_FOUNDATION_DEINTERLEAVE_H
#define QEL_FOUNDATION_DEINTERLEAVE_H

/// @file
/// Deinterleaving of float triplets: from x, y, z, x, y, z, ... in memory to registers of one
/// component each, and back.
///
/// Three registers in a row hold the triplets of as many points as one has lanes. A component
/// stands in every third of their floats, and as three does not divide the number of lanes, it
/// stands in every lane once: two blends gather it in one register. That leaves its points in an
/// order of its own; one permutation more brings it into that of memory. Shuffles move bits and
/// compute nothing.

#include <cstddef>
#include <utility>

#include <qel/TripletBase.h>

#include "platform/Lanes.h"
#include "platform/VectorUnit.h"

namespace qel {

/// Three components, of types too that TripletBase is not for.
template <typename Number>
struct BasicTriple {
    Number x, y, z;

    QEL_KERNEL operator TripletBase<Number>() const { return {x, y, z}; }
};

#if defined(QEL_SHUFFLES)

template <std::size_t width>
using FloatLanes = Lanes<float, width>;

template <std::size_t width>
using TripleLanes = BasicTriple<FloatLanes<width>>;

// -- Where the components stand ----

/// Which component, 0 to 2, stands in the lane of the register.
constexpr std::size_t componentIn(std::size_t width, std::size_t which, std::size_t lane) {
    return (which * width + lane) % 3;
}

/// Which register, 0 to 2, has the component in the lane: powers of two are their own inverses
/// modulo 3.
constexpr std::size_t registerWith(std::size_t width, std::size_t component, std::size_t lane) {
    return (component + 3 - lane % 3) * width % 3;
}

/// Whose component the lane holds once it is gathered.
constexpr std::size_t pointIn(std::size_t width, std::size_t component, std::size_t lane) {
    return (registerWith(width, component, lane) * width + lane) / 3;
}

/// Which lane then holds that of the point.
constexpr std::size_t laneOf(std::size_t width, std::size_t component, std::size_t point) {
    return (3 * point + component) % width;
}

// -- Shuffles ----

/// The lane of b where `second` is true, else that of a.
constexpr int blended(std::size_t width, std::size_t lane, bool second) {
    return static_cast<int>(second ? width + lane : lane);
}

/// The component out of three registers in a row, its points in the order of memory.
template <std::size_t component, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> componentOf(const FloatLanes<width>& r0, const FloatLanes<width>& r1,
                                         const FloatLanes<width>& r2,
                                         std::index_sequence<lane...>) {
    const auto two = __builtin_shufflevector(
        r0.value, r1.value, blended(width, lane, registerWith(width, component, lane) == 1)...);
    const auto gathered = __builtin_shufflevector(
        two, r2.value, blended(width, lane, registerWith(width, component, lane) == 2)...);
    return {__builtin_shufflevector(gathered, gathered,
                                    static_cast<int>(laneOf(width, component, lane))...)};
}

/// The register of three in a row, out of components as they are gathered.
template <std::size_t which, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> scattered(const TripleLanes<width>& t, std::index_sequence<lane...>) {
    const FloatLanes<width> two = {__builtin_shufflevector(
        t.x.value, t.y.value, blended(width, lane, componentIn(width, which, lane) == 1)...)};
    return {__builtin_shufflevector(two.value, t.z.value,
                                    blended(width, lane, componentIn(width, which, lane) == 2)...)};
}

/// From the order of memory into that in which the component is gathered.
template <std::size_t component, std::size_t width, std::size_t... lane>
QEL_KERNEL FloatLanes<width> inLanes(const FloatLanes<width>& v, std::index_sequence<lane...>) {
    return {__builtin_shufflevector(v.value, v.value,
                                    static_cast<int>(pointIn(width, component, lane))...)};
}

// -- One group ----

/// The components of as many triplets as there are lanes.
template <std::size_t width>
QEL_KERNEL TripleLanes<width> readTriplets(const TripletBase<float>* from) {
    static_assert(sizeof(TripletBase<float>) == 3 * sizeof(float), "triplets lie side by side");
    constexpr std::make_index_sequence<width> lanes{};
    constexpr std::size_t kBytes = FloatLanes<width>::kBytes;
    const char* const bytes = reinterpret_cast<const char*>(from);
    FloatLanes<width> r0 = FloatLanes<width>::read(bytes);
    FloatLanes<width> r1 = FloatLanes<width>::read(bytes + kBytes);
    FloatLanes<width> r2 = FloatLanes<width>::read(bytes + 2 * kBytes);
#if !defined(__clang__) // which reads once by itself
    // To stay in registers: otherwise each of their three uses becomes a read of its own.
    __asm__("" : "+v"(r0.value), "+v"(r1.value), "+v"(r2.value));
#endif
    return {componentOf<0>(r0, r1, r2, lanes), componentOf<1>(r0, r1, r2, lanes),
            componentOf<2>(r0, r1, r2, lanes)};
}

template <std::size_t width>
QEL_KERNEL void writeGroup(const TripleLanes<width>& t, TripletBase<float>* to) {
    constexpr std::make_index_sequence<width> lanes{};
    constexpr std::size_t kBytes = FloatLanes<width>::kBytes;
    const TripleLanes<width> own = {inLanes<0>(t.x, lanes), inLanes<1>(t.y, lanes),
                                    inLanes<2>(t.z, lanes)};
    char* const bytes = reinterpret_cast<char*>(to);
    scattered<0>(own, lanes).write(bytes);
    scattered<1>(own, lanes).write(bytes + kBytes);
    scattered<2>(own, lanes).write(bytes + 2 * kBytes);
}

template <std::size_t width>
QEL_KERNEL void writeGroup(const FloatLanes<width>& v, float* to) {
    v.write(reinterpret_cast<char*>(to));
}

#endif

// -- Any number ----

/// x[k], y[k], z[k] = the components of triplet k. With a width of 8 or 16, for a vector unit with
/// as many lanes.
template <std::size_t width>
QEL_KERNEL void deinterleave(const TripletBase<float>* from, std::size_t n, float* x, float* y,
                             float* z) {
    std::size_t k = 0;
#if defined(QEL_SHUFFLES)
    for (; n - k >= width; k += width) {
        const TripleLanes<width> t = readTriplets<width>(from + k);
        writeGroup(t.x, x + k);
        writeGroup(t.y, y + k);
        writeGroup(t.z, z + k);
    }
#endif
    for (; k < n; ++k) {
        x[k] = from[k].x;
        y[k] = from[k].y;
        z[k] = from[k].z;
    }
}

} // namespace qel

#endif
