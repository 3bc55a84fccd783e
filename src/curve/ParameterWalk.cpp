#include "curve/ParameterWalk.h"

namespace qel {

bool ParameterWalk::inOrder(const std::vector<double>& svalues) {
    bool ordered = true;
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        ordered &= svalues.data()[i - 1] <= svalues.data()[i]; // all of them, so that lanes help
    }
    return ordered;
}

Point ParameterWalk::at(double s) {
    if (s > svalues_.back()) {
        s = svalues_.back(); // where all s-values are equal, the first point answers
    }
    if (!(s > svalues_.front())) {
        return points_.front();
    }
    if (!(s < svalues_.back())) {
        return points_.back();
    }
    const auto [lo, hi] = bracketOf(svalues_, s);
    hi_ = hi;
    return pointBetween(points_[lo], points_[hi], svalues_[lo], svalues_[hi], s);
}

} // namespace qel
