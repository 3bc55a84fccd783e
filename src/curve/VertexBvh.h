#ifndef QEL_CURVE_VERTEXBVH_H
#define QEL_CURVE_VERTEXBVH_H

/// @file
/// A bounding volume hierarchy over the vertices of one polyline, for many nearest-vertex searches.
///
/// Leaves are 16 vertices, nodes eight boxes (MacDonald and Booth, "Heuristics for ray tracing
/// using space subdivision", 1990, for the structure; here it is searched branch and bound). The
/// vertices are taken in one of two orders:
///   - along the curve, as they stand: neighbours along a smooth curve are neighbours in space, so
///     that the boxes are small. One pass over the points, no copy of them;
///   - in space, halved at the median of the longest side of their box until a leaf is left
///     (Bentley's k-d tree, 1975): small boxes on every shape, for O(n log n) and a copy.
///
/// The answer is that of the reference nearestVertex, ties included. For a box that does not hold q
/// in some component, the gap between q and the nearer side is at most the difference between q and
/// any vertex of the box; subtracting, squaring and adding in the same order of operations round
/// monotonically; so the computed squared gap is at most the computed squared distance of every
/// vertex in the box, and no slack is needed. A box at exactly the least distance is looked into if
/// it holds an index below that of the nearest vertex so far.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "curve/Conversions.h"

namespace qel {

class VertexBvh {
public:
    enum class Order { alongCurve, inSpace };

    /// Keeps a reference to the points. O(n) along the curve, O(n log n) in space.
    ///
    /// @param count  at least kLeaf
    VertexBvh(const Point* points, std::size_t count, Order order);
    VertexBvh(const VertexBvh&) = delete;
    VertexBvh& operator=(const VertexBvh&) = delete;

    /// Where a search starts and what it has cost. Handed from a search to the next, it makes that
    /// faster if the probes are neighbours.
    struct Search {
        std::size_t leaf = 0;   ///< looked into first; that of the vertex found, afterwards
        std::size_t visits = 0; ///< leaves and nodes looked into, of all searches
        bool isGivenUp = false; ///< the last search was
    };

    /// The vertex that the reference finds. Near log n. Where most vertices are about equally near,
    /// as at the centre of a circle, a search would look at all of them: it is given up after
    /// n / kGiveUp visits, and the vertices are looked at one after the other.
    std::size_t nearestVertex(const Point& q, Search& search) const;

    /// Levels of nodes: the least visits that a search makes below the first leaf.
    std::size_t levels() const { return view_.top; }

    static constexpr std::size_t kGiveUp = 128;
    static constexpr std::size_t kLeafBits = 4; // a leaf is 16 vertices
    static constexpr std::size_t kFanBits = 3;  // a node holds eight boxes
    static constexpr std::size_t kLeaf = std::size_t{1} << kLeafBits;
    static constexpr std::size_t kFan = std::size_t{1} << kFanBits;
    static constexpr std::size_t kMaxLevels = 20;

    /// The boxes of a node, a row for each side, so that one pass of the vector unit measures them
    /// all. Boxes that are not there are empty and infinitely far away.
    struct Node {
        double low[3][kFan];
        double high[3][kFan];
        double first[kFan]; ///< lowest index of the vertices inside; for the same lanes

        Node();
    };

    /// What a search reads.
    struct View {
        const Point* points = nullptr; // in the order of the leaves
        std::size_t count = 0;
        const std::int64_t* indices = nullptr; // of those points; null along the curve
        const Node* nodes = nullptr;
        std::array<std::size_t, kMaxLevels> levelStart{}; // in nodes; level 0 are the leaves
        std::size_t top = 0;                              // the level that is one node
    };

private:
    void sortInSpace();
    void buildLeafBoxes();
    void buildLevel(std::size_t level);

    const Point* points_;
    std::size_t count_;
    Points sorted_;
    std::vector<std::int64_t> indices_;
    std::vector<Node> nodes_;
    View view_;
};

} // namespace qel

#endif
