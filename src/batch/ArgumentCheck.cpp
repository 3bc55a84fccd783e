#include "batch/ArgumentCheck.h"

#include <cassert>
#include <numeric>

#include <qel/QELException.h>

namespace qel {

StridedRange::StridedRange(const void* first, std::size_t count, std::ptrdiff_t stride,
                           std::size_t width)
    : count_(count), width_(width) {
    if (count == 0) {
        return;
    }
    const auto start = reinterpret_cast<std::uintptr_t>(first);
    step_ = stride < 0 ? std::uintptr_t{0} - static_cast<std::uintptr_t>(stride)
                       : static_cast<std::uintptr_t>(stride);
    const std::uintptr_t extent = (count - 1) * step_;
    low_ = stride < 0 ? start - extent : start;
    high_ = low_ + extent + width;
}

bool StridedRange::overlapsItself() const {
    return count_ > 1 && step_ < width_;
}

bool StridedRange::overlaps(const StridedRange& other) const {
    if (count_ == 0 || other.count_ == 0 || high_ <= other.low_ || other.high_ <= low_) {
        return false;
    }
    // All groups of both lie at their first one's place modulo a common divisor of the steps. A
    // range of one group has no step, and none to divide.
    const std::uintptr_t divisor =
        std::gcd(count_ > 1 ? step_ : 0, other.count_ > 1 ? other.step_ : 0);
    if (divisor == 0) {
        return true;
    }
    const std::uintptr_t behind = low_ <= other.low_
                                      ? (other.low_ - low_) % divisor
                                      : (divisor - (low_ - other.low_) % divisor) % divisor;
    return behind < width_ || divisor - behind < other.width_;
}

void ArgumentCheck::refuse(const std::string& reason) const {
    throw data::invalid(className_, methodName_, reason, argumentError);
}

void ArgumentCheck::refuseSize(const char* name, std::size_t size, std::size_t expected) const {
    refuse(std::string("The output ") + name + " has " + std::to_string(size) + " elements where " +
           std::to_string(expected) + " are needed.");
}

void ArgumentCheck::addInput(const StridedRange& range) {
    assert(count_ < kMaxRanges);
    ranges_[count_++] = {range, nullptr};
}

void ArgumentCheck::addOutput(const char* name, const StridedRange& range) {
    if (range.overlapsItself()) {
        refuse(std::string("The elements of the output ") + name + " share memory.");
    }
    for (std::size_t i = 0; i < count_; ++i) {
        const Named& other = ranges_[i];
        if (range.overlaps(other.range)) {
            refuse(std::string("The output ") + name + " shares memory with " +
                   (other.name == nullptr ? std::string("an input.")
                                          : std::string("the output ") + other.name + "."));
        }
    }
    assert(count_ < kMaxRanges);
    ranges_[count_++] = {range, name};
}

} // namespace qel
