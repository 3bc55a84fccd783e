#include "spatial/BoxTree.h"

#include <algorithm>
#include <utility>

namespace qel {

void BoxTree::reserve(std::size_t nodes, std::size_t blocks) {
    lines_ = Buffer<Line>((nodes * sizeof(BoxNode) + blocks * sizeof(PointBlock)) / sizeof(Line));
    size_ = 0;
}

void BoxTree::grow() {
    Buffer<Line> wider(size_ + size_ / 2);
    std::copy(lines_.begin(), lines_.end(), wider.begin());
    lines_ = std::move(wider);
}

} // namespace qel
