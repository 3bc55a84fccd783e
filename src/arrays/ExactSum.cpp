#include "arrays/ExactSum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "platform/FloatBits.h"

namespace qel {
namespace {

constexpr std::size_t kLimbBits = 64;

// A number as significand * 2^exponent, a multiple of the lowest bit of its type.
struct Parts {
    std::int64_t significand;
    int exponent;
};

template <typename T>
Parts partsOf(T value) {
    constexpr int kFractionBits = std::numeric_limits<T>::digits - 1;
    constexpr std::int64_t kOne = std::int64_t{1} << kFractionBits;
    const std::int64_t bits = signedBitsOf(std::fabs(value));
    const auto field = static_cast<int>(bits >> kFractionBits);
    const std::int64_t significand = (bits & (kOne - 1)) | (field == 0 ? 0 : kOne);
    return {value < 0 ? -significand : significand,
            std::max(field, 1) - 1 + ExactFormat<T>::kSumUnit};
}

// limb + value + carry; the carry, 0 or 1, becomes that of the sum.
std::uint64_t addWithCarry(std::uint64_t limb, std::uint64_t value, std::uint64_t& carry) {
    const std::uint64_t partial = limb + value;
    const std::uint64_t sum = partial + carry;
    carry = static_cast<std::uint64_t>(partial < limb) | static_cast<std::uint64_t>(sum < partial);
    return sum;
}

bool isNegative(const FixedPoint& number) {
    return (number.limbs[number.count - 1] >> (kLimbBits - 1)) != 0;
}

// A natural number in limbs of 32 bits, lowest first: wide enough for the square of a sum and for a
// sum of squares times a count, both with digits behind the point.
class Natural {
public:
    // Limbs behind the point: of any quotient by two counts, 64 bits or more remain.
    static constexpr std::size_t kFractionLimbs = 6;
    static constexpr int kFractionBits = 32 * kFractionLimbs;

    Natural() = default;

    explicit Natural(std::uint64_t n) { set(0, n); }

    // The magnitude of a number, in units of the limb `point`.
    Natural(const FixedPoint& number, std::size_t point) {
        const bool negative = isNegative(number);
        std::uint64_t carry = negative ? 1 : 0;
        for (std::size_t i = 0; i < number.count; ++i) {
            const std::uint64_t limb = number.limbs[i];
            set(point + 2 * i, addWithCarry(negative ? ~limb : limb, 0, carry));
        }
    }

    static Natural product(const Natural& a, const Natural& b) {
        Natural r;
        for (std::size_t i = 0; i < kLimbs; ++i) {
            std::uint64_t carry = 0;
            for (std::size_t j = 0; a.limbs_[i] != 0 && i + j < kLimbs; ++j) {
                carry += std::uint64_t{a.limbs_[i]} * b.limbs_[j] + r.limbs_[i + j];
                r.limbs_[i + j] = static_cast<std::uint32_t>(carry);
                carry >>= kBits;
            }
        }
        return r;
    }

    // The other is not larger.
    void subtract(const Natural& other) {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < kLimbs; ++i) {
            const std::uint64_t difference = std::uint64_t{limbs_[i]} - other.limbs_[i] - borrow;
            limbs_[i] = static_cast<std::uint32_t>(difference);
            borrow = difference >> (2 * kBits - 1);
        }
    }

    // Long division, bit by bit: the divisor may have all 64. Remembers whether a remainder is cut
    // off.
    void divideBy(std::uint64_t divisor) {
        std::uint64_t remainder = 0;
        for (std::size_t bit = length(); bit-- > 0;) {
            const bool overflows = (remainder >> (kLimbBits - 1)) != 0;
            remainder = (remainder << 1) | static_cast<std::uint64_t>(hasBit(bit));
            const bool fits = overflows || remainder >= divisor;
            remainder -= fits ? divisor : 0;
            const std::uint32_t mask = std::uint32_t{1} << (bit % kBits);
            limbs_[bit / kBits] = (limbs_[bit / kBits] & ~mask) | (fits ? mask : 0);
        }
        isCut_ = isCut_ || remainder != 0;
    }

    // The number times 2^unit, rounded to nearest, ties to even. It has 64 bits or is 0.
    double rounded(int unit) const {
        constexpr int kDigits = std::numeric_limits<double>::digits;
        constexpr int kLowestExponent = std::numeric_limits<double>::min_exponent - kDigits;
        const std::size_t top = length();
        if (top == 0) {
            return 0.0;
        }
        const int exponent = std::max(static_cast<int>(top) + unit - kDigits, kLowestExponent);
        const auto cut = static_cast<std::size_t>(exponent - unit);
        std::uint64_t kept = 0;
        for (std::size_t bit = top; bit-- > cut;) {
            kept = (kept << 1) | static_cast<std::uint64_t>(hasBit(bit));
        }
        const bool isOdd = (kept & 1) != 0;
        if (hasBit(cut - 1) && (isOdd || isCut_ || hasBitsBelow(cut - 1))) {
            ++kept;
        }
        return std::ldexp(static_cast<double>(kept), exponent);
    }

private:
    static constexpr std::size_t kBits = 32;
    static constexpr std::size_t kLimbs =
        4 * ExactFormat<double>::kSumLimbs + kFractionLimbs + sizeof(std::uint64_t) / 4;

    void set(std::size_t i, std::uint64_t both) {
        limbs_[i] = static_cast<std::uint32_t>(both);
        limbs_[i + 1] = static_cast<std::uint32_t>(both >> kBits);
    }

    bool hasBit(std::size_t bit) const { return ((limbs_[bit / kBits] >> (bit % kBits)) & 1) != 0; }

    bool hasBitsBelow(std::size_t end) const {
        const std::uint32_t below = (std::uint32_t{1} << (end % kBits)) - 1;
        return (limbs_[end / kBits] & below) != 0 ||
               std::any_of(limbs_.data(), limbs_.data() + end / kBits,
                           [](std::uint32_t limb) { return limb != 0; });
    }

    // Without leading zeros.
    std::size_t length() const {
        std::size_t limb = kLimbs;
        while (limb > 0 && limbs_[limb - 1] == 0) {
            --limb;
        }
        std::size_t bits = limb * kBits;
        while (bits > 0 && !hasBit(bits - 1)) {
            --bits;
        }
        return bits;
    }

    std::array<std::uint32_t, kLimbs> limbs_ = {};
    bool isCut_ = false;
};

} // namespace

void FixedPointSum::add(std::int64_t value, int exponent) {
    const auto shift = static_cast<std::size_t>(exponent - unit_);
    const std::size_t limb = shift / kLimbBits;
    const std::size_t bits = shift % kLimbBits;
    const auto word = static_cast<std::uint64_t>(value);
    const std::uint64_t sign = value < 0 ? ~std::uint64_t{0} : 0;
    const std::uint64_t high = bits == 0 ? sign : (word >> (kLimbBits - bits)) | (sign << bits);
    std::uint64_t carry = 0;
    limbs_[limb] = addWithCarry(limbs_[limb], word << bits, carry);
    limbs_[limb + 1] = addWithCarry(limbs_[limb + 1], high, carry);
    for (std::size_t i = limb + 2; i < count_ && sign + carry != 0; ++i) {
        limbs_[i] = addWithCarry(limbs_[i], sign, carry);
    }
}

template <typename T>
void FixedPointSum::addNumber(T value) {
    const Parts parts = partsOf(value);
    add(parts.significand, parts.exponent);
}

template <typename T>
void FixedPointSum::addSquare(T value) {
    constexpr int kLowBits = 27; // of at most 53, so that products have at most 54
    const Parts parts = partsOf(std::fabs(value));
    const std::int64_t low = parts.significand & ((std::int64_t{1} << kLowBits) - 1);
    const std::int64_t high = parts.significand >> kLowBits;
    add(low * low, 2 * parts.exponent);
    if (high != 0) {
        add(2 * high * low, 2 * parts.exponent + kLowBits);
        add(high * high, 2 * (parts.exponent + kLowBits));
    }
}

void FixedPointSum::add(const FixedPoint& other) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < count_; ++i) {
        limbs_[i] = addWithCarry(limbs_[i], other.limbs[i], carry);
    }
}

double rounded(const FixedPoint& number) {
    return roundedMean(number, 1);
}

double roundedMean(const FixedPoint& number, std::uint64_t count) {
    Natural quotient(number, Natural::kFractionLimbs);
    quotient.divideBy(count);
    const double magnitude = quotient.rounded(number.unit - Natural::kFractionBits);
    return isNegative(number) ? -magnitude : magnitude;
}

double roundedVariance(const FixedPoint& sum, const FixedPoint& squares, std::uint64_t count) {
    // (count * squares - sum^2) / count^2
    const Natural s(sum, Natural::kFractionLimbs / 2);
    Natural quotient = Natural::product(Natural(count), Natural(squares, Natural::kFractionLimbs));
    quotient.subtract(Natural::product(s, s));
    quotient.divideBy(count);
    quotient.divideBy(count);
    return quotient.rounded(squares.unit - Natural::kFractionBits);
}

template void FixedPointSum::addNumber(float);
template void FixedPointSum::addNumber(double);
template void FixedPointSum::addSquare(float);
template void FixedPointSum::addSquare(double);

} // namespace qel
