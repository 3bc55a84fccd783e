// Batch projection: the s-values of many points' feet on the curve.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cstdint>

#include "curve/NearestVertexSearch.h"
#include "curve/Projection.h"
#include "curve/SimdProjection.h"

namespace qel {
namespace {

constexpr std::size_t kMinInLanes = 8; // fewer are as fast one by one

// By chunks, each probe beside the vertex that is found for it.
void projectAll(const Points& curve, const std::vector<double>& svalues, const Points& probes,
                std::vector<double>& feet) {
    NearestVertexSearch search(curve, probes.size());
    std::size_t nearest[kProjectionChunk];
    std::uint64_t isResolved[kProjectionChunk];
    for (std::size_t begin = 0; begin < probes.size(); begin += kProjectionChunk) {
        const std::size_t count = std::min(kProjectionChunk, probes.size() - begin);
        const Point* const q = probes.data() + begin;
        double* const s = feet.data() + begin;
        search.findNearest(q, count, nearest);
        if (count >= kMinInLanes) {
            projectInLanes(curve, svalues, q, nearest, count, s, isResolved);
        } else {
            std::fill_n(isResolved, count, std::uint64_t{0});
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (isResolved[i] == 0) {
                s[i] = projectBesideVertex(curve, svalues, nearest[i], q[i]).s;
            }
        }
    }
}

} // namespace

void ParametricCurve::getSvalues(const Points& points, std::vector<double>& svalues,
                                 bool normalize) const {
    if (points.size() < 2) {
        throw internal::error("ParametricCurve", "getSvalues",
                              "Points must have size at least two.", argumentError);
    }
    svalues.assign(points.size(), 0.0);
    if (points_.size() == 2) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            projectPoint(points[i], svalues[i]);
        }
    } else {
        projectAll(points_, svalues_, points, svalues);
    }
    if (normalize) {
        // The ends alone: the others are not rescaled.
        svalues.front() = 0.0;
        svalues.back() = 1.0;
    }
}

} // namespace qel
