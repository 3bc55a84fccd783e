// Pieces: copies of a part of the curve between two parameters or two point indices.
//
// A piece between parameters keeps the stored points in between with their stored s-values; only
// its two ends are evaluated. s is never recomputed here.

#include <qel/ParametricCurve.h>

#include <algorithm>

#include "curve/Conversions.h"
#include "curve/Validation.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

// A place at which a piece starts or ends: its point and s, and the stored points around it.
struct Cut {
    Point point;
    double s;
    std::size_t lo;
    std::size_t hi;
};

// A NaN falls on the start: the comparisons leave it until the last one drops it.
double clampedTo(const std::vector<double>& svalues, double s) {
    return std::max(svalues.front(), std::min(s, svalues.back()));
}

void checkRange(double start, double end) {
    if (start == end) {
        throw internal::error("ParametricCurve", "getCurve",
                              "Start and end parametric value are identical.", argumentError);
    }
    if (start > end) {
        throw internal::error("ParametricCurve", "getCurve",
                              "Parametric start value greater than end value.", argumentError);
    }
}

void checkIndex(std::size_t index, std::size_t size) {
    if (index >= size) {
        SystemMsg message("Requested index out of bounds =%1");
        throw internal::error("ParametricCurve", "getCurve", message % index, argumentError);
    }
}

// Copies the elements first to last, both included, to a place; last is checked as an index is.
// Returns where the copy ends.
template <typename T>
T* copyRange(const std::vector<T>& from, std::size_t first, std::size_t last, T* to) {
    const T* const begin = &from[first];
    return std::copy(begin, &from[last] + 1, to); // one block, whatever was there before
}

// Drops a last point that repeats the one before. Of a piece of two points both stay, also when
// they are equal (ExtractionTest, KeepsTwoEqualPoints).
void dropTrailingDuplicate(Points& points, std::vector<double>& svalues) {
    const std::size_t n = points.size();
    if (n >= 3 && points[n - 1] == points[n - 2]) {
        points.pop_back();
        svalues.pop_back();
    }
}

// The start, the stored points from start.hi to end.lo (none if they are not in this order), and
// the end.
void assemble(const Points& storedPoints, const std::vector<double>& storedSvalues,
              const Cut& start, bool withStart, const Cut& end, Points& points,
              std::vector<double>& svalues) {
    const std::size_t inner = start.hi > end.lo ? 0 : end.lo - start.hi + 1;
    points.resize(inner + (withStart ? 2 : 1));
    svalues.resize(points.size());
    Point* point = points.data();
    double* s = svalues.data();
    if (withStart) {
        *point++ = start.point;
        *s++ = start.s;
    }
    if (inner > 0) {
        point = copyRange(storedPoints, start.hi, end.lo, point);
        s = copyRange(storedSvalues, start.hi, end.lo, s);
    }
    *point = end.point;
    *s = end.s;
    dropTrailingDuplicate(points, svalues);
}

// Index of the last s-value reached from the middle by a rise, and of the first from which s rises
// to it. Neither walk stops at a step without a rise.
std::size_t lastRise(const std::vector<double>& svalues, std::size_t middle) {
    std::size_t last = middle;
    for (std::size_t j = middle + 1; j < svalues.size(); ++j) {
        if (svalues[j] > svalues[j - 1]) {
            last = j;
        }
    }
    return last;
}

std::size_t firstRise(const std::vector<double>& svalues, std::size_t middle) {
    std::size_t first = middle;
    for (std::size_t j = middle; j-- > 0;) {
        if (svalues[j + 1] > svalues[j]) {
            first = j;
        }
    }
    return first;
}

template <typename T>
void keepOnly(std::vector<T>& values, std::size_t first, std::size_t last) {
    using Difference = typename std::vector<T>::difference_type;
    values.erase(values.begin() + static_cast<Difference>(last + 1), values.end());
    values.erase(values.begin(), values.begin() + static_cast<Difference>(first));
}

void checkCleanEnds(const Points& points, const std::vector<double>& svalues, double sStart,
                    double sEnd) {
    checkPoints(points);
    if (sStart == sEnd) {
        throw internal::error("ParametricCurve", "getCurveCleanEnds",
                              "Start and end parametric value are identical.", argumentError);
    }
    if (sStart > sEnd) { // with a blank before the full stop, unlike the pieces
        throw internal::error("ParametricCurve", "getCurveCleanEnds",
                              "Parametric start value greater than end value .", argumentError);
    }
    if (points.size() != svalues.size()) {
        throw internal::error("ParametricCurve", "getCurveCleanEnds",
                              "Vectors of points and sValues must have the same size.",
                              argumentError);
    }
}

} // namespace

// -- Between parameters ----

void ParametricCurve::getCurve(double sStart, double sEnd, Points& points,
                               std::vector<double>& svalues) const {
    Cut start{};
    Cut end{};
    start.s = clampedTo(svalues_, sStart);
    end.s = clampedTo(svalues_, sEnd);
    checkRange(start.s, end.s);
    start.point = interpolateOnS(start.s, start.lo, start.hi);
    end.point = interpolateOnS(end.s, end.lo, end.hi);
    // A cut exactly on a stored point that follows does not repeat it.
    const bool withStart = start.hi > end.lo || start.point != points_[start.hi];
    assemble(points_, svalues_, start, withStart, end, points, svalues);
}

void ParametricCurve::getCurveBegin(double s, Points& points, std::vector<double>& svalues) const {
    const Cut start{points_.front(), svalues_.front(), 0, 0};
    Cut end{};
    end.s = clampedTo(svalues_, s);
    checkRange(start.s, end.s);
    end.point = interpolateOnS(end.s, end.lo, end.hi);
    // The first point is the first of the stored ones, once.
    assemble(points_, svalues_, start, false, end, points, svalues);
}

void ParametricCurve::getCurveEnd(double s, Points& points, std::vector<double>& svalues) const {
    const std::size_t last = points_.size() - 1;
    Cut start{};
    start.s = clampedTo(svalues_, s);
    // The last point stands once as a stored one and once more as the end; the rule for trailing
    // duplicates takes it back where the piece has three points.
    const Cut end{points_.back(), svalues_.back(), last, last};
    checkRange(start.s, end.s);
    start.point = interpolateOnS(start.s, start.lo, start.hi);
    assemble(points_, svalues_, start, start.point != points_[start.hi], end, points, svalues);
}

void ParametricCurve::getCurve(double sStart, double sEnd, FloatPoints& points,
                               std::vector<double>& svalues) const {
    Points piece;
    getCurve(sStart, sEnd, piece, svalues);
    points = narrowed(piece);
}

void ParametricCurve::getCurve(double sStart, double sEnd, Points& points) const {
    std::vector<double> svalues;
    getCurve(sStart, sEnd, points, svalues);
}

void ParametricCurve::getCurve(double sStart, double sEnd, FloatPoints& points) const {
    std::vector<double> svalues;
    getCurve(sStart, sEnd, points, svalues);
}

void ParametricCurve::getCurveBegin(double s, Points& points) const {
    std::vector<double> svalues;
    getCurveBegin(s, points, svalues);
}

void ParametricCurve::getCurveBegin(double s, FloatPoints& points) const {
    Points piece;
    getCurveBegin(s, piece);
    points = narrowed(piece);
}

void ParametricCurve::getCurveEnd(double s, Points& points) const {
    std::vector<double> svalues;
    getCurveEnd(s, points, svalues);
}

void ParametricCurve::getCurveEnd(double s, FloatPoints& points) const {
    Points piece;
    getCurveEnd(s, piece);
    points = narrowed(piece);
}

// -- Between indices ----

namespace {

// The points first to second in the direction of increasing index, past the end if need be. From
// the last point to the first that is the closing segment alone.
void copyArc(const Points& loop, std::size_t first, std::size_t second, Points& arc) {
    if (first < second) {
        arc.resize(second - first + 1);
        copyRange(loop, first, second, arc.data());
        return;
    }
    const std::size_t last = loop.size() - 1;
    arc.resize(last - first + 1 + second + 1);
    copyRange(loop, 0, second, copyRange(loop, first, last, arc.data()));
}

} // namespace

void ParametricCurve::getCurve(std::size_t first, std::size_t second, Points& forward,
                               Points& backward) const {
    checkIndex(first, points_.size());
    checkIndex(second, points_.size());
    if (first == second) {
        throw internal::error("ParametricCurve", "getCurve",
                              "First and second index must be different.", argumentError);
    }
    copyArc(points_, first, second, forward);
    copyArc(points_, second, first, backward);
}

void ParametricCurve::getCurve(std::size_t index, Points& points) const {
    checkIndex(index, points_.size());
    copyArc(points_, index, index, points);
}

void ParametricCurve::getCurve(std::size_t first, std::size_t second, Points& points) const {
    if (first >= points_.size() || second >= points_.size()) {
        SystemMsg message("Requested indicies out of bounds. First id=%1, Second id=%2");
        throw internal::error("ParametricCurve", "getCurve", message % first % second,
                              argumentError);
    }
    if (first > second) { // equal ones are a piece of one point
        SystemMsg message("Second index must be greater than first index. First id=%1, "
                          "Second id=%2");
        throw internal::error("ParametricCurve", "getCurve", message % first % second,
                              argumentError);
    }
    points.resize(second - first + 1);
    copyRange(points_, first, second, points.data());
}

void ParametricCurve::getCurve(std::size_t first, std::size_t second, FloatPoints& forward,
                               FloatPoints& backward) const {
    Points forwardArc;
    Points backwardArc;
    getCurve(first, second, forwardArc, backwardArc);
    forward = narrowed(forwardArc);
    backward = narrowed(backwardArc);
}

void ParametricCurve::getCurve(std::size_t index, FloatPoints& points) const {
    Points loop;
    getCurve(index, loop);
    points = narrowed(loop);
}

void ParametricCurve::getCurve(std::size_t first, std::size_t second, FloatPoints& points) const {
    Points piece;
    getCurve(first, second, piece);
    points = narrowed(piece);
}

// -- A caller's points ----

void ParametricCurve::getCurveCleanEnds(Points& points, std::vector<double>& svalues, double sStart,
                                        double sEnd) const {
    checkCleanEnds(points, svalues, sStart, sEnd);
    ParametricCurve line; // along x, a vertex at every s-value
    line.setPointsX(svalues);
    const Point middle((sStart + sEnd) * 0.5, 0.0, 0.0);
    const auto nearest = static_cast<std::size_t>(line.getClosestPoint(middle));
    const std::size_t first = firstRise(svalues, nearest);
    const std::size_t last = lastRise(svalues, nearest);
    if (first == last) {
        throw internal::error("ParametricCurve", "getCurveCleanEnds",
                              "Cleaning ends in the curve resulted in less than two points.",
                              argumentError);
    }
    keepOnly(points, first, last);
    keepOnly(svalues, first, last);
    // The ends are widened to the range, never narrowed.
    if (svalues.front() > sStart) {
        svalues.front() = sStart;
    }
    if (sEnd > svalues.back()) {
        svalues.back() = sEnd;
    }
}

void ParametricCurve::getCurveCleanEnds(FloatPoints& points, std::vector<double>& svalues,
                                        double sStart, double sEnd) const {
    Points wide = widened(points);
    getCurveCleanEnds(wide, svalues, sStart, sEnd);
    // No more points than there were: nothing can fail any more.
    points.resize(wide.size());
    std::transform(wide.begin(), wide.end(), points.begin(),
                   [](const Point& p) { return FloatPoint(p); });
}

} // namespace qel
