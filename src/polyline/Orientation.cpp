#include "polyline/Orientation.h"

#include <cstddef>

#include "polyline/ExactTerms.h"

namespace qel {
namespace {

// (a - b) (c - d) to a relative error below 2^-103, as two terms.
TwoTerms productOfDifferences(double a, double b, double c, double d) {
    const TwoTerms x = exactSum(a, -b), y = exactSum(c, -d);
    const TwoTerms main = exactProduct(x.high, y.high);
    return {main.high, main.low + (x.high * y.low + x.low * y.high)};
}

// The terms of a determinant, without allocation.
class TwelveTerms {
public:
    std::size_t size() const { return size_; }
    double& operator[](std::size_t i) { return terms_[i]; }
    double operator[](std::size_t i) const { return terms_[i]; }
    void resize(std::size_t size) { size_ = size; }
    void push_back(double term) { terms_[size_++] = term; }

private:
    double terms_[12] = {};
    std::size_t size_ = 0;
};

} // namespace

double orientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
    const TwoTerms left = productOfDifferences(a.x, c.x, b.y, c.y);
    const TwoTerms right = productOfDifferences(a.y, c.y, b.x, c.x);
    const TwoTerms highs = exactSum(left.high, -right.high);
    const double difference = highs.high + (highs.low + (left.low - right.low));
    // What cancels leaves 53 bits of some 100.
    constexpr double kMinShare = 0x1p-48;
    const bool isAccurate =
        std::fabs(difference) >= kMinShare * (std::fabs(left.high) + std::fabs(right.high));
    return isAccurate ? difference : exactOrientation(a, b, c);
}

double exactOrientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
    Expansion<TwelveTerms> determinant;
    determinant.add(exactProduct(a.x, b.y));
    determinant.add(exactProduct(-a.y, b.x));
    determinant.add(exactProduct(b.x, c.y));
    determinant.add(exactProduct(-b.y, c.x));
    determinant.add(exactProduct(c.x, a.y));
    determinant.add(exactProduct(-c.y, a.x));
    return determinant.rounded();
}

} // namespace qel
