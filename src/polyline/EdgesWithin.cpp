#include "polyline/EdgesWithin.h"

#include <algorithm>

#include "platform/VectorDispatch.h"
#include "polyline/BoxDistance.h"

namespace qel {
namespace {

struct SquaredGaps {
    QEL_KERNEL static void run(const EdgeBvhNode<3>* node, Probe q, double* gaps) {
        for (std::size_t k = 0; k < kEdgeLanes; ++k) {
            gaps[k] = squaredGap(*node, k, q);
        }
    }
};

// Depth first.
struct Search {
    const EdgeBvh<3>& bvh;
    Probe q;
    double d2;
    std::vector<std::size_t>& runs;

    void take(int level, std::size_t i) {
        double gaps[kEdgeLanes];
        onVectorUnit<SquaredGaps>(&bvh.node(level, i), q, gaps);
        for (std::size_t k = 0; k < kEdgeLanes; ++k) {
            if (gaps[k] > d2) {
                continue;
            }
            if (level == 0) {
                runs.push_back(bvh.firstEdge(i, k));
            } else {
                take(level - 1, i * kEdgeLanes + k);
            }
        }
    }
};

} // namespace

std::vector<std::size_t> findRunsWithin(const EdgeBvh<3>& bvh, const Probe& q, double d2) {
    std::vector<std::size_t> runs;
    Search{bvh, q, d2, runs}.take(bvh.levels() - 1, 0);
    std::sort(runs.begin(), runs.end());
    return runs;
}

} // namespace qel
