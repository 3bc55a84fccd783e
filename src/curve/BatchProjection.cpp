// Batch projection: the s-values of many points' feet on the curve.
//
// Fast path: the nearest vertices are found in the way that is cheapest for all probes, as far as
// that shows:
//   - by looking at all vertices, where these or the probes are few;
//   - by a hierarchy along the curve, which is built in one pass, where neighbours along the curve
//     are neighbours in space;
//   - by a hierarchy in space where they are not, as the searches turn out, once its building costs
//     less than the searches that are left.
// So n probes on n vertices take O(n log n) on every shape, and few probes about as long as they
// take one by one. A probe that most vertices are about equally near to costs O(n).

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "curve/NearestVertex.h"
#include "curve/Projection.h"
#include "curve/Validation.h"
#include "curve/VertexBvh.h"

namespace qel {
namespace {

constexpr std::size_t kMinVertices = 400; // below, looking at all of them is as fast
constexpr std::size_t kMinProbes = 8;     // likewise
constexpr std::size_t kFirstProbes = 16;  // before the hierarchy along the curve is reconsidered
constexpr std::size_t kProbesBetween = 64;
constexpr std::size_t kMaxPause = 64;
constexpr std::size_t kChunk = 64; // probes handed over together

// What it costs to build the hierarchy in space, in visits of the search: for each vertex and
// halving of their number.
constexpr double kVisitsOfHalving = 0.2;

// The vertices of one polyline that are nearest to probes.
class NearestVertexSearch {
public:
    NearestVertexSearch(const Points& points, std::size_t probes)
        : points_(points), probesLeft_(probes) {
        if (points.size() >= kMinVertices && probes >= kMinProbes) {
            bvh_ = std::make_unique<VertexBvh>(points.data(), points.size(),
                                               VertexBvh::Order::alongCurve);
        }
    }

    // Sets nearest[i] to the vertex that the reference nearestVertex finds for probes[i].
    void find(const Point* probes, std::size_t count, std::size_t* nearest) {
        if (!bvh_) {
            nearestVertices(points_.data(), points_.size(), probes, count, nearest);
            return;
        }
        std::transform(probes, probes + count, nearest,
                       [this](const Point& probe) { return this->nearest(probe); });
    }

private:
    std::size_t nearest(const Point& probe) {
        --probesLeft_;
        if (pauseLeft_ > 0) {
            --pauseLeft_;
            return nearestVertex(points_, probe);
        }
        const std::size_t found = bvh_->nearestVertex(probe, search_);
        pause_ = search_.isGivenUp ? std::min(2 * pause_ + 1, kMaxPause) : 0;
        pauseLeft_ = pause_;
        ++probesDone_;
        const bool isDue = probesDone_ == kFirstProbes || probesDone_ % kProbesBetween == 0;
        if (isAlongCurve_ && (isDue || search_.isGivenUp)) {
            reconsider();
        }
        return found;
    }

    // Changes to the hierarchy in space if the probes that are left are likely to make up for it.
    // It is taken to need twice the visits that a search makes at least.
    void reconsider() {
        const auto count = static_cast<double>(points_.size());
        const double visits =
            static_cast<double>(search_.visits) / static_cast<double>(probesDone_);
        const double needed = 2.0 * static_cast<double>(2 + bvh_->levels());
        const double building = count * std::log2(count) * kVisitsOfHalving;
        if ((visits - needed) * static_cast<double>(probesLeft_) > building) {
            isAlongCurve_ = false;
            bvh_ = std::make_unique<VertexBvh>(points_.data(), points_.size(),
                                               VertexBvh::Order::inSpace);
            search_ = {};
            pause_ = 0;
            pauseLeft_ = 0;
        }
    }

    const Points& points_;
    std::size_t probesLeft_;
    std::size_t probesDone_ = 0;     // by the hierarchy
    std::unique_ptr<VertexBvh> bvh_; // none where all vertices are looked at
    bool isAlongCurve_ = true;
    VertexBvh::Search search_;
    // After searches that were given up, probes that are not tried with the hierarchy.
    std::size_t pause_ = 0;
    std::size_t pauseLeft_ = 0;
};

} // namespace

void ParametricCurve::getSvalues(const Points& points, std::vector<double>& svalues,
                                 bool normalize) const {
    if (points.size() < 2) {
        throw argumentFault("getSvalues", "Points must have size at least two.");
    }
    svalues.assign(points.size(), 0.0);
    NearestVertexSearch search(points_, points.size());
    std::size_t nearest[kChunk];
    for (std::size_t begin = 0; begin < points.size() && !isOnePoint(points_); begin += kChunk) {
        const std::size_t count = std::min(kChunk, points.size() - begin);
        search.find(&points[begin], count, nearest);
        for (std::size_t i = 0; i < count; ++i) {
            svalues[begin + i] =
                projectBesideVertex(points_, svalues_, nearest[i], points[begin + i]).s;
        }
    }
    if (normalize) {
        // The ends alone: the others are not rescaled.
        svalues.front() = 0.0;
        svalues.back() = 1.0;
    }
}

} // namespace qel
