#include "curve/VertexBvh.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "curve/NearestVertex.h"
#include "curve/SimdDistances.h"
#include "platform/LowestBit.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kLeaf = VertexBvh::kLeaf;
constexpr std::size_t kFan = VertexBvh::kFan;
static_assert(kLeaf <= 64, "a word has a bit for each vertex of a leaf");

constexpr std::size_t kMinVisits = 16; // before a search is given up
// Looking at so many vertices one after the other takes as long as a visit.
constexpr std::size_t kVerticesPerVisit = 48;

constexpr std::size_t boxesAt(std::size_t level, std::size_t count) {
    return ((count - 1) >> (VertexBvh::kLeafBits + VertexBvh::kFanBits * level)) + 1;
}

bool isFinite(const Point& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// -- Search ----

struct Best {
    double d2;
    double index;
    std::size_t leaf;
};

// A node on the way down.
struct Frame {
    double d2[kFan];   // squared distances of q from the boxes: no vertex inside is nearer
    double keys[kFan]; // what the boxes are taken in the order of
    double next;       // the least key that is left
    const VertexBvh::Node* node;
    std::size_t number;
};

// True if a vertex at a squared distance of d2 or more, with an index of first or more, may come
// before the best. Without branches: which boxes are near is hard to predict.
QEL_KERNEL bool mayPrecede(double d2, double first, const Best& best) {
    return (d2 < best.d2) | ((d2 == best.d2) & (first < best.index));
}

QEL_KERNEL double lesser(double a, double b) {
    return a < b ? a : b;
}

QEL_KERNEL double larger(double a, double b) {
    return a > b ? a : b;
}

#if defined(QEL_SHUFFLES)

using Quad = typename Register<double, 4>::Type;

QEL_KERNEL void read(const double* from, Quad& to) {
    std::memcpy(&to, from, sizeof to);
}

QEL_KERNEL void write(const Quad& from, double* to) {
    std::memcpy(to, &from, sizeof from);
}

// The least of four numbers, none of which is NaN.
QEL_KERNEL double leastOf(const Quad& v) {
    const Quad w = __builtin_shufflevector(v, v, 2, 3, 0, 1);
    const Quad two = v < w ? v : w;
    return lesser(two[0], two[1]);
}

#endif

// A bit for each vertex of a leaf that is at a squared distance.
QEL_KERNEL std::uint64_t verticesAt(double d2, const double* d2OfLeaf) {
    std::uint64_t vertices = 0;
    for (std::size_t i = 0; i < kLeaf; ++i) {
        vertices |= (d2OfLeaf[i] == d2 ? std::uint64_t{1} : std::uint64_t{0}) << i;
    }
    return vertices;
}

// The lowest index of some vertices, one at least, of the leaf that begins with the first.
QEL_KERNEL std::int64_t lowestIndex(std::uint64_t vertices, std::size_t first,
                                    const std::int64_t* indices) {
    if (indices == nullptr) {
        return static_cast<std::int64_t>(first) + lowestBit(vertices);
    }
    std::int64_t index = std::numeric_limits<std::int64_t>::max();
    for (; vertices != 0; vertices &= vertices - 1) {
        index = std::min(index, indices[first + static_cast<std::size_t>(lowestBit(vertices))]);
    }
    return index;
}

// Squared distances of q from the vertices of a leaf, and the least of them; a NaN never is.
template <bool isSimd>
QEL_KERNEL double measureLeaf(const Point* leaf, const Point& q, double* d2) {
#if defined(QEL_SHUFFLES)
    if constexpr (isSimd) {
        Quad least = Quad{} + kInfinity;
        for (std::size_t i = 0; i < kLeaf; i += 4) {
            const Quad d = squaredDistances(PointLanes<4>::read(leaf + i), q).value;
            write(d, d2 + i);
            least = d < least ? d : least;
        }
        return leastOf(least);
    }
#endif
    double least = kInfinity;
    for (std::size_t i = 0; i < kLeaf; ++i) {
        d2[i] = squaredDistance(leaf[i], q);
        least = lesser(d2[i], least);
    }
    return least;
}

template <bool isSimd>
QEL_KERNEL void searchLeaf(const VertexBvh::View& view, std::size_t leaf, const Point& q,
                           Best& best) {
    // The last leaf begins kLeaf vertices before the end; those seen twice change nothing.
    const std::size_t first = std::min(leaf * kLeaf, view.count - kLeaf);
    double d2[kLeaf];
    const double least = measureLeaf<isSimd>(view.points + first, q, d2);
    if (least <= best.d2 && least < kInfinity) { // else a leaf of NaN may have no vertex at it
        const auto index =
            static_cast<double>(lowestIndex(verticesAt(least, d2), first, view.indices));
        if (mayPrecede(least, index, best)) {
            best = {least, index, leaf};
        }
    }
}

// -- Keys: a squared distance with the number of the box in its lowest bits ----

constexpr double kMinKey = 1e-300; // normal whatever its lowest bits are
constexpr double kMaxKey = 1e308;
constexpr std::uint64_t kBoxBits = kFan - 1;

QEL_KERNEL std::uint64_t bitsOf(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

QEL_KERNEL double fromBits(std::uint64_t bits) {
    double x = 0.0;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

QEL_KERNEL double withinKeys(double d2) {
    return lesser(larger(d2, kMinKey), kMaxKey);
}

// Boxes with a greater key are farther away than d2.
QEL_KERNEL double greatestKeyOf(double d2) {
    return fromBits(bitsOf(withinKeys(d2)) | kBoxBits);
}

// Squared distances of q from the boxes of a node, in the order of operations of the distances
// themselves, and the keys of the boxes; infinite for boxes that do not matter. Those that are not
// there are infinitely far away and never do: the best is nearer, or it is vertex 0. Sides may be
// infinite but q is not, so no NaN arises.
QEL_KERNEL void measureBoxes(const VertexBvh::Node& node, const Point& q, const Best& best,
                             double* d2, double* keys) {
#pragma GCC unroll 1 // so that it becomes one of lanes
    for (std::size_t i = 0; i < kFan; ++i) {
        const double x = larger(larger(node.low[0][i] - q.x, q.x - node.high[0][i]), 0.0);
        const double y = larger(larger(node.low[1][i] - q.y, q.y - node.high[1][i]), 0.0);
        const double z = larger(larger(node.low[2][i] - q.z, q.z - node.high[2][i]), 0.0);
        d2[i] = x * x + y * y + z * z;
        keys[i] = mayPrecede(d2[i], node.first[i], best)
                      ? fromBits((bitsOf(withinKeys(d2[i])) & ~kBoxBits) | i)
                      : kInfinity;
    }
}

// The least key that is greater than the last; infinite if none is.
template <bool isSimd>
QEL_KERNEL double nextKey(const double* keys, double last) {
#if defined(QEL_SHUFFLES)
    if constexpr (isSimd) {
        Quad a;
        Quad b;
        read(keys, a);
        read(keys + 4, b);
        a = a > last ? a : Quad{} + kInfinity;
        b = b > last ? b : Quad{} + kInfinity;
        return leastOf(a < b ? a : b);
    }
#endif
    double next = kInfinity;
    for (std::size_t i = 0; i < kFan; ++i) {
        next = keys[i] > last ? lesser(keys[i], next) : next;
    }
    return next;
}

template <bool isSimd>
QEL_KERNEL void enter(const VertexBvh::View& view, std::size_t level, std::size_t number,
                      const Point& q, const Best& best, Frame& frame) {
    frame.node = view.nodes + view.levelStart[level] + number;
    frame.number = number;
    measureBoxes(*frame.node, q, best, frame.d2, frame.keys);
    frame.next = nextKey<isSimd>(frame.keys, 0.0);
}

// Goes on from the best so far; false if there are more visits to make than allowed.
template <bool isSimd>
struct SearchKernel {
    QEL_KERNEL static bool run(const VertexBvh::View* view, const Point* probe, std::size_t allowed,
                               Best* found, std::size_t* visits) {
        const Point q = *probe;
        Best best = *found;
        const std::size_t guessed = best.leaf;
        searchLeaf<isSimd>(*view, guessed, q, best);
        Frame frames[VertexBvh::kMaxLevels];
        std::size_t level = view->top;
        enter<isSimd>(*view, level, 0, q, best, frames[level]);
        std::size_t visit = 2;
        while (visit <= allowed && level <= view->top) {
            Frame& frame = frames[level];
            const double key = frame.next;
            if (!(key <= greatestKeyOf(best.d2))) {
                ++level;
                continue;
            }
            frame.next = nextKey<isSimd>(frame.keys, key); // beside the work inside the box
            const std::size_t box = bitsOf(key) & kBoxBits;
            if (!mayPrecede(frame.d2[box], frame.node->first[box], best)) {
                continue;
            }
            const std::size_t number = frame.number * kFan + box;
            ++visit;
            if (level > 1) {
                --level;
                enter<isSimd>(*view, level, number, q, best, frames[level]);
            } else if (number != guessed) {
                searchLeaf<isSimd>(*view, number, q, best);
            }
        }
        *found = best;
        *visits += visit;
        return level > view->top;
    }
};

bool search(const VertexBvh::View& view, const Point& q, std::size_t allowed, Best& best,
            std::size_t& visits) {
#if defined(QEL_SHUFFLES)
    if (vectorUnit() != VectorUnit::portable) {
        return runAvx2<SearchKernel<true>>(&view, &q, allowed, &best, &visits);
    }
#endif
    return runPortable<SearchKernel<false>>(&view, &q, allowed, &best, &visits);
}

// -- Order in space ----

struct Vertex {
    Point p;
    std::int64_t index;
};

// The component in which a box around vertices is longest; null if they are all in one place.
double Point::*longestSide(const Vertex* begin, const Vertex* end) {
    Point low = begin->p;
    Point high = begin->p;
    for (const Vertex* v = begin; v != end; ++v) {
        low = {std::min(low.x, v->p.x), std::min(low.y, v->p.y), std::min(low.z, v->p.z)};
        high = {std::max(high.x, v->p.x), std::max(high.y, v->p.y), std::max(high.z, v->p.z)};
    }
    const Point side = high - low;
    if (side == Point()) {
        return nullptr;
    }
    double Point::*const xy = side.x < side.y ? &Point::y : &Point::x;
    return side.*xy < side.z ? &Point::z : xy;
}

// Halves vertices until leaves are left. The first half is filled: as large a number of leaves as
// a power of two may be, so that the leaves of every box stand in a row.
void halve(Vertex* begin, Vertex* end) {
    const auto count = static_cast<std::size_t>(end - begin);
    if (count <= kLeaf) {
        return;
    }
    double Point::*const component = longestSide(begin, end);
    if (component == nullptr) {
        return;
    }
    std::size_t half = kLeaf;
    while (2 * half < count) {
        half *= 2;
    }
    std::nth_element(begin, begin + half, end, [component](const Vertex& a, const Vertex& b) {
        return a.p.*component < b.p.*component;
    });
    halve(begin, begin + half);
    halve(begin + half, end);
}

} // namespace

// Those that are not finite are left out: they are never the nearest, but for vertex 0, with which
// every search begins. The last leaf is filled up with NaN.
void VertexBvh::sortInSpace() {
    std::vector<Vertex> vertices;
    vertices.reserve(count_);
    for (std::size_t i = 0; i < count_; ++i) {
        if (isFinite(points_[i])) {
            vertices.push_back({points_[i], static_cast<std::int64_t>(i)});
        }
    }
    halve(vertices.data(), vertices.data() + vertices.size());
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const std::size_t whole = (std::max(vertices.size(), kLeaf) + kLeaf - 1) / kLeaf * kLeaf;
    sorted_.assign(whole, Point(kNan, kNan, kNan));
    indices_.assign(whole, std::numeric_limits<std::int64_t>::max());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        sorted_[i] = vertices[i].p;
        indices_[i] = vertices[i].index;
    }
}

// -- Boxes ----

VertexBvh::Node::Node() {
    for (std::size_t component = 0; component < 3; ++component) {
        std::fill_n(low[component], kFan, kInfinity);
        std::fill_n(high[component], kFan, -kInfinity);
    }
    std::fill_n(first, kFan, kInfinity);
}

VertexBvh::VertexBvh(const Point* points, std::size_t count, Order order)
    : points_(points), count_(count) {
    view_.points = points;
    view_.count = count;
    if (order == Order::inSpace) {
        sortInSpace();
        view_.points = sorted_.data();
        view_.count = sorted_.size();
        view_.indices = indices_.data();
    }
    std::size_t nodeCount = 0;
    while (boxesAt(view_.top, view_.count) > 1 || view_.top == 0) {
        view_.levelStart[++view_.top] = nodeCount;
        nodeCount += boxesAt(view_.top, view_.count);
    }
    nodes_.resize(nodeCount);
    view_.nodes = nodes_.data();
    buildLeafBoxes();
    for (std::size_t level = 2; level <= view_.top; ++level) {
        buildLevel(level);
    }
}

// A NaN belongs to no box.
void VertexBvh::buildLeafBoxes() {
    const Point* const points = view_.points;
    for (std::size_t begin = 0; begin < view_.count; begin += kLeaf) {
        const std::size_t end = std::min(begin + kLeaf, view_.count);
        Point low(kInfinity, kInfinity, kInfinity);
        Point high(-kInfinity, -kInfinity, -kInfinity);
        for (const Point* p = points + begin; p != points + end; ++p) {
            low = {lesser(p->x, low.x), lesser(p->y, low.y), lesser(p->z, low.z)};
            high = {larger(p->x, high.x), larger(p->y, high.y), larger(p->z, high.z)};
        }
        Node& node = nodes_[begin / kLeaf / kFan];
        const std::size_t i = begin / kLeaf % kFan;
        node.low[0][i] = low.x;
        node.low[1][i] = low.y;
        node.low[2][i] = low.z;
        node.high[0][i] = high.x;
        node.high[1][i] = high.y;
        node.high[2][i] = high.z;
        node.first[i] = static_cast<double>(
            view_.indices != nullptr ? *std::min_element(view_.indices + begin, view_.indices + end)
                                     : static_cast<std::int64_t>(begin));
    }
}

// Boxes of level - 1, gathered from the boxes inside them.
void VertexBvh::buildLevel(std::size_t level) {
    for (std::size_t number = 0; number < view_.levelStart[level] - view_.levelStart[level - 1];
         ++number) {
        const Node& inner = nodes_[view_.levelStart[level - 1] + number];
        Node& outer = nodes_[view_.levelStart[level] + number / kFan];
        const std::size_t i = number % kFan;
        for (std::size_t component = 0; component < 3; ++component) {
            outer.low[component][i] =
                *std::min_element(inner.low[component], inner.low[component] + kFan);
            outer.high[component][i] =
                *std::max_element(inner.high[component], inner.high[component] + kFan);
        }
        outer.first[i] = *std::min_element(inner.first, inner.first + kFan);
    }
}

std::size_t VertexBvh::nearestVertex(const Point& q, Search& search) const {
    search.isGivenUp = false;
    Best best{squaredDistance(points_[0], q), 0.0, search.leaf};
    // Nothing is less than a first distance of NaN, and a q that is not finite has no distance
    // less than infinity.
    if (!(best.d2 < kInfinity) && (std::isnan(best.d2) || !isFinite(q))) {
        return 0;
    }
    const std::size_t allowed = std::max(count_ / kGiveUp, kMinVisits);
    search.isGivenUp = !qel::search(view_, q, allowed, best, search.visits);
    if (search.isGivenUp) {
        search.visits += count_ / kVerticesPerVisit;
        return qel::nearestVertex(points_, count_, q);
    }
    search.leaf = best.leaf;
    return static_cast<std::size_t>(best.index);
}

} // namespace qel
