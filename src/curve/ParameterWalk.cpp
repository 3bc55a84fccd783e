#include "curve/ParameterWalk.h"

#include <algorithm>
#include <cstdint>

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

const double* ParameterWalk::findBrackets(const double* parameters, BracketBlock& block) {
    const double first = parameters[0];
    const double last = parameters[kCount - 1];
    if (!(first > svalues_.front()) || !(last < svalues_.back()) || !isWorthMerging(parameters)) {
        return nullptr;
    }
    const std::size_t begin = firstAbove(first, s_[hi_ - 1] <= first ? hi_ : 1);
    const std::size_t farthest = begin + kMergePays * kCount;
    if (farthest < svalues_.size() && !(last < s_[farthest])) {
        return nullptr;
    }
    const std::size_t end = firstAbove(last, begin);
    block.setParameters(parameters);
    mergeBrackets(s_ + begin, end - begin, block);
    hi_ = end;
    return s_ + begin;
}

Point ParameterWalk::at(double s) {
    return pointAtParameter(points_, svalues_, s, hi_);
}

} // namespace qel
