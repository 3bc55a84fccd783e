// Pieces: copies of a part of the curve between two parameters or two point indices.
//
// A piece between parameters keeps the stored points in between with their stored s-values; only
// its two ends are evaluated. s is never recomputed here.

#include <qel/ParametricCurve.h>

#include <algorithm>

#include "curve/Conversions.h"
#include "curve/Evaluation.h"
#include "curve/Validation.h"

namespace qel {
namespace {

// A place at which a piece starts or ends.
struct Cut {
    double s;
    BracketedPoint at;
};

// A NaN falls on the start: the comparisons leave it until the last one drops it.
double clampedTo(const std::vector<double>& svalues, double s) {
    return std::max(svalues.front(), std::min(s, svalues.back()));
}

void checkRange(double start, double end) {
    if (start == end) {
        throw argumentFault("getCurve", "Start and end parametric value are identical.");
    }
    if (start > end) {
        throw argumentFault("getCurve", "Parametric start value greater than end value.");
    }
}

void checkIndex(std::size_t index, std::size_t size) {
    if (index >= size) {
        throw argumentFault("getCurve", "Requested index out of bounds =%1", index);
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

Cut cutAt(const Points& points, const std::vector<double>& svalues, double s) {
    return {s, interpolateOnS(points, svalues, s)};
}

// The start, the stored points behind it and before the end (none if these are not in order), and
// the end.
void assemble(const Points& storedPoints, const std::vector<double>& storedSvalues,
              const Cut& start, bool withStart, const Cut& end, Points& points,
              std::vector<double>& svalues) {
    const std::size_t first = start.at.bracket.hi;
    const std::size_t last = end.at.bracket.lo;
    const std::size_t inner = first > last ? 0 : last - first + 1;
    points.resize(inner + (withStart ? 2 : 1));
    svalues.resize(points.size());
    Point* point = points.data();
    double* s = svalues.data();
    if (withStart) {
        *point++ = start.at.point;
        *s++ = start.s;
    }
    if (inner > 0) {
        point = copyRange(storedPoints, first, last, point);
        s = copyRange(storedSvalues, first, last, s);
    }
    *point = end.at.point;
    *s = end.s;
    dropTrailingDuplicate(points, svalues);
}

// Index of the first of the s-values nearest to one. A NaN is nearest only as the first.
std::size_t nearestTo(double middle, const std::vector<double>& svalues) {
    const auto isNearer = [=](double a, double b) {
        return (a - middle) * (a - middle) < (b - middle) * (b - middle);
    };
    const auto nearest = std::min_element(svalues.begin(), svalues.end(), isNearer);
    return static_cast<std::size_t>(nearest - svalues.begin());
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
        throw argumentFault("getCurveCleanEnds", "Start and end parametric value are identical.");
    }
    if (sStart > sEnd) { // with a blank before the full stop, unlike the pieces
        throw argumentFault("getCurveCleanEnds", "Parametric start value greater than end value .");
    }
    if (points.size() != svalues.size()) {
        throw argumentFault("getCurveCleanEnds",
                            "Vectors of points and sValues must have the same size.");
    }
}

} // namespace

// -- Between parameters ----

void ParametricCurve::getCurve(double sStart, double sEnd, Points& points,
                               std::vector<double>& svalues) const {
    const double from = clampedTo(svalues_, sStart);
    const double to = clampedTo(svalues_, sEnd);
    checkRange(from, to);
    const Cut start = cutAt(points_, svalues_, from);
    const Cut end = cutAt(points_, svalues_, to);
    // A cut exactly on a stored point that follows does not repeat it.
    const std::size_t next = start.at.bracket.hi;
    const bool withStart = next > end.at.bracket.lo || start.at.point != points_[next];
    assemble(points_, svalues_, start, withStart, end, points, svalues);
}

void ParametricCurve::getCurveBegin(double s, Points& points, std::vector<double>& svalues) const {
    const double to = clampedTo(svalues_, s);
    const Cut start{svalues_.front(), {points_.front(), {0, 0}}};
    checkRange(start.s, to);
    // The first point is the first of the stored ones, once.
    assemble(points_, svalues_, start, false, cutAt(points_, svalues_, to), points, svalues);
}

void ParametricCurve::getCurveEnd(double s, Points& points, std::vector<double>& svalues) const {
    const std::size_t last = points_.size() - 1;
    const double from = clampedTo(svalues_, s);
    // The last point stands once as a stored one and once more as the end; the rule for trailing
    // duplicates takes it back where the piece has three points.
    const Cut end{svalues_.back(), {points_.back(), {last, last}}};
    checkRange(from, end.s);
    const Cut start = cutAt(points_, svalues_, from);
    const bool withStart = start.at.point != points_[start.at.bracket.hi];
    assemble(points_, svalues_, start, withStart, end, points, svalues);
}

void ParametricCurve::getCurve(double sStart, double sEnd, FloatPoints& points,
                               std::vector<double>& svalues) const {
    makeNarrowed(points, [&](Points& piece) { getCurve(sStart, sEnd, piece, svalues); });
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
    makeNarrowed(points, [&](Points& piece) { getCurveBegin(s, piece); });
}

void ParametricCurve::getCurveEnd(double s, Points& points) const {
    std::vector<double> svalues;
    getCurveEnd(s, points, svalues);
}

void ParametricCurve::getCurveEnd(double s, FloatPoints& points) const {
    makeNarrowed(points, [&](Points& piece) { getCurveEnd(s, piece); });
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
        throw argumentFault("getCurve", "First and second index must be different.");
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
        throw argumentFault("getCurve",
                            "Requested indicies out of bounds. First id=%1, Second id=%2", first,
                            second);
    }
    if (first > second) { // equal ones are a piece of one point
        throw argumentFault(
            "getCurve", "Second index must be greater than first index. First id=%1, Second id=%2",
            first, second);
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
    makeNarrowed(points, [&](Points& loop) { getCurve(index, loop); });
}

void ParametricCurve::getCurve(std::size_t first, std::size_t second, FloatPoints& points) const {
    makeNarrowed(points, [&](Points& piece) { getCurve(first, second, piece); });
}

// -- A caller's points ----

void ParametricCurve::getCurveCleanEnds(Points& points, std::vector<double>& svalues, double sStart,
                                        double sEnd) const {
    checkCleanEnds(points, svalues, sStart, sEnd);
    const std::size_t nearest = nearestTo((sStart + sEnd) * 0.5, svalues);
    // From the first rise of s before the middle to the last one behind it, whatever is between.
    std::size_t first = 0;
    while (first < nearest && !(svalues[first + 1] > svalues[first])) {
        ++first;
    }
    std::size_t last = svalues.size() - 1;
    while (last > nearest && !(svalues[last] > svalues[last - 1])) {
        --last;
    }
    if (first == last) {
        throw argumentFault("getCurveCleanEnds",
                            "Cleaning ends in the curve resulted in less than two points.");
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
