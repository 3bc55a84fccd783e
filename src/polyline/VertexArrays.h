#ifndef QEL_POLYLINE_VERTEXARRAYS_H
#define QEL_POLYLINE_VERTEXARRAYS_H

/// @file
/// The vertices of a polyline, coordinate by coordinate, so that lanes read consecutive edges.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "platform/Buffer.h"

namespace qel {

/// Lanes of a kernel over edges: the edges of a run, and the children of a node of the BVH.
constexpr std::size_t kEdgeLanes = 8;

/// The coordinates of vertices in space.
struct VertexPointers {
    const double* x;
    const double* y;
    const double* z;
};

/// Edge i runs from vertex i to vertex i + 1. Behind the last vertex there are as many NaN as a
/// group of lanes needs that starts at any edge; they compare with nothing.
template <int kDimensions>
class VertexArrays {
public:
    VertexArrays() = default;
    /// Vertices without values.
    explicit VertexArrays(std::size_t vertices) {
        for (Buffer<double>& array : arrays_) {
            array = Buffer<double>(vertices + kEdgeLanes);
        }
        keepFirst(vertices);
    }

    /// Gives up all vertices but as many.
    void keepFirst(std::size_t vertices) {
        vertices_ = vertices;
        for (Buffer<double>& array : arrays_) {
            std::fill_n(array.begin() + vertices, kEdgeLanes,
                        std::numeric_limits<double>::quiet_NaN());
        }
    }

    std::size_t vertices() const { return vertices_; }
    std::size_t edges() const { return vertices_ - 1; }

    double* axis(int d) { return arrays_[static_cast<std::size_t>(d)].data(); }
    const double* axis(int d) const { return arrays_[static_cast<std::size_t>(d)].data(); }

    VertexPointers pointers() const {
        static_assert(kDimensions == 3, "vertices in space");
        return {axis(0), axis(1), axis(2)};
    }

private:
    std::array<Buffer<double>, static_cast<std::size_t>(kDimensions)> arrays_;
    std::size_t vertices_ = 0;
};

/// The largest |coordinate|. In lanes; the NaN behind the last vertex are not larger than anything.
template <int kDimensions>
double largestCoordinate(const VertexArrays<kDimensions>& vertices) {
    double largest[kEdgeLanes] = {};
    for (int d = 0; d < kDimensions; ++d) {
        const double* const x = vertices.axis(d);
        for (std::size_t i = 0; i < vertices.vertices(); i += kEdgeLanes) {
            for (std::size_t k = 0; k < kEdgeLanes; ++k) {
                const double size = std::fabs(x[i + k]);
                largest[k] = size > largest[k] ? size : largest[k];
            }
        }
    }
    return *std::max_element(largest, largest + kEdgeLanes);
}

} // namespace qel

#endif
