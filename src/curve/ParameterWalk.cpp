#include "curve/ParameterWalk.h"

#include <algorithm>
#include <cstdint>

#include "curve/BracketMerge.h"
#include "curve/BracketSearch.h"
#include "curve/BracketWindows.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kCount = BracketBlock::kCount;

// Up to so many s-values for each parameter:
constexpr std::size_t kWalkPays = 6;
constexpr std::size_t kMergePays = 8;

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

// True if a block of parameters comes at about even steps: among the s-values of a smooth curve
// those have brackets that a plain walk foresees. By a sample; at random, hardly any list passes.
bool lookEven(const double* parameters) {
    constexpr std::size_t kLast = kCount - 1;
    constexpr std::size_t kSample = 32;
    const double mean = (parameters[kLast] - parameters[0]) / kLast;
    for (std::size_t k = 0; k < kLast; k += kSample) {
        const double step = parameters[k + 1] - parameters[k];
        if (!(step <= 2.0 * mean && 2.0 * step >= mean)) {
            return false;
        }
    }
    return true;
}

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

bool ParameterWalk::isWithin(double last, std::size_t above, std::size_t svaluesForEach) const {
    const std::size_t farthest = above + svaluesForEach * kCount;
    return farthest >= svalues_.size() || last < s_[farthest];
}

bool ParameterWalk::merge(const double* parameters, std::size_t above, BracketBlock& block) {
    const double last = parameters[kCount - 1];
    if (s_[0] < 0.0 || !isInside(last) || !isWithin(last, above, kMergePays) ||
        !areSorted(parameters)) {
        return false;
    }
    hi_ = firstAbove(last, above);
    mergeBrackets(s_ + above, hi_ - above, parameters, block);
    return true;
}

std::size_t ParameterWalk::pointsOfBlock(const double* parameters, std::size_t count, Point* out) {
    const double first = parameters[0];
    BracketBlock block;
    if (isInside(first)) {
        const std::size_t above = firstAbove(first, s_[hi_ - 1] <= first ? hi_ : 1);
        const std::size_t found =
            findInWindows(s_, svalues_.size(), above, parameters, count, block);
        if (found > 0) {
            hi_ = block.above(found - 1);
            block.interpolate(p_, found, out);
            return found;
        }
        if (count < kCount ||
            (lookEven(parameters) && isWithin(parameters[kCount - 1], above, kWalkPays))) {
            return 0;
        }
        if (merge(parameters, above, block)) {
            block.interpolate(p_ + above, kCount, out);
            return kCount;
        }
    }
    return count < kCount ? 0 : pointsBySearch(parameters, block, out);
}

std::size_t ParameterWalk::pointsBySearch(const double* parameters, BracketBlock& block,
                                          Point* out) {
    const std::size_t found = searchBrackets(s_, svalues_.size(), parameters, kCount, block);
    block.interpolate(p_, found, out);
    for (std::size_t k = 0; k < found; ++k) {
        if (!isInside(parameters[k])) {
            out[k] = at(parameters[k]);
        }
    }
    return found;
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
