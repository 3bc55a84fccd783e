#include <qel/CurveCrossings.h>

#include <algorithm>

#include "platform/LowestBit.h"
#include "polyline/CoordinateScale.h"
#include "polyline/CrossingArguments.h"
#include "polyline/CrossingList.h"
#include "polyline/CrossingPairs.h"
#include "polyline/CurvePath.h"
#include "polyline/EdgeBvh.h"
#include "polyline/PathMeasure.h"

namespace qel {
namespace {

// -- Search ----

// Gives all pairs of edges whose boxes overlap to take(edge, edge of the indexed path). False if
// it was stopped.
template <typename Take>
bool forOverlappingPairs(const PlanePath& path, const PlanePath& indexed, const Progress& progress,
                         const Take& take) {
    const EdgeBvh<2> bvh(indexed.vertices());
    std::vector<RunPair> found;
    for (std::size_t first = 0; first < path.edges();) {
        first = findCrossingPairs(path.vertices(), first, indexed.vertices(), bvh, found);
        for (const RunPair& runs : found) {
            for (std::uint64_t pairs = runs.pairs; pairs != 0; pairs &= pairs - 1) {
                const auto bit = static_cast<std::size_t>(lowestBit(pairs));
                take(runs.first + bit / kEdgeLanes, runs.firstOther + bit % kEdgeLanes);
            }
        }
        if (first < path.edges() && progress &&
            !progress(static_cast<double>(first) / static_cast<double>(path.edges()))) {
            return false;
        }
    }
    return true;
}

// The tree is built over the shorter path.
bool search(const PlanePath& path, const PlanePath& other, const Progress& progress,
            CrossingList& list) {
    if (path.edges() < other.edges()) {
        return forOverlappingPairs(other, path, progress,
                                   [&](std::size_t j, std::size_t i) { list.take(i, j); });
    }
    return forOverlappingPairs(path, other, progress,
                               [&](std::size_t i, std::size_t j) { list.take(i, j); });
}

// -- Places ----

struct MeasuredPlace {
    PlanePoint point;
    double t; // along the edge, for a place inside one
    double otherT;
};

// Where two edges cross, both at their insides.
MeasuredPlace crossingOf(const PlanePath& path, std::size_t i, const PlanePath& other,
                         std::size_t j) {
    const PlanePoint a = path[i], b = path[i + 1], c = other[j], d = other[j + 1];
    const double ofA = orientation(c, d, a), ofB = orientation(c, d, b);
    const double ofC = orientation(a, b, c), ofD = orientation(a, b, d);
    const double t = ofA / (ofA - ofB);
    return {{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}, t, ofC / (ofC - ofD)};
}

MeasuredPlace measured(const CommonPlace& place, const PlanePath& path, const PlanePath& other) {
    const std::size_t i = place.on.index(), j = place.onOther.index();
    if (!place.on.isVertex() && !place.onOther.isVertex()) {
        return crossingOf(path, i, other, j);
    }
    const PlanePoint point = place.on.isVertex() ? path[i] : other[j];
    return {point, place.on.isVertex() ? 0.0 : fractionAlong(path[i], path[i + 1], point),
            place.onOther.isVertex() ? 0.0 : fractionAlong(other[j], other[j + 1], point)};
}

// -- Result ----

// From places on two paths to crossings of their curves.
struct Measures {
    const PlanePath& path;
    const PlanePath& other;
    PathMeasure<2> svalues;
    PathMeasure<2> otherSvalues;
    double inverse; // of the paths' factor

    void setBegin(const CommonPlace& place, CurveCrossing& crossing) const {
        const MeasuredPlace m = measured(place, path, other);
        crossing.begin = {m.point.x * inverse, m.point.y * inverse, 0.0};
        crossing.sBegin = svalues.svalueAt(place.on, m.t);
        crossing.otherBegin = otherSvalues.svalueAt(place.onOther, m.otherT);
    }

    CurveCrossing crossingAt(const CommonPlace& place) const {
        CurveCrossing crossing;
        setBegin(place, crossing);
        crossing.end = crossing.begin;
        crossing.sEnd = crossing.sBegin;
        crossing.otherEnd = crossing.otherBegin;
        crossing.edge = static_cast<std::int64_t>(path.curveEdge(place.on));
        crossing.otherEdge = static_cast<std::int64_t>(other.curveEdge(place.onOther));
        return crossing;
    }

    CurveCrossing overlapAlong(const CommonStretch& stretch) const {
        CurveCrossing crossing = crossingAt(stretch.end);
        setBegin(stretch.begin, crossing);
        crossing.kind = CurveCrossing::Kind::overlap;
        crossing.edge = static_cast<std::int64_t>(path.curveEdge(stretch.edge));
        crossing.otherEdge = static_cast<std::int64_t>(other.curveEdge(stretch.otherEdge));
        return crossing;
    }
};

std::vector<CurveCrossing> crossingsOf(const CurveView& curve, const CurveView& other,
                                       double largest, const Progress& progress) {
    const CoordinateScale scale = CoordinateScale::into(kExactExponent, kExactExponent, largest);
    const PlanePath path(curve, scale.factor), otherPath(other, scale.factor);
    CrossingList list(path, otherPath);
    std::vector<CurveCrossing> crossings;
    if (!search(path, otherPath, progress, list)) {
        return crossings;
    }
    list.finish();
    if (!list.points().empty() || !list.stretches().empty()) {
        const Measures measures = {path, otherPath, PathMeasure<2>(path, curve),
                                   PathMeasure<2>(otherPath, other), scale.inverse};
        crossings.reserve(list.points().size() + list.stretches().size());
        for (const CommonPlace& place : list.points()) {
            crossings.push_back(measures.crossingAt(place));
        }
        for (const CommonStretch& stretch : list.stretches()) {
            crossings.push_back(measures.overlapAlong(stretch));
        }
        sortCrossings(crossings);
    }
    if (progress) {
        progress(1.0);
    }
    return crossings;
}

} // namespace

std::vector<CurveCrossing> findCrossings(const CurveView& curve, const CurveView& other,
                                         const Progress& progress) {
    const CrossingArguments arguments("findCrossings");
    const double largest =
        std::max(arguments.largestInPlane(curve), arguments.largestInPlane(other));
    return crossingsOf(curve, other, largest, progress);
}

std::vector<CurveCrossing> findCrossingsWithSegment(const CurveView& curve,
                                                    const TripletBase<double>& a,
                                                    const TripletBase<double>& b) {
    const CrossingArguments arguments("findCrossingsWithSegment");
    const double largest =
        std::max({arguments.largestInPlane(curve), arguments.largestInPlane(a, "Point a"),
                  arguments.largestInPlane(b, "Point b")});
    const TripletBase<double> ends[] = {{a.x, a.y, 0.0}, {b.x, b.y, 0.0}};
    const double fractions[] = {0.0, 1.0};
    const CurveView segment(TripletView<const double>(ends, 2),
                            ScalarView<const double>(fractions, 2));
    return crossingsOf(curve, segment, largest, {});
}

} // namespace qel
