#ifndef QEL_SPATIAL_KEYRUNS_H
#define QEL_SPATIAL_KEYRUNS_H

/// @file
/// Cuts sorted keys into runs of up to a number of keys, by their bits.
///
/// The plain way is to cut all keys where their highest bit changes, the parts where the next bit
/// does, and so on, as long as a part holds more keys than it may. That costs a search for every
/// cut. Here the runs are found one after the other, each by two comparisons. A run is a part that
/// is small enough, of a part that is not. Whatever holds the keys before and at its beginning was
/// cut, or they would lie in one run; of the parts that begin where the run does, it is the largest
/// that does not reach the key `capacity` places on.

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace qel {

/// The number of bits that it takes to spell a value: 0 for 0.
inline int bitWidth(std::uint64_t value) {
#if defined(__GNUC__) || defined(__clang__)
    return value == 0 ? 0 : 64 - __builtin_clzll(value);
#else
    int width = 0;
    for (; value != 0; value >>= 1) {
        ++width;
    }
    return width;
#endif
}

/// Goes from run to run. Keys of runs that were passed may be overwritten.
class KeyRuns {
public:
    /// @param keys       ascending
    /// @param leastBits  a run is not cut where less than this number of lowest bits would be free
    /// @param mostBits   a number of bits that all keys fit
    KeyRuns(const std::uint32_t* keys, std::size_t count, std::size_t capacity, int leastBits,
            int mostBits)
        : keys_(keys),
          count_(count),
          capacity_(capacity),
          leastBits_(leastBits),
          bitsBehind_(mostBits),
          mostBits_(mostBits) {}

    /// Goes on to the next run, the first one to begin with; false behind the last.
    bool next() {
        begin_ = end_;
        if (begin_ == count_) {
            return false;
        }
        const std::uint32_t key = keys_[begin_];
        const int needed =
            capacity_ < count_ - begin_ ? bitWidth(key ^ keys_[begin_ + capacity_]) - 1 : mostBits_;
        isTooLong_ = needed < leastBits_;
        freeBits_ = std::max(std::min(needed, bitsBehind_), leastBits_);
        goToEnd(key | static_cast<std::uint32_t>((std::uint64_t{1} << freeBits_) - 1));
        return true;
    }

    std::size_t begin() const { return begin_; }
    std::size_t end() const { return end_; }
    /// The number of lowest bits in which the keys of the run may differ: no others agree in those
    /// above.
    int freeBits() const { return freeBits_; }
    /// True if the run holds more keys than `capacity`, as it is not to be cut.
    bool isTooLong() const { return isTooLong_; }

private:
    void goToEnd(std::uint32_t farthest) {
        end_ = begin_ + 1;
        while (end_ < count_ && keys_[end_] <= farthest) {
            ++end_;
        }
        if (end_ < count_) {
            bitsBehind_ = bitWidth(keys_[end_ - 1] ^ keys_[end_]) - 1;
        }
    }

    const std::uint32_t* keys_;
    std::size_t count_;
    std::size_t capacity_;
    int leastBits_;
    std::size_t begin_ = 0, end_ = 0;
    int freeBits_ = 0;
    int bitsBehind_; // free bits of the largest part that begins at the end of the run
    int mostBits_;
    bool isTooLong_ = false;
};

} // namespace qel

#endif
