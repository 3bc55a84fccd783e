#include "spatial/InPlaceStorage.h"

#include <algorithm>
#include <utility>

#include "platform/LargePages.h"

namespace qel {
namespace {

Buffer<InPlaceStorage::CacheLine> makeLines(std::size_t count) {
    Buffer<InPlaceStorage::CacheLine> lines(count);
    adviseLargePages(lines.data(), count * sizeof(InPlaceStorage::CacheLine));
    return lines;
}

} // namespace

// Twice the source is room for all usual results, and some lines more for the smallest. What
// remains of it ahead of the result is never touched, and systems give memory only to pages that
// are.
void* InPlaceStorage::makeSource(std::size_t bytes) {
    constexpr std::size_t kLineBytes = sizeof(CacheLine), kMinResult = 13;
    const std::size_t lines = (bytes + kLineBytes - 1) / kLineBytes;
    lines_ = makeLines(std::max(2 * lines, lines + kMinResult));
    return reinterpret_cast<unsigned char*>(lines_.end()) - bytes;
}

void InPlaceStorage::expect(std::size_t lines) {
    expected_ = lines;
    if (lines < lines_.size()) {
        result_ = lines_.end() - lines;
    } else {
        moveResult(lines);
    }
}

void InPlaceStorage::releaseSourceUntil(const void* place) {
    if (isInPlace()) {
        const auto* const end = static_cast<const unsigned char*>(place);
        const auto* const begin = reinterpret_cast<const unsigned char*>(result_);
        room_ = end < begin ? 0 : static_cast<std::size_t>(end - begin) / sizeof(CacheLine);
    }
}

void InPlaceStorage::moveResult(std::size_t lines) {
    const std::size_t room = std::max(lines + lines / 2, expected_);
    Buffer<CacheLine> moved = makeLines(room);
    std::copy(result_, result_ + size_, moved.data());
    if (source_.size() == 0) {
        source_ = std::move(lines_);
    }
    lines_ = std::move(moved);
    result_ = lines_.data();
    room_ = room;
}

} // namespace qel
