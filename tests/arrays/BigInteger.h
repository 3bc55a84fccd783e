#ifndef QEL_TESTS_ARRAYS_BIGINTEGER_H
#define QEL_TESTS_ARRAYS_BIGINTEGER_H

// Integers of any size, to compute sums and squares of numbers exactly, as one does by hand.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace qel_test {

class BigInteger {
public:
    BigInteger() = default;

    static BigInteger of(std::uint64_t n) {
        BigInteger r;
        for (; n > 0; n /= kBase) {
            r.digits_.push_back(static_cast<std::int64_t>(n % kBase));
        }
        return r;
    }

    // A finite number in units of the smallest double, 2^-1074.
    static BigInteger unitsOf(double x) {
        constexpr int kUnit = 1074;
        int exponent = 0;
        std::frexp(x, &exponent);
        const int shift = std::max(exponent - 53 + kUnit, 0);
        BigInteger r;
        r.digits_.assign(static_cast<std::size_t>(shift / kBits), 0);
        auto rest = static_cast<std::int64_t>(std::ldexp(x, kUnit - shift));
        const std::int64_t factor = std::int64_t{1} << (shift % kBits);
        for (; rest != 0; rest /= kBase) {
            r.digits_.push_back(rest % kBase * factor);
        }
        r.carry();
        return r;
    }

    BigInteger& operator+=(const BigInteger& b) { return addMultiple(b, 1); }
    BigInteger& operator-=(const BigInteger& b) { return addMultiple(b, -1); }
    friend BigInteger operator+(BigInteger a, const BigInteger& b) { return a += b; }
    friend BigInteger operator-(BigInteger a, const BigInteger& b) { return a -= b; }

    friend BigInteger operator*(const BigInteger& a, const BigInteger& b) {
        BigInteger r;
        r.digits_.assign(a.digits_.size() + b.digits_.size(), 0);
        for (std::size_t i = 0; i < a.digits_.size(); ++i) {
            for (std::size_t j = 0; a.digits_[i] != 0 && j < b.digits_.size(); ++j) {
                r.digits_[i + j] += a.digits_[i] * b.digits_[j];
            }
        }
        r.carry();
        return r;
    }

    int sign() const {
        if (digits_.empty()) {
            return 0;
        }
        return digits_.back() < 0 ? -1 : 1;
    }

private:
    static constexpr int kBits = 24;
    static constexpr std::int64_t kBase = std::int64_t{1} << kBits;

    BigInteger& addMultiple(const BigInteger& b, std::int64_t factor) {
        digits_.resize(std::max(digits_.size(), b.digits_.size()));
        for (std::size_t i = 0; i < b.digits_.size(); ++i) {
            digits_[i] += factor * b.digits_[i];
        }
        carry();
        return *this;
    }

    // Digits from 0 to the base, but for the last, which has the sign and is not 0.
    void carry() {
        for (std::size_t i = 0; i + 1 < digits_.size() || (i < digits_.size() && isWide(i)); ++i) {
            std::int64_t over = digits_[i] / kBase;
            over -= digits_[i] % kBase < 0 ? 1 : 0;
            if (over != 0 && i + 1 == digits_.size()) {
                digits_.push_back(0);
            }
            digits_[i] -= over * kBase;
            if (over != 0) {
                digits_[i + 1] += over;
            }
        }
        while (!digits_.empty() && digits_.back() == 0) {
            digits_.pop_back();
        }
    }

    bool isWide(std::size_t i) const { return digits_[i] >= kBase || digits_[i] <= -kBase; }

    std::vector<std::int64_t> digits_; // lowest first
};

// True if x is numerator / denominator rounded to nearest, ties to even. The numerator is in units
// of the smallest double, the denominator is positive.
inline bool isRounded(double x, const BigInteger& numerator, const BigInteger& denominator) {
    const double inf = std::numeric_limits<double>::infinity();
    const BigInteger twice = numerator + numerator;
    const auto distance = [&](double neighbour) { // from the middle between x and the neighbour
        const BigInteger middle = BigInteger::unitsOf(x) + BigInteger::unitsOf(neighbour);
        return (twice - denominator * middle).sign();
    };
    const int below = distance(std::nextafter(x, -inf));
    const int above = distance(std::nextafter(x, inf));
    const double unit = std::nextafter(std::fabs(x), inf) - std::fabs(x);
    const bool isEven = std::fmod(x / unit, 2.0) == 0.0;
    return (below > 0 || (below == 0 && isEven)) && (above < 0 || (above == 0 && isEven));
}

} // namespace qel_test

#endif
