#include <qel/ViewStatistics.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <qel/QELException.h>

#include "arrays/ExactSum.h"
#include "arrays/StatisticsBuilder.h"
#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::uint64_t kMaxNumbers = std::numeric_limits<std::uint64_t>::max();

// -- Checks ----

void checkIndices(std::uint64_t firstIndex, std::size_t n) {
    if (n > 0 && n - 1 > kMaxNumbers - firstIndex) {
        throw data::invalid("ViewStatistics", "constructor",
                            "The indices of " + std::to_string(n) + " elements from " +
                                std::to_string(firstIndex) + " on exceed 64 bits.",
                            argumentError);
    }
}

void checkCount(const char* method, std::uint64_t count, std::uint64_t more) {
    if (more > kMaxNumbers - count) {
        throw data::invalid("ViewStatistics", method,
                            "The count of " + std::to_string(count) + " and " +
                                std::to_string(more) + " elements exceeds 64 bits.",
                            argumentError);
    }
}

// -- Extremes ----

// Of two equal numbers, whether the first one is the extreme: that of the lower index. Zeros may
// differ at the same index of two fields, and either order gives the negative one.
template <typename T>
bool comesFirst(T value, std::uint64_t index, T other, std::uint64_t otherIndex) {
    return index < otherIndex ||
           (index == otherIndex && std::signbit(value) && !std::signbit(other));
}

template <typename T>
bool isLess(T value, std::uint64_t index, T other, std::uint64_t otherIndex) {
    return value < other || (value == other && comesFirst(value, index, other, otherIndex));
}

template <typename T>
bool isGreater(T value, std::uint64_t index, T other, std::uint64_t otherIndex) {
    return value > other || (value == other && comesFirst(value, index, other, otherIndex));
}

// -- Fields ----

// Calls take(first, n) for each block of a field, until progress says stop.
template <typename Take>
void forBlocks(std::size_t size, const Progress& progress, const Take& take) {
    constexpr std::size_t kBetweenReports = 256 * kSumBlock;
    for (std::size_t first = 0; first < size; first += kSumBlock) {
        const bool reports = progress && first > 0 && first % kBetweenReports == 0;
        if (reports && !progress(static_cast<double>(first) / static_cast<double>(size))) {
            return;
        }
        take(first, std::min(kSumBlock, size - first));
    }
    if (progress) {
        progress(1.0);
    }
}

// The stride is a constant here, so that lanes are read whole and shuffled.
template <typename T>
struct EveryThirdKernel {
    QEL_KERNEL static void run(const char* from, std::size_t n, T* to) {
        for (std::size_t i = 0; i < n; ++i) {
            std::memcpy(to + i, from + 3 * i * sizeof(T), sizeof(T));
        }
    }
};

template <typename T>
using Block = std::array<T, kSumBlock>;

// A block of a view: where it lies, or side by side in a copy. Returns its first byte.
template <typename T>
const char* readBlock(const ScalarView<const T>& view, std::size_t first, std::size_t n,
                      Block<T>& copy) {
    const std::ptrdiff_t stride = view.stride();
    const char* from =
        reinterpret_cast<const char*>(view.data()) + static_cast<std::ptrdiff_t>(first) * stride;
    if (view.isContiguous()) {
        return from;
    }
    if (stride == 3 * static_cast<std::ptrdiff_t>(sizeof(T))) {
        onVectorUnit<EveryThirdKernel<T>>(from, n, copy.data());
    } else {
        for (std::size_t i = 0; i < n; ++i) {
            std::memcpy(copy.data() + i, from + static_cast<std::ptrdiff_t>(i) * stride, sizeof(T));
        }
    }
    return reinterpret_cast<const char*>(copy.data());
}

// -- Triplets ----

constexpr std::size_t kQuantities = 4; // x, y, z, length

template <typename T>
using Quantities = std::array<T, kQuantities>;

// A triplet that has an undefined component, or else a NaN, is so in all quantities. By masks,
// since lanes cannot branch.
template <typename T>
QEL_KERNEL Quantities<T> quantitiesOf(T x, T y, T z) {
    using Mask = SignedBits<T>;
    constexpr T kUndefined = std::numeric_limits<T>::max();
    constexpr T kNotANumber = std::numeric_limits<T>::quiet_NaN();
    const Mask isUndefined = -static_cast<Mask>(x == kUndefined) |
                             -static_cast<Mask>(y == kUndefined) |
                             -static_cast<Mask>(z == kUndefined);
    const Mask isNotANumber = -static_cast<Mask>(std::isnan(x)) |
                              -static_cast<Mask>(std::isnan(y)) | -static_cast<Mask>(std::isnan(z));
    const Mask kept = ~(isUndefined | isNotANumber);
    const Mask mark = (isUndefined & signedBitsOf(kUndefined)) |
                      (isNotANumber & ~isUndefined & signedBitsOf(kNotANumber));
    const auto marked = [=](T value) QEL_KERNEL_LAMBDA {
        return numberOf<T>((signedBitsOf(value) & kept) | mark);
    };
    return {marked(x), marked(y), marked(z), marked(std::sqrt(x * x + y * y + z * z))};
}

template <typename T>
struct QuantitiesKernel {
    QEL_KERNEL static void run(const char* x, const char* y, const char* z, std::size_t n,
                               std::array<Block<T>, kQuantities>* quantities) {
        T* const toX = (*quantities)[0].data();
        T* const toY = (*quantities)[1].data();
        T* const toZ = (*quantities)[2].data();
        T* const toLength = (*quantities)[3].data();
        for (std::size_t i = 0; i < n; ++i) {
            T t[3];
            std::memcpy(&t[0], x + i * sizeof(T), sizeof(T));
            std::memcpy(&t[1], y + i * sizeof(T), sizeof(T));
            std::memcpy(&t[2], z + i * sizeof(T), sizeof(T));
            const Quantities<T> all = quantitiesOf(t[0], t[1], t[2]);
            toX[i] = all[0];
            toY[i] = all[1];
            toZ[i] = all[2];
            toLength[i] = all[3];
        }
    }
};

} // namespace

// -- Statistics of numbers ----

template <typename T>
ScalarStatistics<T>::ScalarStatistics()
    : min_(std::numeric_limits<T>::quiet_NaN()), max_(std::numeric_limits<T>::quiet_NaN()) {
    static_assert(std::is_trivially_copyable<ScalarStatistics>::value,
                  "can be sent to another process");
    static_assert(sizeof(ScalarStatistics) ==
                      (kSumLimbs + kSquareLimbs + 5) * sizeof(std::uint64_t) + 2 * sizeof(T),
                  "has no padding, so that equal statistics have equal bytes");
}

template <typename T>
ScalarStatistics<T>::ScalarStatistics(const ScalarView<const T>& values, std::uint64_t firstIndex,
                                      const Progress& progress)
    : ScalarStatistics() {
    checkIndices(firstIndex, values.size());
    Block<T> copy;
    StatisticsBuilder<T> builder(*this, firstIndex);
    forBlocks(values.size(), progress, [&](std::size_t first, std::size_t n) {
        builder.add(readBlock(values, first, n, copy), n, first);
    });
    builder.finish([&](std::size_t i) { return values[i]; });
}

template <typename T>
void ScalarStatistics<T>::merge(const ScalarStatistics& other) {
    checkCount("merge", count_, other.count_);
    if (other.getValid() > 0) {
        const bool isFirst = getValid() == 0;
        if (isFirst || isLess(other.min_, other.minIndex_, min_, minIndex_)) {
            min_ = other.min_;
            minIndex_ = other.minIndex_;
        }
        if (isFirst || isGreater(other.max_, other.maxIndex_, max_, maxIndex_)) {
            max_ = other.max_;
            maxIndex_ = other.maxIndex_;
        }
    }
    count_ += other.count_;
    undefined_ += other.undefined_;
    notANumber_ += other.notANumber_;
    using Builder = StatisticsBuilder<T>;
    Builder::sumOf(*this).add(Builder::sumOf(other));
    Builder::squaresOf(*this).add(Builder::squaresOf(other));
}

template <typename T>
void ScalarStatistics<T>::add(T value, std::uint64_t index) {
    checkCount("add", count_, 1);
    ++count_;
    if (std::isnan(value)) {
        ++notANumber_;
        return;
    }
    if (value == std::numeric_limits<T>::max()) {
        ++undefined_;
        return;
    }
    const bool isFirst = getValid() == 1;
    if (isFirst || isLess(value, index, min_, minIndex_)) {
        min_ = value;
        minIndex_ = index;
    }
    if (isFirst || isGreater(value, index, max_, maxIndex_)) {
        max_ = value;
        maxIndex_ = index;
    }
    if (std::isfinite(value)) {
        StatisticsBuilder<T>::sumOf(*this).addNumber(value);
        StatisticsBuilder<T>::squaresOf(*this).addSquare(value);
    }
}

template <typename T>
bool ScalarStatistics<T>::hasInfinity() const {
    return std::isinf(min_) || std::isinf(max_);
}

template <typename T>
double ScalarStatistics<T>::getSum() const {
    if (hasInfinity()) { // that of either sign is an extreme; of both, the sum is NaN
        return static_cast<double>(std::isinf(min_) && std::isinf(max_) ? min_ + max_
                                   : std::isinf(min_)                   ? min_
                                                                        : max_);
    }
    return rounded(StatisticsBuilder<T>::sumOf(*this));
}

template <typename T>
double ScalarStatistics<T>::getMean() const {
    if (getValid() == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return hasInfinity() ? getSum() : roundedMean(StatisticsBuilder<T>::sumOf(*this), getValid());
}

template <typename T>
double ScalarStatistics<T>::getVariance() const {
    if (getValid() == 0 || hasInfinity()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    using Builder = StatisticsBuilder<T>;
    return roundedVariance(Builder::sumOf(*this), Builder::squaresOf(*this), getValid());
}

template <typename T>
bool ScalarStatistics<T>::operator==(const ScalarStatistics& other) const {
    const auto* bytes = reinterpret_cast<const unsigned char*>(this);
    return std::equal(bytes, bytes + sizeof(*this), reinterpret_cast<const unsigned char*>(&other));
}

// -- Statistics of triplets ----

template <typename T>
TripletStatistics<T>::TripletStatistics(const TripletView<const T>& values,
                                        std::uint64_t firstIndex, const Progress& progress) {
    checkIndices(firstIndex, values.size());
    std::array<Block<T>, 3> copies;
    std::array<Block<T>, kQuantities> quantities;
    std::array<StatisticsBuilder<T>, kQuantities> builders = {
        StatisticsBuilder<T>(x_, firstIndex), StatisticsBuilder<T>(y_, firstIndex),
        StatisticsBuilder<T>(z_, firstIndex), StatisticsBuilder<T>(length_, firstIndex)};
    forBlocks(values.size(), progress, [&](std::size_t first, std::size_t n) {
        const char* const x = readBlock(values.x(), first, n, copies[0]);
        const char* const y = readBlock(values.y(), first, n, copies[1]);
        const char* const z = readBlock(values.z(), first, n, copies[2]);
        onVectorUnit<QuantitiesKernel<T>>(x, y, z, n, &quantities);
        for (std::size_t k = 0; k < kQuantities; ++k) {
            builders[k].add(reinterpret_cast<const char*>(quantities[k].data()), n, first);
        }
    });
    for (std::size_t k = 0; k < kQuantities; ++k) {
        builders[k].finish([&](std::size_t i) {
            const TripletBase<T> t = values[i];
            return quantitiesOf(t.x, t.y, t.z)[k];
        });
    }
}

template <typename T>
void TripletStatistics<T>::merge(const TripletStatistics& other) {
    x_.merge(other.x_); // refuses before any of them is changed: all have one count
    y_.merge(other.y_);
    z_.merge(other.z_);
    length_.merge(other.length_);
}

template <typename T>
void TripletStatistics<T>::add(const TripletBase<T>& value, std::uint64_t index) {
    const Quantities<T> all = quantitiesOf(value.x, value.y, value.z);
    x_.add(all[0], index);
    y_.add(all[1], index);
    z_.add(all[2], index);
    length_.add(all[3], index);
}

template <typename T>
bool TripletStatistics<T>::operator==(const TripletStatistics& other) const {
    return x_ == other.x_ && y_ == other.y_ && z_ == other.z_ && length_ == other.length_;
}

template class ScalarStatistics<float>;
template class ScalarStatistics<double>;
template class TripletStatistics<float>;
template class TripletStatistics<double>;

} // namespace qel
