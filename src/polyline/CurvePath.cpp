#include "polyline/CurvePath.h"

#include <numeric>

namespace qel {
namespace {

template <int kDimensions>
bool areEqual(const VertexArrays<kDimensions>& vertices, std::size_t i, std::size_t j) {
    for (int d = 0; d < kDimensions; ++d) {
        if (vertices.axis(d)[i] != vertices.axis(d)[j]) {
            return false;
        }
    }
    return true;
}

template <int kDimensions>
void setVertex(VertexArrays<kDimensions>& vertices, std::size_t i, const TripletBase<double>& p) {
    vertices.axis(0)[i] = p.x;
    vertices.axis(1)[i] = p.y;
    if (kDimensions > 2) {
        vertices.axis(kDimensions - 1)[i] = p.z;
    }
}

} // namespace

template <int kDimensions>
CurvePath<kDimensions>::CurvePath(const CurveView& curve, double factor) : vertices_(curve.size()) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        setVertex(vertices_, kept, curve[i] * factor);
        if (kept > 0 && areEqual(vertices_, kept - 1, kept)) {
            continue;
        }
        if (kept < i && firstPoints_.empty()) {
            firstPoints_.resize(kept);
            std::iota(firstPoints_.begin(), firstPoints_.end(), std::size_t{0});
        }
        if (kept < i) {
            firstPoints_.push_back(i);
        }
        ++kept;
    }
    vertices_.keepFirst(kept > 1 ? kept : 2); // of equal points, the second is there
    isClosed_ = areEqual(vertices_, 0, edges());
}

template class CurvePath<2>;
template class CurvePath<3>;

} // namespace qel
