#ifndef QEL_TESTS_SPATIAL_BUILTQUADTREE_H
#define QEL_TESTS_SPATIAL_BUILTQUADTREE_H

// The linear quadtree of a cloud with the points that it has sorted.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "spatial/LinearQuadtree.h"
#include "spatial/ReferenceSearch.h"

namespace qel_test {

struct BuiltQuadtree {
    BuiltQuadtree(const std::vector<qel::TripletBase<float>>& cloud, int maxDepth, int capacity)
        : reference(cloud, maxDepth, capacity), points(cloud.size()), codes(cloud.size()) {
        const auto& r = reference.root();
        root.rectangle = {r.xmin, r.ymin, r.xmax, r.ymax};
        std::vector<qel::PlanePoint> unsorted;
        for (std::size_t i = 0; i < cloud.size(); ++i) {
            unsorted.push_back(qel::planePoint(cloud[i], i));
        }
        const bool isFinite = std::all_of(unsorted.begin(), unsorted.end(), qel::isFinite);
        const qel::QuadtreeLimits limits = {maxDepth, static_cast<std::size_t>(capacity)};
        tree = qel::buildLinearQuadtree(cloud, root, qel::boxOf(unsorted.data(), unsorted.size()),
                                        isFinite, limits, {points.data(), codes.data()});
    }

    // The number of the leaf in which point `i` of a block lies.
    static std::uint32_t leafOf(const qel::BlockRun& block, unsigned i) {
        std::uint32_t leaf = block.firstLeaf;
        for (unsigned k = 1; k <= i; ++k) {
            leaf += block.leafBegins >> k & 1u;
        }
        return leaf;
    }

    ReferenceSearch reference;
    qel::QuadNode root;
    std::vector<qel::PlanePoint> points;
    std::vector<std::uint16_t> codes;
    qel::LinearQuadtree tree;
};

} // namespace qel_test

#endif
