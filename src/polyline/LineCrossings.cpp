// Crossings of a curve with what has two sides: a line in the plane, or a plane in space. One pass
// over the vertices.

#include <algorithm>
#include <vector>

#include <qel/CurveCrossings.h>

#include "polyline/CoordinateScale.h"
#include "polyline/CrossingArguments.h"
#include "polyline/CurvePath.h"
#include "polyline/PathMeasure.h"

namespace qel {
namespace {

// A common point if both ends are the same place, else a stretch between vertices.
struct CommonPart {
    PathPlace begin;
    PathPlace end;

    bool isStretch() const { return begin != end; }
};

// What a path has in common with a line or a plane, from the side of each vertex, 0 for on it.
// @param isTurn  (i) true if the path turns back at vertex i while on it, which ends a stretch
template <typename IsTurn>
std::vector<CommonPart> findCommonParts(const std::vector<int>& sides, const IsTurn& isTurn) {
    std::vector<CommonPart> parts;
    const std::size_t last = sides.size() - 1;
    const auto continues = [&](std::size_t i) { return i < last && sides[i + 1] == 0; };
    for (std::size_t i = 0; i <= last;) {
        if (sides[i] != 0) {
            if (i < last && sides[i] == -sides[i + 1]) {
                parts.push_back({PathPlace::insideEdge(i), PathPlace::insideEdge(i)});
            }
            ++i;
            continue;
        }
        std::size_t end = i;
        while (continues(end) && (end == i || !isTurn(end))) {
            ++end;
        }
        parts.push_back({PathPlace::vertex(i), PathPlace::vertex(end)});
        i = continues(end) ? end : end + 1;
    }
    return parts;
}

// The closing vertex counts once, and not beside a stretch that ends there.
void mergeAtClosingVertex(std::size_t last, std::vector<CommonPart>& parts) {
    if (parts.size() < 2 || parts.front().begin != PathPlace::vertex(0) ||
        parts.back().end != PathPlace::vertex(last)) {
        return;
    }
    if (!parts.back().isStretch()) {
        parts.pop_back();
    } else if (!parts.front().isStretch()) {
        parts.erase(parts.begin());
    }
}

int signOf(double value) {
    return (value > 0.0) - (value < 0.0);
}

struct MeasuredPlace {
    TripletBase<double> point;
    double t = 0.0;     // along the edge, for a place inside one
    double other = 0.0; // along the line
};

// @param Cut  a path, what cuts it, and the sides of the vertices
template <typename Cut>
std::vector<CurveCrossing> crossingsOf(const CurveView& curve, const Cut& cut) {
    const auto& path = cut.path();
    const auto isTurn = [&](std::size_t i) { return cut.isTurn(i); };
    std::vector<CommonPart> parts = findCommonParts(cut.sides(), isTurn);
    if (path.isClosed()) {
        mergeAtClosingVertex(path.edges(), parts);
    }
    std::vector<CurveCrossing> crossings;
    if (parts.empty()) {
        return crossings;
    }
    const PathMeasure svalues(path, curve);
    crossings.reserve(parts.size());
    for (const CommonPart& part : parts) {
        const MeasuredPlace begin = cut.measure(part.begin), end = cut.measure(part.end);
        CurveCrossing crossing;
        crossing.kind =
            part.isStretch() ? CurveCrossing::Kind::overlap : CurveCrossing::Kind::point;
        crossing.begin = begin.point;
        crossing.end = end.point;
        crossing.sBegin = svalues.svalueAt(part.begin, begin.t);
        crossing.sEnd = svalues.svalueAt(part.end, end.t);
        crossing.edge = static_cast<std::int64_t>(
            part.isStretch() ? path.curveEdge(part.begin.index()) : path.curveEdge(part.begin));
        crossing.otherBegin = begin.other;
        crossing.otherEnd = end.other;
        crossings.push_back(crossing);
    }
    sortCrossings(crossings);
    return crossings;
}

// -- Line ----

class LineCut {
public:
    // The line through a and b.
    LineCut(const CurveView& curve, const TripletBase<double>& a, const TripletBase<double>& b,
            const CoordinateScale& scale)
        : path_(curve, scale.factor),
          a_{a.x * scale.factor, a.y * scale.factor},
          b_{b.x * scale.factor, b.y * scale.factor},
          inverse_(scale.inverse) {}

    const PlanePath& path() const { return path_; }

    std::vector<int> sides() const {
        std::vector<int> sides(path_.isPoint() ? 1 : path_.edges() + 1);
        for (std::size_t i = 0; i < sides.size(); ++i) {
            sides[i] = sideOf(a_, b_, path_[i]);
        }
        return sides;
    }

    // Of vertices on the line: along x, unless the line is upright.
    bool isTurn(std::size_t i) const {
        const PlanePoint before = path_[i - 1], here = path_[i], behind = path_[i + 1];
        return before.x != here.x ? (before.x < here.x) != (here.x < behind.x)
                                  : (before.y < here.y) != (here.y < behind.y);
    }

    MeasuredPlace measure(PathPlace place) const {
        PlanePoint p = path_[place.index()];
        double t = 0.0;
        if (!place.isVertex()) {
            const PlanePoint next = path_[place.index() + 1];
            const double side = orientation(a_, b_, p);
            t = side / (side - orientation(a_, b_, next));
            p = {p.x + (next.x - p.x) * t, p.y + (next.y - p.y) * t};
        }
        return {{p.x * inverse_, p.y * inverse_, 0.0}, t, fractionAlong(a_, b_, p)};
    }

private:
    PlanePath path_;
    PlanePoint a_;
    PlanePoint b_;
    double inverse_;
};

// -- Plane ----

class PlaneCut {
public:
    // @param normal  such that its squared length neither overflows nor underflows
    PlaneCut(const CurveView& curve, const TripletBase<double>& point,
             const TripletBase<double>& normal, const CoordinateScale& scale)
        : path_(curve, scale.factor), inverse_(scale.inverse) {
        const TripletBase<double> origin = point * scale.factor;
        for (std::size_t i = 0; i < (path_.isPoint() ? 1 : path_.edges() + 1); ++i) {
            heights_.push_back((vertex(i) - origin).dot(normal));
        }
    }

    const SpacePath& path() const { return path_; }

    std::vector<int> sides() const {
        std::vector<int> sides(heights_.size());
        std::transform(heights_.begin(), heights_.end(), sides.begin(), signOf);
        return sides;
    }

    // In a plane a stretch may turn as it likes.
    bool isTurn(std::size_t /*i*/) const { return false; }

    MeasuredPlace measure(PathPlace place) const {
        const std::size_t i = place.index();
        if (place.isVertex()) {
            return {vertex(i) * inverse_};
        }
        const double t = heights_[i] / (heights_[i] - heights_[i + 1]);
        return {(vertex(i) + (vertex(i + 1) - vertex(i)) * t) * inverse_, t};
    }

private:
    TripletBase<double> vertex(std::size_t i) const {
        const VertexPointers v = path_.vertices().pointers();
        return {v.x[i], v.y[i], v.z[i]};
    }

    SpacePath path_;
    double inverse_;
    std::vector<double> heights_; // above the plane, times the normal's length
};

} // namespace

std::vector<CurveCrossing> findCrossingsWithLine(const CurveView& curve,
                                                 const TripletBase<double>& a,
                                                 const TripletBase<double>& b) {
    const CrossingArguments arguments("findCrossingsWithLine");
    const double largest =
        std::max({arguments.largestInPlane(curve), arguments.largestInPlane(a, "Point a"),
                  arguments.largestInPlane(b, "Point b")});
    if (a.x == b.x && a.y == b.y) {
        arguments.refuse("Points a and b are equal; there is no line through them.");
    }
    const auto scale = CoordinateScale::into(kExactExponent, kExactExponent, largest);
    return crossingsOf(curve, LineCut(curve, a, b, scale));
}

std::vector<CurveCrossing> findCrossingsWithPlane(const CurveView& curve,
                                                  const TripletBase<double>& point,
                                                  const TripletBase<double>& normal) {
    const CrossingArguments arguments("findCrossingsWithPlane");
    const double largest = std::max(arguments.largestInSpace(curve),
                                    arguments.largestInSpace(point, "The point of the plane"));
    const double length = arguments.largestInSpace(normal, "The normal of the plane");
    if (length == 0.0) {
        arguments.refuse("The normal of the plane has no length.");
    }
    // Products of coordinates and normal then neither overflow nor underflow.
    const auto scale = CoordinateScale::into(kExactExponent, kExactExponent, largest);
    const double unit = CoordinateScale::into(0, 0, length).factor;
    return crossingsOf(curve, PlaneCut(curve, point, normal * unit, scale));
}

} // namespace qel
