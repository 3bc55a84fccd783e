// s-values of points that are not the curve's own.

#include <qel/ParametricCurve.h>

#include "curve/Conversions.h"
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
    if (points_.size() < kFewVertices || points.size() < kManyProbes) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            projectPoint(points[i], svalues[i]);
        }
    } else if (points_.size() < kManyVertices) {
        const VertexLanes lanes(points_);
        for (std::size_t i = 0; i < points.size(); ++i) {
            projectBesideVertex(lanes.nearest(points[i]), points[i], svalues[i]);
        }
    } else {
        const RunBoxes boxes(points_);
        std::size_t nearest = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            nearest = boxes.nearestVertex(points[i], nearest);
            projectBesideVertex(nearest, points[i], svalues[i]);
        }
    }
    if (normalize) {
        // The ends alone: the others are not rescaled.
        svalues.front() = 0.0;
        svalues.back() = 1.0;
    }
}

} // namespace qel
