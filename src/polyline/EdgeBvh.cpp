#include "polyline/EdgeBvh.h"

#include <algorithm>
#include <limits>
#include <new>

namespace qel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <int kDimensions>
struct Box {
    double low[kDimensions];
    double high[kDimensions];
};

// A run and the sums of its box's sides, twice its centre.
template <int kDimensions>
struct RunCentre {
    double centre[kDimensions];
    std::uint32_t run;
};

constexpr std::size_t groupsOf(std::size_t count) {
    return (count + kEdgeLanes - 1) / kEdgeLanes;
}

template <int kDimensions>
Box<kDimensions> boxOfRun(const VertexArrays<kDimensions>& vertices, std::size_t run) {
    const std::size_t first = run * kEdgeLanes;
    const std::size_t last = std::min(first + kEdgeLanes, vertices.edges());
    Box<kDimensions> box;
    for (int d = 0; d < kDimensions; ++d) {
        const double* const x = vertices.axis(d);
        double low = x[last], high = x[last];
        for (std::size_t i = first; i < last; ++i) {
            const double end = x[i] + (x[i + 1] - x[i]); // may miss the vertex by a rounding
            low = std::min(low, std::min(x[i], end));
            high = std::max(high, std::max(x[i], end));
        }
        box.low[d] = low;
        box.high[d] = high;
    }
    return box;
}

template <int kDimensions>
int widestAxis(const RunCentre<kDimensions>* first, const RunCentre<kDimensions>* last) {
    int widest = 0;
    double width = -1.0;
    for (int d = 0; d < kDimensions; ++d) {
        double low = first->centre[d], high = low;
        for (const auto* item = first; item != last; ++item) {
            low = std::min(low, item->centre[d]);
            high = std::max(high, item->centre[d]);
        }
        if (high - low > width) {
            widest = d;
            width = high - low;
        }
    }
    return widest;
}

// Brings runs into the order of the tree. Below, subtrees of `size` runs each are to follow each
// other; the last may be smaller.
template <int kDimensions>
void sortSubtrees(RunCentre<kDimensions>* first, RunCentre<kDimensions>* last, std::size_t size) {
    const auto count = static_cast<std::size_t>(last - first);
    if (count <= kEdgeLanes) {
        return;
    }
    while (size >= count) {
        size /= kEdgeLanes;
    }
    const std::size_t subtrees = (count + size - 1) / size;
    RunCentre<kDimensions>* const middle = first + subtrees / 2 * size;
    const int d = widestAxis(first, last);
    std::nth_element(first, middle, last,
                     [d](const auto& a, const auto& b) { return a.centre[d] < b.centre[d]; });
    sortSubtrees(first, middle, size);
    sortSubtrees(middle, last, size);
}

template <int kDimensions>
void setLane(EdgeBvhNode<kDimensions>& node, std::size_t lane, const Box<kDimensions>& box) {
    for (int d = 0; d < kDimensions; ++d) {
        node.low[d][lane] = box.low[d];
        node.high[d][lane] = box.high[d];
    }
}

template <int kDimensions>
Box<kDimensions> emptyBox() {
    Box<kDimensions> box;
    std::fill_n(box.low, kDimensions, kInfinity);
    std::fill_n(box.high, kDimensions, -kInfinity);
    return box;
}

template <int kDimensions>
Box<kDimensions> boxOfNode(const EdgeBvhNode<kDimensions>& node) {
    Box<kDimensions> box;
    for (int d = 0; d < kDimensions; ++d) {
        box.low[d] = *std::min_element(node.low[d], node.low[d] + kEdgeLanes);
        box.high[d] = *std::max_element(node.high[d], node.high[d] + kEdgeLanes);
    }
    return box;
}

} // namespace

template <int kDimensions>
EdgeBvh<kDimensions>::EdgeBvh(const VertexArrays<kDimensions>& vertices) {
    const std::size_t runs = groupsOf(vertices.edges());
    if (runs > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    layOutLevels(runs);
    Buffer<RunCentre<kDimensions>> centres(runs);
    Buffer<Box<kDimensions>> boxes(runs);
    for (std::size_t run = 0; run < runs; ++run) {
        boxes[run] = boxOfRun(vertices, run);
        for (int d = 0; d < kDimensions; ++d) {
            centres[run].centre[d] = boxes[run].low[d] + boxes[run].high[d];
        }
        centres[run].run = static_cast<std::uint32_t>(run);
    }
    std::size_t size = 1;
    for (int level = 1; level < levels_; ++level) {
        size *= kEdgeLanes;
    }
    sortSubtrees(centres.begin(), centres.end(), size);
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        const bool isRun = i < runs;
        runs_[i] = isRun ? centres[i].run : 0;
        setLane(nodes_[i / kEdgeLanes], i % kEdgeLanes,
                isRun ? boxes[centres[i].run] : emptyBox<kDimensions>());
    }
    for (int level = 1; level < levels_; ++level) {
        fillParents(level);
    }
}

template <int kDimensions>
void EdgeBvh<kDimensions>::layOutLevels(std::size_t runs) {
    std::size_t total = 0;
    std::size_t size = runs;
    do {
        size = groupsOf(size);
        starts_[static_cast<std::size_t>(levels_)] = total;
        total += size;
        ++levels_;
    } while (size > 1);
    starts_[static_cast<std::size_t>(levels_)] = total;
    nodes_ = Buffer<Node>(total);
    runs_ = Buffer<std::uint32_t>(groupsOf(runs) * kEdgeLanes);
}

template <int kDimensions>
void EdgeBvh<kDimensions>::fillParents(int level) {
    for (std::size_t i = 0; i < sizeOf(level) * kEdgeLanes; ++i) {
        const bool isNode = i < sizeOf(level - 1);
        setLane(nodes_[start(level) + i / kEdgeLanes], i % kEdgeLanes,
                isNode ? boxOfNode(node(level - 1, i)) : emptyBox<kDimensions>());
    }
}

template class EdgeBvh<2>;
template class EdgeBvh<3>;

} // namespace qel
