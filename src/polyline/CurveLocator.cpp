#include <qel/CurveLocator.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>

#include <qel/QELException.h>

#include "batch/ArgumentCheck.h"
#include "polyline/CoordinateScale.h"
#include "polyline/EdgeBvh.h"
#include "polyline/EdgeFoot.h"
#include "polyline/EdgesWithin.h"
#include "polyline/Interpolation.h"
#include "polyline/NearestEdge.h"
#include "polyline/VertexArrays.h"

namespace qel {
namespace {

// Coordinates between these powers of two, and of probes up to the third, have squares that
// neither overflow nor underflow.
constexpr int kMinExponent = -300;
constexpr int kMaxExponent = 300;
constexpr double kFar = 0x1p500;

// Up to as many edges, the probes of a block are compared with all of them, side by side.
constexpr std::size_t kFewEdges = 24;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const CurveLocation kNowhere = {{kNaN, kNaN, kNaN}, kNaN, -1, kNaN};

// Probes that are answered between two calls of progress.
constexpr std::size_t kProbesPerCall = 4096;

bool isFinite(const TripletBase<double>& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

double largestOf(const TripletBase<double>& p) {
    return std::max(std::fabs(p.x), std::max(std::fabs(p.y), std::fabs(p.z)));
}

// As far away as kFar at most in each direction. Nothing changes by that for squared distances:
// farther away all of the curve is one point to them.
Probe clamped(const TripletBase<double>& q) {
    return {std::clamp(q.x, -kFar, kFar), std::clamp(q.y, -kFar, kFar),
            std::clamp(q.z, -kFar, kFar)};
}

// Of what is so large or so small that its square is not finite or not exact.
double lengthOf(const TripletBase<double>& step) {
    const CoordinateScale scale =
        CoordinateScale::into(kMinExponent, kMaxExponent, largestOf(step));
    const TripletBase<double> scaled = step * scale.factor;
    return std::sqrt(scaled.dot(scaled)) * scale.inverse;
}

void write(const CurveLocation& place, std::size_t i, const CurveLocations& out) {
    if (!out.foot.empty()) {
        out.foot.set(i, place.foot);
    }
    if (!out.s.empty()) {
        out.s.set(i, place.s);
    }
    if (!out.edge.empty()) {
        out.edge.set(i, place.edge);
    }
    if (!out.distance.empty()) {
        out.distance.set(i, place.distance);
    }
}

} // namespace

/// The vertices, scaled, and the tree over their edges.
///
/// Of more than two equal vertices that follow each other, two are kept: the edges between them
/// have no length and one foot, which is the nearest on the first of these edges or on none.
class CurveLocator::Index {
public:
    explicit Index(const CurveView& curve);

    std::size_t edges() const { return edges_; }

    CurveLocation locate(const TripletBase<double>& probe) const;

    /// @param count  of the probes, up to kEdgeLanes
    void locateBlock(const TripletBase<double>* probes, std::size_t count,
                     CurveLocation* places) const;

    std::vector<CurveLocation> locateWithin(const TripletBase<double>& probe,
                                            double distance) const;

private:
    void takeVertices(const CurveView& curve);

    /// The curve's first edge of one that was kept; behind the last, the number of edges.
    std::size_t firstEdgeOf(std::size_t kept) const {
        if (kept == vertices_.edges()) {
            return edges_;
        }
        return firstEdges_.empty() ? kept : firstEdges_[kept];
    }

    bool isNear(const TripletBase<double>& probe) const {
        return std::fabs(probe.x) <= near_ && std::fabs(probe.y) <= near_ &&
               std::fabs(probe.z) <= near_;
    }

    CurveLocation placeOf(const NearestEdge& nearest) const {
        const std::size_t edge = firstEdgeOf(nearest.edge);
        const EdgeFoot& foot = nearest.foot;
        return {{foot.x * scale_.inverse, foot.y * scale_.inverse, foot.z * scale_.inverse},
                interpolated(svalues_[edge], svalues_[edge + 1], foot.t),
                static_cast<std::int64_t>(edge),
                std::sqrt(foot.d2) * scale_.inverse};
    }
    CurveLocation locateFar(const TripletBase<double>& probe) const;

    std::size_t edges_;
    CoordinateScale scale_;
    double near_ = 0.0; // probes with larger coordinates are far away, or not finite
    VertexArrays<3> vertices_;
    std::vector<std::size_t> firstEdges_; // empty while they are the kept edges' own numbers
    std::vector<double> svalues_;
    EdgeBvh<3> bvh_;
};

// -- Building ----

CurveLocator::Index::Index(const CurveView& curve)
    : edges_(curve.size() - 1), vertices_(curve.size()) {
    double largest = 0.0;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const TripletBase<double> p = curve[i];
        if (!isFinite(p)) {
            throw data::invalid("CurveLocator", "constructor",
                                "Point " + std::to_string(i) + " is not finite.", argumentError);
        }
        largest = std::max(largest, largestOf(p));
    }
    scale_ = CoordinateScale::into(kMinExponent, kMaxExponent, largest);
    near_ = std::min(kFar * scale_.inverse, std::numeric_limits<double>::max());
    takeVertices(curve);
    curve.copySvalues(svalues_);
    bvh_ = EdgeBvh<3>(vertices_);
}

void CurveLocator::Index::takeVertices(const CurveView& curve) {
    std::size_t kept = 0;
    TripletBase<double> last, beforeLast;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const TripletBase<double> p = curve[i];
        if (kept > 1 && p == last && p == beforeLast) {
            continue;
        }
        if (kept < i && firstEdges_.empty()) {
            firstEdges_.resize(kept - 1);
            std::iota(firstEdges_.begin(), firstEdges_.end(), std::size_t{0});
        }
        if (kept < i) {
            firstEdges_.push_back(i - 1);
        }
        vertices_.axis(0)[kept] = p.x * scale_.factor;
        vertices_.axis(1)[kept] = p.y * scale_.factor;
        vertices_.axis(2)[kept] = p.z * scale_.factor;
        beforeLast = last;
        last = p;
        ++kept;
    }
    vertices_.keepFirst(kept);
}

// -- Places ----

CurveLocation CurveLocator::Index::locate(const TripletBase<double>& probe) const {
    if (!isNear(probe)) {
        return locateFar(probe);
    }
    const Probe q = {probe.x * scale_.factor, probe.y * scale_.factor, probe.z * scale_.factor};
    return placeOf(findNearestEdge(vertices_, bvh_, q));
}

void CurveLocator::Index::locateBlock(const TripletBase<double>* probes, std::size_t count,
                                      CurveLocation* places) const {
    const auto isNearProbe = [this](const TripletBase<double>& q) { return isNear(q); };
    if (count < kEdgeLanes || vertices_.edges() > kFewEdges ||
        !std::all_of(probes, probes + count, isNearProbe)) {
        std::transform(probes, probes + count, places,
                       [this](const TripletBase<double>& q) { return locate(q); });
        return;
    }
    Probe scaled[kEdgeLanes];
    NearestEdge nearest[kEdgeLanes];
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        scaled[k] = {probes[k].x * scale_.factor, probes[k].y * scale_.factor,
                     probes[k].z * scale_.factor};
    }
    findNearestOfFew(vertices_, scaled, nearest);
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        places[k] = placeOf(nearest[k]);
    }
}

CurveLocation CurveLocator::Index::locateFar(const TripletBase<double>& probe) const {
    if (!isFinite(probe)) {
        return kNowhere;
    }
    CurveLocation place = placeOf(findNearestEdge(vertices_, bvh_, clamped(probe * scale_.factor)));
    place.distance = lengthOf(probe - place.foot);
    return place;
}

// -- Places within a distance ----

namespace {

// No less than the squared distance of any place whose distance is at most a given one after
// scaling and rounding.
double squaredBound(double distance, double factor) {
    const double above = std::nextafter(distance, kInfinity) * factor;
    const double bound = above * above * (1.0 + 0x1p-50) + std::numeric_limits<double>::min();
    return std::min(bound, std::numeric_limits<double>::max());
}

} // namespace

std::vector<CurveLocation> CurveLocator::Index::locateWithin(const TripletBase<double>& probe,
                                                             double distance) const {
    const Probe q = clamped(probe * scale_.factor);
    const double d2 =
        isNear(probe) ? squaredBound(distance, scale_.factor) : std::numeric_limits<double>::max();
    std::vector<CurveLocation> places;
    for (const std::size_t first : findRunsWithin(bvh_, q, d2)) {
        const std::size_t end = std::min(first + kEdgeLanes, vertices_.edges());
        for (std::size_t i = first; i < end; ++i) {
            CurveLocation place = placeOf({i, footOnEdge(vertices_.pointers(), i, q)});
            if (!isNear(probe)) {
                place.distance = lengthOf(probe - place.foot);
            }
            if (!(place.distance <= distance)) {
                continue;
            }
            places.push_back(place);
            for (std::size_t same = firstEdgeOf(i) + 1; same < firstEdgeOf(i + 1); ++same) {
                place.s = svalues_[same];
                place.edge = static_cast<std::int64_t>(same);
                places.push_back(place);
            }
        }
    }
    return places;
}

// -- The public class ----

CurveLocator::CurveLocator(const CurveView& curve) : index_(std::make_unique<Index>(curve)) {}
CurveLocator::CurveLocator(CurveLocator&&) noexcept = default;
CurveLocator& CurveLocator::operator=(CurveLocator&&) noexcept = default;
CurveLocator::~CurveLocator() = default;

std::size_t CurveLocator::size() const {
    return index_->edges();
}

CurveLocation CurveLocator::locate(const TripletBase<double>& probe) const {
    return index_->locate(probe);
}

template <typename Number>
std::size_t CurveLocator::locateAll(const TripletView<const Number>& probes,
                                    const CurveLocations& out, const Progress& progress) const {
    ArgumentCheck check("CurveLocator", "locate");
    check.input(probes);
    check.output("foot", out.foot, probes.size());
    check.output("s", out.s, probes.size());
    check.output("edge", out.edge, probes.size());
    check.output("distance", out.distance, probes.size());
    TripletBase<double> block[kEdgeLanes];
    CurveLocation places[kEdgeLanes];
    for (std::size_t first = 0; first < probes.size(); first += kEdgeLanes) {
        if (first % kProbesPerCall == 0 && first > 0 && progress &&
            !progress(static_cast<double>(first) / static_cast<double>(probes.size()))) {
            return first;
        }
        const std::size_t count = std::min(kEdgeLanes, probes.size() - first);
        for (std::size_t k = 0; k < count; ++k) {
            block[k] = TripletBase<double>(probes[first + k]);
        }
        index_->locateBlock(block, count, places);
        for (std::size_t k = 0; k < count; ++k) {
            write(places[k], first + k, out);
        }
    }
    if (progress) {
        progress(1.0);
    }
    return probes.size();
}

std::size_t CurveLocator::locate(const TripletView<const double>& probes, const CurveLocations& out,
                                 const Progress& progress) const {
    return locateAll(probes, out, progress);
}

std::size_t CurveLocator::locate(const TripletView<const float>& probes, const CurveLocations& out,
                                 const Progress& progress) const {
    return locateAll(probes, out, progress);
}

void CurveLocator::locateWithin(const TripletBase<double>& probe, double distance,
                                std::vector<CurveLocation>& places) const {
    const bool isAsked = isFinite(probe) && distance >= 0.0;
    places = isAsked ? index_->locateWithin(probe, distance) : std::vector<CurveLocation>();
}

} // namespace qel
