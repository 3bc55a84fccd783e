#ifndef QEL_SPATIAL_INPLACESTORAGE_H
#define QEL_SPATIAL_INPLACESTORAGE_H

/// @file
/// Memory in which a result is built over the source that it is made of.

#include <cstddef>

#include "platform/Buffer.h"

namespace qel {

/// Cache lines of memory for a result that is appended while its source is read from front to back.
///
/// The source lies at the end of the memory. The result begins so far ahead of it that it is
/// expected to end where the source does, and overwrites what has been read. It moves to memory of
/// its own where the source is too small for it, or where it would overwrite what has not been
/// read; the source stays where it is.
class InPlaceStorage {
public:
    struct alignas(64) CacheLine {
        unsigned char bytes[64];
    };

    InPlaceStorage() = default;
    InPlaceStorage(const InPlaceStorage&) = delete;
    InPlaceStorage& operator=(const InPlaceStorage&) = delete;

    /// Memory for the source, aligned to 4 bytes. To be called first, and once.
    void* makeSource(std::size_t bytes);
    /// Decides where the result begins. It may come to need more lines than these.
    void expect(std::size_t lines);
    /// Gives up the source in front of a place. What is behind stays as it is, however much is
    /// appended.
    void releaseSourceUntil(const void* place);
    /// Gives up the whole source, when nothing more is to be appended.
    void releaseSource() { source_ = Buffer<CacheLine>(); }

    /// Appends lines without values; returns the number of the first. May move the result.
    std::size_t append(std::size_t lines) {
        const std::size_t first = size_;
        if (first + lines > room_) {
            moveResult(first + lines);
        }
        size_ = first + lines;
        return first;
    }

    CacheLine* line(std::size_t number) const { return result_ + number; }

    /// True as long as the result lies where its source did.
    bool isInPlace() const { return result_ != lines_.data(); }

private:
    void moveResult(std::size_t lines);

    Buffer<CacheLine> lines_;
    Buffer<CacheLine> source_;    // the memory of the source, after the result has moved
    CacheLine* result_ = nullptr; // in lines_
    std::size_t size_ = 0;
    std::size_t expected_ = 0;
    std::size_t room_ = 0; // lines from the begin of the result to what must be kept
};

} // namespace qel

#endif
