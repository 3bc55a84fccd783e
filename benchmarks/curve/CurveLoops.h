#ifndef QEL_BENCHMARKS_CURVE_CURVELOOPS_H
#define QEL_BENCHMARKS_CURVE_CURVELOOPS_H

// Scalar loops of what curves compute, in the same order of operations: what a user would write
// instead of calling the library.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include <qel/NumericalUtils.h>

#include "curve/CurveInput.h"

namespace qel_benchmark {
namespace plain {

inline double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Point cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// Undefined where a component is the marker.
inline double length(const Point& v) {
    constexpr double kMarker = std::numeric_limits<double>::max();
    constexpr double kUndefinedLength = 3.4028234663852886e38;
    const bool undefined = v.x == kMarker || v.y == kMarker || v.z == kMarker;
    return undefined ? kUndefinedLength : std::sqrt(dot(v, v));
}

inline Point unit(const Point& v) {
    const double l = length(v);
    return l == 0.0 ? v : Point(v.x / l, v.y / l, v.z / l);
}

// s-values as normalised arc length; returns the length.
inline double arcValues(const Points& p, Values& s) {
    const std::size_t last = p.size() - 1;
    s.resize(p.size());
    s[0] = 0.0;
    double sum = 0.0;
    for (std::size_t i = 1; i <= last; ++i) {
        sum += length(p[i] - p[i - 1]);
        s[i] = sum;
    }
    const bool significant = sum >= 100.0 * qel::NumericalUtils::spacing(sum);
    for (std::size_t i = 1; i < last; ++i) {
        s[i] = significant ? s[i] / sum : 0.0;
    }
    s[last] = 1.0;
    return sum;
}

// The s-values around one that is strictly inside.
inline void bracket(const Values& s, double at, std::size_t& lo, std::size_t& hi) {
    const auto above = std::upper_bound(s.begin(), s.end(), at);
    hi = static_cast<std::size_t>(above - s.begin());
    lo = s[hi - 1] == at
             ? static_cast<std::size_t>(std::lower_bound(s.begin(), above, at) - s.begin())
             : hi - 1;
}

inline bool nearlyEqual(const Values& s, std::size_t lo, std::size_t hi) {
    return 100.0 * qel::NumericalUtils::spacing(s[hi]) > s[hi] - s[lo];
}

inline Point between(const Points& p, const Values& s, double at, std::size_t lo, std::size_t hi) {
    if (nearlyEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * ((at - s[lo]) / (s[hi] - s[lo]));
}

inline Point pointAt(const Points& p, const Values& s, double at) {
    if (!(at > s.front())) {
        return p.front();
    }
    if (!(at < s.back())) {
        return p.back();
    }
    std::size_t lo = 0;
    std::size_t hi = 0;
    bracket(s, at, lo, hi);
    return between(p, s, at, lo, hi);
}

// For s-values in ascending order: the bracket moves up from where it was.
class Walk {
public:
    Walk(const Points& points, const Values& svalues) : p_(points), s_(svalues) {}

    Point pointAt(double at) {
        if (!(at > s_.front())) {
            return p_.front();
        }
        if (!(at < s_.back())) {
            return p_.back();
        }
        while (!(s_[hi_] > at)) {
            ++hi_;
        }
        std::size_t lo = hi_ - 1;
        while (s_[lo] == at && lo > 0 && s_[lo - 1] == at) {
            --lo;
        }
        return between(p_, s_, at, lo, hi_);
    }

private:
    const Points& p_;
    const Values& s_;
    std::size_t hi_ = 1;
};

// The evaluator that rounds s to float and weighs before it divides.
inline Point interpolated(const Points& p, const Values& s, double exact, std::size_t& lo,
                          std::size_t& hi) {
    const auto at = static_cast<double>(static_cast<float>(exact));
    if (!(at > s.front())) {
        lo = hi = 0;
        return p.front();
    }
    if (!(at < s.back())) {
        lo = hi = p.size() - 1;
        return p.back();
    }
    bracket(s, at, lo, hi);
    if (nearlyEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * (at - s[lo]) / (s[hi] - s[lo]);
}

inline std::size_t closestToS(const Values& s, double at) {
    if (!(at > 0.0)) {
        return 0;
    }
    if (!(at < 1.0)) {
        return s.size() - 1;
    }
    std::size_t lo = 0;
    std::size_t hi = 0;
    bracket(s, at, lo, hi);
    return std::abs(at - s[lo]) < std::abs(at - s[hi]) ? lo : hi;
}

// -- Projection ----

inline double squaredDistance(const Point& a, const Point& b) {
    const Point d = a - b;
    return dot(d, d);
}

// The first of the nearest vertices.
inline std::size_t nearestVertex(const Points& p, const Point& q) {
    std::size_t nearest = 0;
    double least = squaredDistance(p[0], q);
    for (std::size_t i = 1; i < p.size(); ++i) {
        const double d2 = squaredDistance(p[i], q);
        if (d2 < least) {
            least = d2;
            nearest = i;
        }
    }
    return nearest;
}

// The foot of a probe on the edge from its nearest vertex i to j.
inline Point footOnEdge(const Points& p, const Values& s, const Point& q, std::size_t i,
                        std::size_t j, double& foot) {
    const Point e = p[j] - p[i];
    const double squaredLength = dot(e, e);
    const double tolerance = 100.0 * qel::NumericalUtils::spacing(squaredLength);
    const double d2i = squaredDistance(p[i], q);
    const double d2j = squaredDistance(p[j], q);
    if (!(tolerance < d2j)) {
        foot = s[j];
        return p[j];
    }
    if (!(tolerance < d2i)) {
        foot = s[i];
        return p[i];
    }
    const double a = (d2i - d2j + squaredLength) * 0.5;
    if (squaredLength < 100.0 * qel::NumericalUtils::spacing(a)) {
        foot = (s[j] + s[i]) * 0.5;
        return (p[j] + p[i]) * 0.5;
    }
    const double t = a / squaredLength;
    if (t > 0.0) {
        foot = s[i] + (s[j] - s[i]) * t;
        return p[i] + (p[j] - p[i]) * t;
    }
    foot = s[i];
    return p[i];
}

// The foot beside the nearest vertex k.
inline Point footBeside(const Points& p, const Values& s, const Point& q, std::size_t k,
                        double& foot) {
    const std::size_t last = p.size() - 1;
    if (k == 0) {
        return footOnEdge(p, s, q, 0, 1, foot);
    }
    if (k == last) {
        return footOnEdge(p, s, q, last, last - 1, foot);
    }
    double before = 0.0;
    double after = 0.0;
    const Point a = footOnEdge(p, s, q, k, k - 1, before);
    const Point b = footOnEdge(p, s, q, k, k + 1, after);
    const double distanceA = length(q - a);
    const double distanceB = length(q - b);
    if (distanceA == distanceB) {
        foot = s[k];
        return p[k];
    }
    foot = distanceB > distanceA ? before : after;
    return distanceB > distanceA ? a : b;
}

inline Point project(const Points& p, const Values& s, const Point& q, double& foot) {
    if (p.size() == 2 && p[0] == p[1]) {
        foot = 0.0;
        return p[0];
    }
    return footBeside(p, s, q, nearestVertex(p, q), foot);
}

// -- Distances from a chord ----

struct Deviation {
    double distance = 0.0;
    std::size_t index = 0;
    bool done = true;
};

inline Deviation distanceAtMiddle(const Points& p, const Values& s, std::size_t i, std::size_t j) {
    if (j == i || j - i == 1 || !(s[i] < s[j])) {
        return {0.0, i, true};
    }
    std::size_t index = closestToS(s, (s[j] + s[i]) * 0.5);
    index = index == i ? i + 1 : index;
    index = index == j ? j - 1 : index;
    return {length(p[index] - (p[i] + p[j]) * 0.5), index, false};
}

// The vertex between i and j farthest from the line through both.
inline Deviation normalDistance(const Points& p, const Values& s, std::size_t i, std::size_t j) {
    Deviation result{0.0, i, true};
    if (j == i || j - i == 1) {
        return result;
    }
    const Point e = p[i] - p[j];
    const double chord = length(e);
    const double tolerance = 1000.0 * qel::NumericalUtils::spacing(chord);
    if (tolerance > chord) {
        return distanceAtMiddle(p, s, i, j);
    }
    for (std::size_t k = i + 1; k < j; ++k) {
        const Point w = p[k] - p[i];
        const double size = length(w);
        const double part = dot(w, e) / chord;
        const double h = std::sqrt(size * size - part * part);
        if (h > result.distance && h > tolerance) {
            result = {h, k, false};
        }
    }
    return result;
}

} // namespace plain
} // namespace qel_benchmark

#endif
