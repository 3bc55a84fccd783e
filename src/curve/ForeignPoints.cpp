// s-values of points that are not the curve's own.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cstdint>

#include "curve/Conversions.h"
#include "curve/ProjectionLanes.h"
#include "curve/RunBoxes.h"
#include "curve/VertexLanes.h"

namespace qel {
namespace {

// Making either copy of the points costs as much as a few plain searches.
constexpr std::size_t kManyProbes = 16;
// On so few vertices a plain search is fastest, and beyond so many one through boxes.
constexpr std::size_t kFewVertices = 16;
constexpr std::size_t kManyVertices = 400;

} // namespace

void ParametricCurve::getSvalues(const Points& points, std::vector<double>& svalues,
                                 bool normalize) const {
    if (points.size() < 2) {
        throw internal::error("ParametricCurve", "getSvalues",
                              "Points must have size at least two.", argumentError);
    }
    svalues.assign(points.size(), 0.0);
    // By chunks, each probe beside the vertex that is found for it.
    const auto projectAll = [&](auto nearestVertexTo) {
        std::size_t nearest[kProjectionChunk];
        std::uint64_t settled[kProjectionChunk];
        for (std::size_t begin = 0; begin < points.size(); begin += kProjectionChunk) {
            const Point* const probes = points.data() + begin;
            double* const s = svalues.data() + begin;
            const std::size_t count = std::min(kProjectionChunk, points.size() - begin);
            std::transform(probes, probes + count, nearest, nearestVertexTo);
            projectInLanes(points_, svalues_, probes, nearest, count, s, settled);
            for (std::size_t i = 0; i < count; ++i) {
                if (settled[i] == 0) {
                    projectBesideVertex(nearest[i], probes[i], s[i]);
                }
            }
        }
    };
    if (points_.size() < kFewVertices || points.size() < kManyProbes) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            projectPoint(points[i], svalues[i]);
        }
    } else if (points_.size() < kManyVertices) {
        const VertexLanes lanes(points_);
        projectAll([&](const Point& q) { return lanes.nearest(q); });
    } else {
        const RunBoxes boxes(points_);
        std::size_t nearest = 0;
        projectAll([&](const Point& q) { return nearest = boxes.nearestVertex(q, nearest); });
    }
    if (normalize) {
        // The ends alone: the others are not rescaled.
        svalues.front() = 0.0;
        svalues.back() = 1.0;
    }
}

} // namespace qel
