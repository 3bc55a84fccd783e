#include "curve/ParameterWalk.h"

#include <algorithm>
#include <cstdint>

#include "curve/BracketMerge.h"
#include "curve/BracketWindows.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kCount = BracketBlock::kCount;
constexpr std::size_t kMergePays = 8; // s-values for each parameter

// All of them are compared, so that lanes help; words as wide as the values keep the lanes whole.
struct OrderKernel {
    QEL_KERNEL static void run(const double* s, std::size_t n, double step, bool* loose,
                               bool* strict) {
        std::uint64_t notLoose = 0;
        std::uint64_t notStrict = 0;
        for (std::size_t i = 1; i < n; ++i) {
            notLoose |= s[i - 1] <= s[i] ? std::uint64_t{0} : std::uint64_t{1};
            notStrict |= s[i] - s[i - 1] >= step ? std::uint64_t{0} : std::uint64_t{1};
        }
        *loose = notLoose == 0;
        *strict = notStrict == 0;
    }
};

} // namespace

ParameterWalk::Order ParameterWalk::orderOf(const std::vector<double>& svalues) {
    bool loose = false;
    bool strict = false;
    onVectorUnit<OrderKernel>(svalues.data(), svalues.size(), kSurelyDistinct, &loose, &strict);
    return strict ? Order::strict : loose ? Order::loose : Order::none;
}

std::size_t ParameterWalk::firstAbove(double s, std::size_t from) const {
    std::size_t step = 1;
    while (from + step < svalues_.size() && s_[from + step] <= s) {
        from += step;
        step *= 2;
    }
    const double* const end = s_ + std::min(from + step + 1, svalues_.size());
    return static_cast<std::size_t>(std::upper_bound(s_ + from, end, s) - s_);
}

bool ParameterWalk::merge(const double* parameters, std::size_t above, BracketBlock& block) {
    const double last = parameters[kCount - 1];
    if (s_[0] < 0.0 || !(last < svalues_.back()) || !isWorthMerging(parameters)) {
        return false;
    }
    const std::size_t farthest = above + kMergePays * kCount;
    if (farthest < svalues_.size() && !(last < s_[farthest])) {
        return false;
    }
    hi_ = firstAbove(last, above);
    mergeBrackets(s_ + above, hi_ - above, parameters, block);
    return true;
}

std::size_t ParameterWalk::pointsOfBlock(const double* parameters, std::size_t count, Point* out) {
    const double first = parameters[0];
    if (!(first > svalues_.front()) || !(first < svalues_.back())) {
        return 0;
    }
    BracketBlock block;
    const std::size_t above = firstAbove(first, s_[hi_ - 1] <= first ? hi_ : 1);
    const std::size_t found = findInWindows(s_, svalues_.size(), above, parameters, count, block);
    if (found > 0) {
        hi_ = block.above(found - 1);
        block.interpolate(p_, found, out);
        return found;
    }
    if (count >= kCount && merge(parameters, above, block)) {
        block.interpolate(p_ + above, kCount, out);
        return kCount;
    }
    return 0;
}

void ParameterWalk::pointsAt(const double* parameters, std::size_t count, Point* out) {
    const auto parameterAt = [parameters](std::size_t k) { return parameters[k]; };
    const auto emit = [out](std::size_t k, const Point& p) { out[k] = p; };
    std::size_t k = 0;
    while (order_ == Order::strict && count - k >= kWindowGroup) {
        const std::size_t found = pointsOfBlock(parameters + k, count - k, out + k);
        k += found;
        if (found < kCount) { // a group that no window holds, or a list not made for blocks
            const std::size_t end = std::min(k + (found > 0 ? kWindowGroup : kCount), count);
            forEach(k, end, parameterAt, emit);
            k = end;
        }
    }
    forEach(k, count, parameterAt, emit);
}

Point ParameterWalk::at(double s) {
    return pointAtParameter(points_, svalues_, s, hi_);
}

} // namespace qel
