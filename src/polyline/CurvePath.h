#ifndef QEL_POLYLINE_CURVEPATH_H
#define QEL_POLYLINE_CURVEPATH_H

/// @file
/// A polyline as the search of crossings reads it, and how places on it are named.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <qel/CurveView.h>

#include "polyline/Orientation.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// A vertex, or the inside of an edge. Places increase along the path.
class PathPlace {
public:
    static PathPlace vertex(std::size_t i) { return PathPlace(2 * i); }
    static PathPlace insideEdge(std::size_t i) { return PathPlace(2 * i + 1); }

    bool isVertex() const { return number_ % 2 == 0; }
    /// Of the vertex or the edge.
    std::size_t index() const { return number_ / 2; }

    friend bool operator==(PathPlace a, PathPlace b) { return a.number_ == b.number_; }
    friend bool operator!=(PathPlace a, PathPlace b) { return a.number_ != b.number_; }
    friend bool operator<(PathPlace a, PathPlace b) { return a.number_ < b.number_; }

private:
    explicit PathPlace(std::size_t number) : number_(number) {}
    std::size_t number_;
};

/// The vertices of a curve that are not equal to the one before, times a power of two. A curve of
/// equal points has one edge of no length. In the plane (two dimensions) z does not count.
template <int kDimensions>
class CurvePath {
public:
    /// @param factor  what coordinates are multiplied by
    CurvePath(const CurveView& curve, double factor);

    const VertexArrays<kDimensions>& vertices() const { return vertices_; }
    std::size_t edges() const { return vertices_.edges(); }
    /// x and y of a vertex.
    PlanePoint operator[](std::size_t i) const {
        return {vertices_.axis(0)[i], vertices_.axis(1)[i]};
    }

    /// True if the first and the last vertex are equal: one place, the name of which is the first.
    bool isClosed() const { return isClosed_; }
    /// True if all points are equal.
    bool isPoint() const { return isClosed_ && edges() == 1; }
    PathPlace nameOf(PathPlace place) const {
        return isClosed_ && place == PathPlace::vertex(edges()) ? PathPlace::vertex(0) : place;
    }

    // -- Of the curve ----

    /// The edge that an edge of the path is.
    std::size_t curveEdge(std::size_t i) const { return firstPoint(i + 1) - 1; }
    /// The lowest edge that holds a place.
    std::size_t curveEdge(PathPlace place) const {
        if (!place.isVertex()) {
            return curveEdge(place.index());
        }
        return place.index() == 0 ? 0 : firstPoint(place.index()) - 1;
    }
    /// The lowest of the points that vertex i stands for.
    std::size_t firstPoint(std::size_t i) const {
        return firstPoints_.empty() ? i : firstPoints_[i];
    }

private:
    VertexArrays<kDimensions> vertices_;
    std::vector<std::size_t> firstPoints_; // empty while they are the vertices' own numbers
    bool isClosed_ = false;
};

extern template class CurvePath<2>;
extern template class CurvePath<3>;

using PlanePath = CurvePath<2>;
using SpacePath = CurvePath<3>;

} // namespace qel

#endif
