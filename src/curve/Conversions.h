#ifndef QEL_CURVE_CONVERSIONS_H
#define QEL_CURVE_CONVERSIONS_H

/// @file
/// Lists of points: between float and double, and about to be written from end to end.

#include <cstddef>
#include <vector>

#include <qel/Point.h>

namespace qel {

inline Points widened(const FloatPoints& points) {
    return Points(points.begin(), points.end());
}

inline FloatPoints narrowed(const Points& points) {
    return FloatPoints(points.begin(), points.end());
}

/// Sets points to what make(Points&) makes, narrowed.
template <typename Make>
void makeNarrowed(FloatPoints& points, Make make) {
    Points wide;
    make(wide);
    points = narrowed(wide);
}

// -- Written from end to end ----

/// Gives a vector `count` elements, of which element i is make(i). What it held may be read by
/// make(i) from element i on. The vector is unchanged if memory runs out.
template <typename T, typename Make>
void fillVector(std::vector<T>& elements, std::size_t count, Make make) {
    elements.resize(count);
    T* const element = elements.data();
    for (std::size_t i = 0; i < count; ++i) {
        element[i] = make(i);
    }
}

/// Gives a list `count` points with one component each, source(i), and zeros for the others.
template <typename Number, typename Source>
void fillAlong(Number TripletBase<Number>::*component, std::size_t count, Source source,
               std::vector<TripletBase<Number>>& points) {
    using Triplet = TripletBase<Number>;
    const bool alongX = component == &Triplet::x;
    const bool alongY = component == &Triplet::y;
    fillVector(points, count, [=](std::size_t i) {
        const Number value = source(i);
        return Triplet(alongX ? value : 0, alongY ? value : 0, alongX || alongY ? 0 : value);
    });
}

/// Room for `count` elements, if a vector that is to be overwritten has less: memory of its own,
/// without a copy of what that holds.
template <typename T>
std::vector<T> roomBeyond(const std::vector<T>& elements, std::size_t count) {
    std::vector<T> room;
    if (elements.capacity() < count) {
        room.reserve(count);
    }
    return room;
}

/// Makes the vector use the room, which leaves it empty, unless it had enough.
template <typename T>
void adoptRoom(std::vector<T>& elements, std::vector<T>& room) noexcept {
    if (room.capacity() > 0) {
        elements.swap(room);
    }
}

} // namespace qel

#endif
