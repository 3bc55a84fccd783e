// Thinning a curve to its k most telling points, and the measures to choose them by.
//
// The plain loop is the greedy refinement with a queue of chords: n log n on most curves, n k where
// chords split unevenly. The peer is given the tolerance that leaves as many points as asked, or
// the next more; it computes something else (Ramer-Douglas-Peucker).

#include <queue>
#include <tuple>

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"

namespace qel_benchmark {
namespace {

struct Chord {
    std::size_t order; // of being made: of equal distances the earliest is split first
    std::size_t first;
    std::size_t second;
    plain::Deviation farthest;
};

struct LessTelling {
    bool operator()(const Chord& a, const Chord& b) const {
        return std::make_tuple(a.farthest.distance, b.order) <
               std::make_tuple(b.farthest.distance, a.order);
    }
};

// The indices kept, in increasing order, of more than three to keep.
std::vector<int> keptByLoop(const CurveInput& in, std::size_t count) {
    const auto chord = [&](std::size_t order, std::size_t i, std::size_t j) {
        return Chord{order, i, j, plain::normalDistance(in.points, in.svalues(), i, j)};
    };
    std::priority_queue<Chord, std::vector<Chord>, LessTelling> chords;
    const auto offer = [&](const Chord& c) {
        if (!c.farthest.done) {
            chords.push(c);
        }
    };
    offer(chord(0, 0, in.n - 1));
    std::vector<int> ids = {0, static_cast<int>(in.n) - 1};
    std::size_t made = 1;
    while (!chords.empty()) {
        const Chord c = chords.top();
        chords.pop();
        ids.push_back(static_cast<int>(c.farthest.index));
        if (ids.size() == count || !(c.farthest.distance > 0.0)) {
            break;
        }
        offer(chord(c.order, c.first, c.farthest.index));
        offer(chord(made++, c.farthest.index, c.second));
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

void thinByLoop(const CurveInput& in, std::size_t count, std::vector<int>& ids) {
    ids = keptByLoop(in, count);
    Points points;
    points.reserve(ids.size());
    for (const int id : ids) {
        points.push_back(in.points[static_cast<std::size_t>(id)]);
    }
    Values s;
    keep(plain::arcValues(points, s));
}

#if defined(QEL_BENCHMARK_HAS_BOOST)
constexpr int kToleranceSteps = 12;

// The largest tolerance tried that leaves k points or more, by halving the range of its logarithm.
double toleranceFor(const BoostLine& line, std::size_t k, double extent) {
    double low = 1e-17 * extent;
    double high = extent;
    BoostLine out;
    for (int step = 0; step < kToleranceSteps; ++step) {
        const double middle = std::sqrt(low) * std::sqrt(high);
        out.clear();
        boost::geometry::simplify(line, out, middle);
        (out.size() >= k ? low : high) = middle;
    }
    return low;
}
#endif

void thinTo(Row& row, const CurveInput& in, std::size_t count) {
    if (count < 4) {
        return;
    }
    std::vector<int> a;
    std::vector<int> b;
    row.addOnCopies(kLibrary, in.curve, in.bytes(), [&](ParametricCurve& curve) {
        curve.optimizeByNormalDistance(static_cast<int>(count), a, 0.0);
    });
    row.add(kPlain, [&] { thinByLoop(in, count, b); });
#if defined(QEL_BENCHMARK_HAS_BOOST)
    BoostLine line;
    BoostLine out;
    double tolerance = 0.0;
    if (in.isFinite() && row.wants(kBoost, kToleranceSteps)) {
        line = boostLine(in.points);
        tolerance = toleranceFor(line, count, qel_test::extentOf(in.points));
        row.add(kBoost, [&] {
            out.clear();
            boost::geometry::simplify(line, out, tolerance);
        });
    }
#endif
    row.measure();
    // A first chord that no vertex is far from leaves the two ends, without their indices.
    row.expectSame(a == b || b.size() == 2);
}

void thinToHalf(Row& row, const CurveInput& in) {
    thinTo(row, in, in.n / 2);
}

void thinToTenth(Row& row, const CurveInput& in) {
    thinTo(row, in, in.n / 10);
}

void thinToHundred(Row& row, const CurveInput& in) {
    if (in.n >= 1000) { // else the same as a tenth, or more than there are
        thinTo(row, in, 100);
    }
}

// The farthest that the curve is from the polyline through every tenth of its points.
void maximumDeviation(Row& row, const CurveInput& in) {
    Values chosen;
    for (std::size_t i = 0; i < in.n; i += 10) {
        chosen.push_back(in.svalues()[i]);
    }
    chosen.push_back(1.0);
    double a = 0.0;
    double b = 0.0;
    row.add(kLibrary, [&] { a = in.curve.getMaximumNormalDistance(chosen); });
    row.add(kPlain, [&] {
        Values all(in.svalues());
        all.insert(all.end(), chosen.begin(), chosen.end());
        std::sort(all.begin(), all.end());
        all.erase(std::unique(all.begin(), all.end()), all.end());
        plain::Walk walk(in.points, in.svalues());
        Points points;
        for (const double s : all) {
            points.push_back(walk.pointAt(s));
        }
        points.front() = in.points.front();
        points.back() = in.points.back();
        Values s;
        plain::arcValues(points, s);
        b = 0.0;
        for (std::size_t i = 1; i < chosen.size(); ++i) {
            b = std::max(b, plain::normalDistance(points, s, plain::closestToS(s, chosen[i - 1]),
                                                  plain::closestToS(s, chosen[i]))
                                .distance);
        }
    });
    // NaN among s-values has no place in a sorted list.
    if (in.isFinite()) {
        row.measure();
        row.expectSame(sameBits(a, b));
    }
}

// -- Corners ----

constexpr double kFullTurn = 6.283185307179586;

// The direction from vertex k to the first of four neighbours on one side that is not too close.
template <typename Neighbour>
double directionFrom(const Points& p, std::size_t k, const Neighbour& neighbour, Point& direction) {
    for (std::size_t d = 1; d <= 4; ++d) {
        std::size_t at = 0;
        if (!neighbour(d, at)) {
            break;
        }
        direction = p[at] - p[k];
        const double size = plain::length(direction);
        if (size > 100.0 * qel::NumericalUtils::spacing(size)) {
            return size;
        }
    }
    return 0.0;
}

double angleAt(const Points& p, std::size_t k, std::vector<bool>& mask) {
    Point backward;
    Point forward;
    const double sizeB = directionFrom(
        p, k,
        [&](std::size_t d, std::size_t& at) {
            at = k - d;
            return d <= k;
        },
        backward);
    std::size_t tried = k;
    const double sizeF = directionFrom(
        p, k,
        [&](std::size_t d, std::size_t& at) {
            if (d > 1) {
                mask[tried] = false;
            }
            at = tried = k + d;
            return k + d < p.size();
        },
        forward);
    if (sizeB == 0.0 || sizeF == 0.0) {
        return kFullTurn;
    }
    const double c = plain::dot(forward, backward) / (sizeF * sizeB);
    return std::acos(std::max(-1.0, std::min(1.0, c)));
}

void sharpestCorners(Row& row, const CurveInput& in) {
    if (in.n < 10) {
        return;
    }
    using Corner = std::pair<double, std::size_t>;
    Corner first;
    Corner second;
    row.add(kLibrary, [&] { in.curve.findTwoPointsWithMinAngle(0, in.n - 1, first, second); });
    std::vector<Corner> corners;
    row.add(kPlain, [&] {
        std::vector<bool> mask(in.n, true);
        corners.clear();
        for (std::size_t k = 1; k + 1 < in.n; ++k) {
            corners.emplace_back(mask[k] ? angleAt(in.points, k, mask) : kFullTurn, k);
        }
        std::partial_sort(corners.begin(), corners.begin() + 2, corners.end());
    });
    row.measure();
    if (row.canCompare() && in.isFinite()) {
        const auto [low, high] = std::minmax(corners[0].second, corners[1].second);
        row.expectSame(first.second == high && second.second == low);
    }
}

const bool registered = addCurveWork("thin_to_half", thinToHalf) &&
                        addCurveWork("thin_to_tenth", thinToTenth) &&
                        addCurveWork("thin_to_hundred", thinToHundred) &&
                        addCurveWork("maximum_deviation", maximumDeviation) &&
                        addCurveWork("sharpest_corners", sharpestCorners);

} // namespace
} // namespace qel_benchmark
