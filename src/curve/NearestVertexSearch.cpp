#include "curve/NearestVertexSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "curve/NearestVertex.h"

namespace qel {
namespace {

constexpr std::size_t kMinVertices = 400; // below, looking at all of them is as fast
constexpr std::size_t kFirstProbes = 16;  // before the hierarchy along the curve is reconsidered
constexpr std::size_t kProbesBetween = 64;
constexpr std::size_t kMaxPause = 64;

// What it costs to build the hierarchy in space, for each vertex and halving of their number: in
// vertices looked at, and in visits of the search.
constexpr double kVerticesOfHalving = 24.0;
constexpr double kVisitsOfHalving = 0.2;

// Boxes along the curve whose sides are this share of the whole do not separate its vertices.
constexpr double kPoorSide = 0.5;
constexpr std::size_t kSampledBoxes = 16;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A NaN stays out.
struct Box {
    Point low{kInfinity, kInfinity, kInfinity};
    Point high{-kInfinity, -kInfinity, -kInfinity};

    void add(const Point& p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    double longestSide() const {
        return std::max({high.x - low.x, high.y - low.y, high.z - low.z});
    }
};

// Whether runs of neighbours along the curve lie close together, from a sample of them.
bool separatesAlongCurve(const Points& points) {
    const std::size_t runs = points.size() / VertexBvh::kLeaf;
    const std::size_t sampled = std::min(runs, kSampledBoxes);
    Box whole;
    double sides = 0.0;
    for (std::size_t k = 0; k < sampled; ++k) {
        const Point* const run = points.data() + k * runs / sampled * VertexBvh::kLeaf;
        Box box;
        for (std::size_t i = 0; i < VertexBvh::kLeaf; ++i) {
            box.add(run[i]);
        }
        sides += box.longestSide();
        whole.add(box.low);
        whole.add(box.high);
    }
    return sides <= kPoorSide * static_cast<double>(sampled) * whole.longestSide();
}

double halvingsOf(std::size_t count) {
    return std::log2(static_cast<double>(count));
}

} // namespace

NearestVertexSearch::NearestVertexSearch(const Points& points, std::size_t probes)
    : points_(points), probesLeft_(probes) {
    const std::size_t count = points.size();
    if (count < kMinVertices) {
        return;
    }
    if (separatesAlongCurve(points)) {
        isAlongCurve_ = true;
        bvh_.emplace(points.data(), count, VertexBvh::Order::alongCurve);
    } else if (static_cast<double>(probes) > kVerticesOfHalving * halvingsOf(count)) {
        bvh_.emplace(points.data(), count, VertexBvh::Order::inSpace);
    }
}

void NearestVertexSearch::findNearest(const Point* probes, std::size_t count,
                                      std::size_t* nearest) {
    if (!bvh_) {
        nearestVertices(points_.data(), points_.size(), probes, count, nearest);
        return;
    }
    std::transform(probes, probes + count, nearest,
                   [this](const Point& probe) { return this->nearest(probe); });
}

std::size_t NearestVertexSearch::nearest(const Point& probe) {
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

// Changes to the hierarchy in space if the probes that are left are likely to make up for it. It is
// taken to need twice the visits that a search makes at least.
void NearestVertexSearch::reconsider() {
    const auto count = static_cast<double>(points_.size());
    const double visits = static_cast<double>(search_.visits) / static_cast<double>(probesDone_);
    const double needed = 2.0 * static_cast<double>(2 + bvh_->levels());
    const double building = count * halvingsOf(points_.size()) * kVisitsOfHalving;
    if ((visits - needed) * static_cast<double>(probesLeft_) > building) {
        isAlongCurve_ = false;
        bvh_.emplace(points_.data(), points_.size(), VertexBvh::Order::inSpace);
        search_ = {};
        pause_ = 0;
        pauseLeft_ = 0;
    }
}

} // namespace qel
