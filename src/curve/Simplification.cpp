// Thinning a curve to those of its points that matter most.
//
// Greedy refinement: from the chord between the ends, the chord whose farthest vertex is
// farthest of all is split there until enough points are kept or no vertex is farther than the
// tolerance. Each split measures its two halves, so that n points thinned to k take about
// n log k steps where the splits fall near the middle, and n k where each cuts off one end only (a
// sawtooth of falling height, say). The next chord comes from a heap, never from a scan of all.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include <qel/QELVector.h>

#include "curve/BracketSearch.h"
#include "curve/Conversions.h"
#include "curve/DeviationBounds.h"
#include "curve/NormalDistance.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

using Edge = ParametricCurve::tEdge;

// Vertices beyond the curve's own that may be kept. Where supplied s-values leave 0..1, or come so
// near its ends that the middle of two rounds to them, the vertex found for a chord of no length
// may lie outside it, so that chords can come back for ever.
constexpr std::size_t kMaxRepeats = 1000;

// The chords in order of appearance, and the choice among them: the largest distance of those not
// to be skipped, as a scan from the front finds it that moves on only to a strictly larger one. So
// of equal distances the earliest chord is chosen, and a NaN distance is chosen exactly where it is
// the front one's, because nothing exceeds it.
class EdgeList {
public:
    void reserve(std::size_t count) {
        edges_.reserve(count);
        heap_.reserve(count);
    }

    const Edge& operator[](std::size_t position) const { return edges_[position]; }

    void append(const Edge& edge) {
        edges_.push_back(edge);
        enter(edges_.size() - 1);
    }

    /// Gives the chosen chord, which has left the heap, its new ends and distance.
    void replace(std::size_t position, const Edge& edge) {
        edges_[position] = edge;
        enter(position);
    }

    /// Takes the chord to split out of the heap. False if all are to be skipped.
    bool choose(std::size_t& position) {
        while (front_ < edges_.size() && edges_[front_].skip) {
            ++front_; // a skipped chord is never changed
        }
        if (front_ == edges_.size()) {
            return false;
        }
        if (std::isnan(edges_[front_].distance)) {
            position = front_;
            return true;
        }
        std::pop_heap(heap_.begin(), heap_.end(), comesLater);
        position = heap_.back().position;
        heap_.pop_back();
        return true;
    }

private:
    struct Entry {
        double distance;
        std::size_t position;
    };

    static bool comesLater(const Entry& a, const Entry& b) {
        return a.distance < b.distance || (a.distance == b.distance && a.position > b.position);
    }

    // A NaN stays out: it is only ever chosen at the front.
    void enter(std::size_t position) {
        const Edge& edge = edges_[position];
        if (!edge.skip && !std::isnan(edge.distance)) {
            heap_.push_back({edge.distance, position});
            std::push_heap(heap_.begin(), heap_.end(), comesLater);
        }
    }

    QELVector<Edge> edges_;
    std::vector<Entry> heap_;
    std::size_t front_ = 0; // all chords before it are skipped
};

// The vertices kept, in increasing order, when the whole chord of so many vertices, which has been
// measured, is split again and again.
template <typename Measure>
std::vector<int> refine(const Edge& whole, std::size_t size, std::size_t count, double tolerance,
                        const Measure& measure) {
    const std::size_t expected = std::min(count, size);
    EdgeList edges;
    edges.reserve(expected);
    std::vector<int> ids;
    ids.reserve(expected);
    edges.append(whole);
    ids.push_back(whole.first);
    ids.push_back(whole.second);
    std::size_t chosen = 0;
    while (edges.choose(chosen)) {
        Edge before = edges[chosen];
        ids.push_back(before.farthest);
        if (ids.size() > size + kMaxRepeats) {
            throw internal::error("ParametricCurve", "optimizeByNormalDistance",
                                  "The same points are kept again and again.", argumentError);
        }
        // Deliberate: this last vertex is kept though it lies within the tolerance
        // (Simplification, KeepsTheVertexAtWhichItStops).
        if (ids.size() >= count || tolerance >= before.distance) {
            break;
        }
        Edge after = before;
        before.second = before.farthest;
        after.first = after.farthest;
        measure(before);
        measure(after);
        edges.replace(chosen, before);
        edges.append(after);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

Points pointsAt(const Points& points, const std::vector<int>& ids) {
    Points chosen;
    chosen.reserve(ids.size());
    for (const int id : ids) {
        chosen.push_back(points[static_cast<std::size_t>(id)]);
    }
    return chosen;
}

// Both lists in one, sorted without repeats; NaN last, where they have no order among numbers. A
// curve's own s-values are in order as a rule, and then need no sorting.
std::vector<double> unionOf(const std::vector<double>& own, std::vector<double> given) {
    const bool isOrdered = stepsOf(own.data(), own.size(), 0.0).areInOrder;
    if (!isOrdered) {
        given.insert(given.end(), own.begin(), own.end());
    }
    const auto firstNan =
        std::partition(given.begin(), given.end(), [](double value) { return !std::isnan(value); });
    std::sort(given.begin(), firstNan);
    std::vector<double> all(given.size() + (isOrdered ? own.size() : 0));
    const auto ownEnd = isOrdered ? own.end() : own.begin();
    auto end = std::merge(own.begin(), ownEnd, given.begin(), firstNan, all.begin());
    end = std::unique(all.begin(), end);
    all.erase(std::copy(firstNan, given.end(), end), all.end());
    return all;
}

} // namespace

void ParametricCurve::optimizeByNormalDistance(int count, std::vector<int>& ids, double tolerance) {
    if (count < 2) {
        return;
    }
    if (points_.size() < 2) {
        ids.clear();
        return;
    }
    Edge whole;
    whole.second = static_cast<int>(points_.size() - 1);
    std::vector<int> kept{whole.first, whole.second};
    bool isShort = count == 2;
    if (!isShort) {
        measureChord(*this, nullptr, whole);
        isShort = whole.skip || whole.distance < tolerance || count == 3;
        if (!isShort) {
            const DeviationBounds bounds(points_);
            kept = refine(whole, points_.size(), static_cast<std::size_t>(count), tolerance,
                          [&](Edge& chord) { measureChord(*this, &bounds, chord); });
        } else if (!whole.skip && whole.distance > tolerance) {
            kept.insert(kept.begin() + 1, whole.farthest); // not where it equals the tolerance
        }
    }
    Points points = pointsAt(points_, kept);
    exchangeAndCalculateArcValue(points);
    // Deliberate: the refinement leaves the parametrization as it was
    // (Simplification, SetsTheParametrizationOnTheShortWaysOnly).
    if (isShort) {
        parametrization_ = parametrizationComputed;
    }
    ids.swap(kept);
}

void ParametricCurve::optimizeByNormalDistance(int count, double tolerance) {
    std::vector<int> ids;
    optimizeByNormalDistance(count, ids, tolerance);
}

double ParametricCurve::getMaximumNormalDistance(const std::vector<double>& svalues) const {
    if (svalues.size() < 2) {
        // Named after the step that would refuse it further down.
        throw internal::error("ParametricCurve", "createNewCurveBySvalues",
                              SystemMsg("Requested size less than 2."), argumentError);
    }
    const std::unique_ptr<ParametricCurve> refined(
        createNewCurveBySvalues(unionOf(svalues_, svalues), true));
    double largest = 0.0;
    // In the order given, which need not be that of s.
    int previous = refined->getClosestToSvaluePoint(svalues[0]);
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        Edge chord;
        chord.first = previous;
        chord.second = refined->getClosestToSvaluePoint(svalues[i]);
        measureChord(*refined, nullptr, chord);
        if (chord.distance > largest) {
            largest = chord.distance;
        }
        previous = chord.second;
    }
    return largest;
}

} // namespace qel
