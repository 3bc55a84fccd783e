// Pieces of a curve, cut out by parameter or by index.

#include <memory>
#include <utility>

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/GeosLine.h"
#include "support/Limit.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/linearref/LengthIndexedLine.h>
#endif

namespace qel_benchmark {
namespace {

void append(Points& points, Values& svalues, const Point& p, double s) {
    points.push_back(p);
    svalues.push_back(s);
}

void cutByLoop(const Points& p, const Values& s, double start, double end, Points& points,
               Values& svalues) {
    const double a = std::max(s.front(), std::min(start, s.back()));
    const double b = std::max(s.front(), std::min(end, s.back()));
    std::size_t lowA = 0;
    std::size_t highA = 0;
    std::size_t lowB = 0;
    std::size_t highB = 0;
    const Point first = plain::interpolated(p, s, a, lowA, highA);
    const Point last = plain::interpolated(p, s, b, lowB, highB);
    points.clear();
    svalues.clear();
    points.reserve(p.size() + 2);
    svalues.reserve(p.size() + 2);
    if (highA > lowB || first != p[highA]) {
        append(points, svalues, first, a);
    }
    for (std::size_t i = highA; i <= lowB; ++i) {
        append(points, svalues, p[i], s[i]);
    }
    append(points, svalues, last, b);
    if (points.size() >= 3 && points.back() == points[points.size() - 2]) {
        points.pop_back();
        svalues.pop_back();
    }
}

// The library's cut(points, svalues) beside the loop from one parameter to the other.
template <typename Cut>
void compareCuts(Row& row, const CurveInput& in, double start, double end, const Cut& cut) {
    Points a;
    Points b;
    Values s;
    Values t;
    row.add(kLibrary, [&] { cut(a, s); });
    row.add(kPlain, [&] { cutByLoop(in.points, in.svalues(), start, end, b, t); });
#if defined(QEL_BENCHMARK_HAS_GEOS)
    std::unique_ptr<geos::geom::LineString> line;
    if (in.isFinite()) {
        line = geosLine(in.points);
        row.add("GEOS", [&] {
            const geos::linearref::LengthIndexedLine indexed(line.get());
            const double length = line->getLength();
            keep(indexed.extractLine(start * length, end * length).get());
        });
    }
#endif
    addCopy(row, static_cast<std::size_t>(2.0 * (end - start) * static_cast<double>(in.bytes())));
    row.measure();
    row.expectSame(sameBits(a, b) && sameBits(s, t));
}

void cut(Row& row, const CurveInput& in) {
    compareCuts(row, in, 0.25, 0.75,
                [&](Points& points, Values& s) { in.curve.getCurve(0.25, 0.75, points, s); });
}

void cutBegin(Row& row, const CurveInput& in) {
    compareCuts(row, in, 0.0, 0.9,
                [&](Points& points, Values& s) { in.curve.getCurveBegin(0.9, points, s); });
}

void cutEnd(Row& row, const CurveInput& in) {
    compareCuts(row, in, 0.1, 1.0,
                [&](Points& points, Values& s) { in.curve.getCurveEnd(0.1, points, s); });
}

// -- By index ----

using Steps = Points::difference_type;

// The curve read as a closed loop, split at a quarter and at three quarters.
void arcs(Row& row, const CurveInput& in) {
    const std::size_t first = in.n / 4;
    const std::size_t second = std::max(first + 1, in.n / 4 * 3);
    Points forward;
    Points backward;
    row.add(kLibrary, [&] { in.curve.getCurve(first, second, forward, backward); });
    Points a;
    Points b;
    row.add(kPlain, [&] {
        const auto at = [&](std::size_t i) { return in.points.begin() + static_cast<Steps>(i); };
        a.assign(at(first), at(second + 1));
        b.assign(at(second), in.points.end());
        b.insert(b.end(), in.points.begin(), at(first + 1));
    });
    row.measure();
    if (in.n > 2) { // of two points the halves are special
        row.expectSame(sameBits(a, forward) && sameBits(b, backward));
    }
}

void loopFrom(Row& row, const CurveInput& in) {
    const std::size_t index = in.n / 3;
    Points a;
    Points b;
    row.add(kLibrary, [&] { in.curve.getCurve(index, a); });
    row.add(kPlain, [&] {
        const auto start = in.points.begin() + static_cast<Steps>(index);
        b.assign(start, in.points.end());
        b.insert(b.end(), in.points.begin(), start + 1);
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void range(Row& row, const CurveInput& in) {
    const std::size_t first = in.n / 4;
    const std::size_t second = in.n / 4 * 3;
    Points a;
    Points b;
    row.add(kLibrary, [&] { in.curve.getCurve(first, second, a); });
    row.add(kPlain, [&] {
        b.assign(in.points.begin() + static_cast<Steps>(first),
                 in.points.begin() + static_cast<Steps>(second) + 1);
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

// -- Ends ----

// The s-value nearest the middle, then outwards while s-values grow.
void cleanEndsByLoop(Points& points, Values& s, double start, double end) {
    const double middle = (start + end) * 0.5;
    std::size_t c = 0;
    for (std::size_t i = 1; i < s.size(); ++i) {
        c = (s[i] - middle) * (s[i] - middle) < (s[c] - middle) * (s[c] - middle) ? i : c;
    }
    std::size_t high = c;
    for (std::size_t j = c + 1; j < s.size(); ++j) {
        high = s[j] > s[j - 1] ? j : high;
    }
    std::size_t low = c;
    for (std::size_t j = c; j-- > 0;) {
        low = s[j + 1] > s[j] ? j : low;
    }
    points.erase(points.begin() + static_cast<Steps>(high) + 1, points.end());
    points.erase(points.begin(), points.begin() + static_cast<Steps>(low));
    s.erase(s.begin() + static_cast<Steps>(high) + 1, s.end());
    s.erase(s.begin(), s.begin() + static_cast<Steps>(low));
    s.front() = std::min(s.front(), start);
    s.back() = std::max(s.back(), end);
}

void cleanEnds(Row& row, const CurveInput& in) {
    using Cut = std::pair<Points, Values>;
    const Cut original(in.points, in.svalues());
    const std::size_t bytes = in.bytes();
    row.addOnCopies(kLibrary, original, bytes,
                    [&](Cut& c) { in.curve.getCurveCleanEnds(c.first, c.second, 0.1, 0.9); });
    row.addOnCopies(kPlain, original, bytes,
                    [&](Cut& c) { cleanEndsByLoop(c.first, c.second, 0.1, 0.9); });
    row.measure();
    Cut a = original;
    Cut b = original;
    in.curve.getCurveCleanEnds(a.first, a.second, 0.1, 0.9);
    cleanEndsByLoop(b.first, b.second, 0.1, 0.9);
    row.expectSame(sameBits(a.first, b.first) && sameBits(a.second, b.second));
}

const bool registered = addCurveWork("cut", cut) && addCurveWork("cut_begin", cutBegin) &&
                        addCurveWork("cut_end", cutEnd) && addCurveWork("arcs", arcs) &&
                        addCurveWork("loop_from", loopFrom) && addCurveWork("range", range) &&
                        addCurveWork("clean_ends", cleanEnds);

} // namespace
} // namespace qel_benchmark
