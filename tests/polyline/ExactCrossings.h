#ifndef QEL_TESTS_POLYLINE_EXACTCROSSINGS_H
#define QEL_TESTS_POLYLINE_EXACTCROSSINGS_H

// The reference implementation of findCrossings for coordinates that are small integers: every edge
// with every edge, in rational numbers.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <tuple>
#include <vector>

#include <qel/TripletBase.h>

namespace qel_test {

__extension__ typedef __int128 WideInteger;

struct Rational {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1; // positive

    static Rational of(std::int64_t n, std::int64_t d) {
        const std::int64_t divisor = std::gcd(n, d) * (d < 0 ? -1 : 1);
        return {n / divisor, d / divisor};
    }
    double value() const {
        return static_cast<double>(static_cast<long double>(numerator) / denominator);
    }
    friend bool operator==(const Rational& a, const Rational& b) {
        return a.numerator == b.numerator && a.denominator == b.denominator;
    }
    friend bool operator<(const Rational& a, const Rational& b) {
        return static_cast<WideInteger>(a.numerator) * b.denominator <
               static_cast<WideInteger>(b.numerator) * a.denominator;
    }
};

struct LatticePoint {
    std::int64_t x;
    std::int64_t y;
    friend bool operator==(const LatticePoint& a, const LatticePoint& b) {
        return a.x == b.x && a.y == b.y;
    }
};
using LatticeCurve = std::vector<LatticePoint>;

// A place on a curve: the index of the vertex before it and the fraction of the edge behind that.
// Equal vertices that follow each other have the index of the first.
struct ExactPlace {
    std::size_t vertex = 0;
    Rational t;
    double svalue() const { return static_cast<double>(vertex) + t.value(); }
    friend bool operator==(const ExactPlace& a, const ExactPlace& b) {
        return a.vertex == b.vertex && a.t == b.t;
    }
    friend bool operator<(const ExactPlace& a, const ExactPlace& b) {
        return std::tie(a.vertex, a.t) < std::tie(b.vertex, b.t);
    }
};

struct ExactCrossing {
    ExactPlace begin, otherBegin;
    ExactPlace end, otherEnd; // the same for a point
    bool isOverlap = false;
    Rational x, y; // of begin

    bool isOpposed() const { return otherEnd < otherBegin; }
    friend bool operator<(const ExactCrossing& a, const ExactCrossing& b) {
        return std::tie(a.begin, a.otherBegin, a.end, a.otherEnd) <
               std::tie(b.begin, b.otherBegin, b.end, b.otherEnd);
    }
};

class ExactCrossings {
public:
    ExactCrossings(const LatticeCurve& a, const LatticeCurve& b) : a_(a), b_(b) {
        for (std::size_t i = 0; i + 1 < a.size(); ++i) {
            for (std::size_t j = 0; j + 1 < b.size(); ++j) {
                takePair(i, j);
            }
        }
        dropPointsOnOverlaps();
        while (joinTwo()) {
        }
        all_ = overlaps_;
        all_.insert(all_.end(), points_.begin(), points_.end());
        std::sort(all_.begin(), all_.end());
    }

    const std::vector<ExactCrossing>& all() const { return all_; }

private:
    static std::int64_t cross(const LatticePoint& o, const LatticePoint& p, const LatticePoint& q) {
        return (p.x - o.x) * (q.y - o.y) - (p.y - o.y) * (q.x - o.x);
    }

    // A place at t of edge i, of a point of the plane.
    static ExactPlace place(const LatticeCurve& curve, std::size_t i, Rational t) {
        if (t == Rational{1, 1}) {
            ++i;
            t = {0, 1};
        }
        while (t == Rational{0, 1} && i > 0 && curve[i - 1] == curve[i]) {
            --i;
        }
        return {i, t};
    }

    // The closing vertex has the name of the first.
    static ExactPlace named(const LatticeCurve& curve, const ExactPlace& p) {
        const bool isLast = p.t == Rational{0, 1} && curve[p.vertex] == curve.front() &&
                            curve.front() == curve.back() &&
                            place(curve, curve.size() - 1, {0, 1}) == p;
        return isLast ? ExactPlace() : p;
    }

    void addPoint(std::size_t i, Rational t, std::size_t j, Rational u) {
        ExactCrossing c;
        c.begin = c.end = named(a_, place(a_, i, t));
        c.otherBegin = c.otherEnd = named(b_, place(b_, j, u));
        setCoordinates(i, t, c);
        const auto isSame = [&](const ExactCrossing& o) { return !(o < c) && !(c < o); };
        if (std::none_of(points_.begin(), points_.end(), isSame)) {
            points_.push_back(c);
        }
    }

    void setCoordinates(std::size_t i, const Rational& t, ExactCrossing& c) const {
        const LatticePoint p = a_[i], q = a_[i + 1];
        c.x = Rational::of(p.x * t.denominator + (q.x - p.x) * t.numerator, t.denominator);
        c.y = Rational::of(p.y * t.denominator + (q.y - p.y) * t.numerator, t.denominator);
    }

    static bool isNoEdge(const LatticeCurve& curve, std::size_t i) {
        const bool isPoint = std::all_of(curve.begin(), curve.end(),
                                         [&](const LatticePoint& p) { return p == curve[0]; });
        return curve[i] == curve[i + 1] && !isPoint;
    }

    void takePair(std::size_t i, std::size_t j) {
        if (isNoEdge(a_, i) || isNoEdge(b_, j)) {
            return;
        }
        const LatticePoint p = a_[i], q = a_[i + 1], r = b_[j], s = b_[j + 1];
        const std::int64_t across = (q.x - p.x) * (s.y - r.y) - (q.y - p.y) * (s.x - r.x);
        if (across != 0) {
            const Rational t =
                Rational::of((r.x - p.x) * (s.y - r.y) - (r.y - p.y) * (s.x - r.x), across);
            const Rational u =
                Rational::of((r.x - p.x) * (q.y - p.y) - (r.y - p.y) * (q.x - p.x), across);
            if (isFraction(t) && isFraction(u)) {
                addPoint(i, t, j, u);
            }
            return;
        }
        if (cross(p, q, r) == 0 && cross(p, q, s) == 0 && cross(r, s, p) == 0 &&
            cross(r, s, q) == 0) {
            takeOnOneLine(i, j);
        }
    }

    static bool isFraction(const Rational& t) {
        return t.numerator >= 0 && t.numerator <= t.denominator;
    }

    // The fraction of an edge at a point that is on its line; 0 on an edge of no length.
    static Rational fractionAt(const LatticePoint& p, const LatticePoint& q,
                               const LatticePoint& at) {
        if (p == q) {
            return {0, 1};
        }
        return p.x != q.x ? Rational::of(at.x - p.x, q.x - p.x)
                          : Rational::of(at.y - p.y, q.y - p.y);
    }

    static bool holds(const LatticePoint& p, const LatticePoint& q, const LatticePoint& at) {
        return p == q ? at == p : cross(p, q, at) == 0 && isFraction(fractionAt(p, q, at));
    }

    void takeOnOneLine(std::size_t i, std::size_t j) {
        const LatticePoint p = a_[i], q = a_[i + 1], r = b_[j], s = b_[j + 1];
        std::vector<std::pair<Rational, Rational>> common;
        for (const LatticePoint& at : {p, q, r, s}) {
            if (holds(p, q, at) && holds(r, s, at)) {
                common.emplace_back(fractionAt(p, q, at), fractionAt(r, s, at));
            }
        }
        std::sort(common.begin(), common.end());
        if (common.empty()) {
            return;
        }
        if (common.front().first == common.back().first) {
            addPoint(i, common.front().first, j, common.front().second);
            return;
        }
        ExactCrossing c;
        c.isOverlap = true;
        c.begin = place(a_, i, common.front().first);
        c.end = place(a_, i, common.back().first);
        c.otherBegin = place(b_, j, common.front().second);
        c.otherEnd = place(b_, j, common.back().second);
        setCoordinates(i, common.front().first, c);
        overlaps_.push_back(c);
    }

    void dropPointsOnOverlaps() {
        const auto isOnOverlap = [this](const ExactCrossing& point) {
            return std::any_of(overlaps_.begin(), overlaps_.end(), [&](const ExactCrossing& o) {
                return (named(a_, o.begin) == point.begin &&
                        named(b_, o.otherBegin) == point.otherBegin) ||
                       (named(a_, o.end) == point.begin &&
                        named(b_, o.otherEnd) == point.otherBegin);
            });
        };
        points_.erase(std::remove_if(points_.begin(), points_.end(), isOnOverlap), points_.end());
    }

    bool joinTwo() {
        for (ExactCrossing& c : overlaps_) {
            for (std::size_t k = 0; k < overlaps_.size(); ++k) {
                const ExactCrossing& next = overlaps_[k];
                if (next.begin == c.end && next.otherBegin == c.otherEnd &&
                    next.isOpposed() == c.isOpposed()) {
                    c.end = next.end;
                    c.otherEnd = next.otherEnd;
                    overlaps_.erase(overlaps_.begin() + static_cast<std::ptrdiff_t>(k));
                    return true;
                }
            }
        }
        return false;
    }

    const LatticeCurve& a_;
    const LatticeCurve& b_;
    std::vector<ExactCrossing> points_;
    std::vector<ExactCrossing> overlaps_;
    std::vector<ExactCrossing> all_;
};

} // namespace qel_test

#endif
