#ifndef QEL_POLYLINE_EXACTTERMS_H
#define QEL_POLYLINE_EXACTTERMS_H

/// @file
/// Sums and products of doubles without rounding, as terms whose sum is the exact value
/// (Shewchuk 1997, Adaptive precision floating-point arithmetic and fast robust geometric
/// predicates).
///
/// Products must neither overflow nor have bits below the least double.

#include <cstddef>

namespace qel {

/// high + low is the exact value; high is the value rounded.
struct TwoTerms {
    double high;
    double low;
};

/// TwoSum (Knuth 1969).
inline TwoTerms exactSum(double a, double b) {
    const double high = a + b;
    const double bPart = high - a;
    return {high, (a - (high - bPart)) + (b - bPart)};
}

/// Both halves have 26 bits (Dekker 1971). Their products are exact.
inline TwoTerms splitInHalves(double a) {
    constexpr double kSplitter = 134217729.0; // 2^27 + 1
    const double scaled = kSplitter * a;
    const double high = scaled - (scaled - a);
    return {high, a - high};
}

/// TwoProduct (Dekker 1971).
inline TwoTerms exactProduct(double a, double b) {
    const double high = a * b;
    const TwoTerms x = splitInHalves(a), y = splitInHalves(b);
    const double error = ((high - x.high * y.high) - x.low * y.high) - x.high * y.low;
    return {high, x.low * y.low - error};
}

/// A number as a sum of doubles that do not overlap, the least first, zeros left out: what precedes
/// a term is less than half of it. Adding a number keeps it so (theorem 10).
///
/// @tparam Terms  std::vector<double>, or a container of fixed capacity with the same members
template <typename Terms>
class Expansion {
public:
    void add(double term) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < terms_.size(); ++i) {
            const TwoTerms both = exactSum(term, terms_[i]);
            term = both.high;
            if (both.low != 0.0) {
                terms_[kept++] = both.low;
            }
        }
        terms_.resize(kept);
        if (term != 0.0) {
            terms_.push_back(term);
        }
    }
    void add(const TwoTerms& terms) {
        add(terms.low);
        add(terms.high);
    }

    /// To a relative error of a few machine epsilons; the sign is right.
    double rounded() const {
        double value = 0.0;
        for (std::size_t i = 0; i < terms_.size(); ++i) {
            value += terms_[i];
        }
        return value;
    }

private:
    Terms terms_;
};

} // namespace qel

#endif
