#include "spatial/BoxTree.h"

#include <algorithm>
#include <utility>

namespace qel {
namespace {

constexpr std::size_t linesFor(std::size_t bytes) {
    return (bytes + 63) / 64;
}

} // namespace

// Twice the source is room for all trees but those of hardly filled blocks. What remains of it
// ahead of the tree is never touched, and so is no memory yet.
void* BoxTree::makeSourceRoom(std::size_t bytes) {
    lines_ = Buffer<Line>(2 * linesFor(bytes) + linesFor(sizeof(BoxNode) + sizeof(PointBlock)));
    return reinterpret_cast<unsigned char*>(lines_.end()) - bytes;
}

void BoxTree::reserve(std::size_t nodes, std::size_t blocks) {
    expected_ = linesFor(nodes * sizeof(BoxNode) + blocks * sizeof(PointBlock));
    if (expected_ < lines_.size()) {
        begin_ = lines_.end() - expected_;
    } else {
        makeRoom(expected_);
    }
}

void BoxTree::keepSourceFrom(const void* place) {
    if (isInPlaceOfSource()) {
        const auto* const end = static_cast<const unsigned char*>(place);
        const auto* const begin = reinterpret_cast<const unsigned char*>(begin_);
        room_ = end < begin ? 0 : static_cast<std::size_t>(end - begin) / sizeof(Line);
    }
}

void BoxTree::makeRoom(std::size_t lineCount) {
    const std::size_t room = std::max(lineCount, expected_);
    Buffer<Line> lines(room);
    std::copy(begin_, begin_ + size_, lines.data());
    if (source_.size() == 0) {
        source_ = std::move(lines_);
    }
    lines_ = std::move(lines);
    begin_ = lines_.data();
    room_ = room;
}

} // namespace qel
