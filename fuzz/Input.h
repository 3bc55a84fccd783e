#ifndef QEL_FUZZ_INPUT_H
#define QEL_FUZZ_INPUT_H

// Reads the bytes that the fuzzer proposes as counts, numbers and points.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include <qel/TripletBase.h>

namespace qel_fuzz {

/// Ends the process, which libFuzzer counts as a finding, unless a statement holds.
inline void require(bool holds, const char* statement) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", statement);
        std::abort();
    }
}

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    bool hasMore() { return bytes_.remaining_bytes() > 0; }

    // -- Numbers ----

    bool flag() { return bytes_.ConsumeBool(); }
    int integer(int from, int to) { return bytes_.ConsumeIntegralInRange(from, to); }
    std::size_t count(std::size_t from, std::size_t to) {
        return bytes_.ConsumeIntegralInRange(from, to);
    }

    /// Of a coarse grid, where results tie; of a rule's own; of any bits; or between -1 and 1, at
    /// any scale.
    template <typename T>
    T number() {
        switch (integer(0, 7)) {
        case 0:
            return special<T>();
        case 1:
            return anyBits<T>();
        case 2:
            return static_cast<T>(std::ldexp(fraction<T>(), integer(-60, 60)));
        case 3:
        case 4:
            return fraction<T>();
        default:
            return static_cast<T>(integer(-8, 8)) / T(4);
        }
    }

    /// The same, but neither NaN nor infinite, nor so large that squares overflow.
    template <typename T>
    T moderate() {
        const T value = number<T>();
        const T limit = std::sqrt(std::numeric_limits<T>::max()) / T(1000);
        return std::abs(value) < limit ? value : T(0);
    }

    std::string text(std::size_t most) { return bytes_.ConsumeRandomLengthString(most); }

    // -- Triplets ----

    template <typename T>
    qel::TripletBase<T> triplet() {
        const T x = number<T>();
        const T y = flag() ? x : number<T>();
        return {x, y, flag() ? T(0) : number<T>()};
    }

    template <typename T>
    qel::TripletBase<T> moderateTriplet() {
        const T x = moderate<T>();
        const T y = moderate<T>();
        return {x, y, flag() ? T(0) : moderate<T>()};
    }

    // -- Lists ----

    /// Elements that next() gives, some of them again.
    template <typename Next>
    auto list(std::size_t least, std::size_t most, const Next& next) {
        std::vector<decltype(next())> elements(count(least, most));
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const bool repeats = i > 0 && integer(0, 3) == 0;
            elements[i] = repeats ? elements[count(0, i - 1)] : next();
        }
        return elements;
    }

    template <typename T>
    std::vector<T> numbers(std::size_t least, std::size_t most) {
        return list(least, most, [this] { return number<T>(); });
    }
    template <typename T>
    std::vector<qel::TripletBase<T>> triplets(std::size_t least, std::size_t most) {
        return list(least, most, [this] { return triplet<T>(); });
    }
    template <typename T>
    std::vector<qel::TripletBase<T>> moderateTriplets(std::size_t least, std::size_t most) {
        return list(least, most, [this] { return moderateTriplet<T>(); });
    }

private:
    template <typename T>
    T special() {
        using Limits = std::numeric_limits<T>;
        const T values[] = {Limits::max(),
                            -Limits::max(),
                            Limits::infinity(),
                            -Limits::infinity(),
                            Limits::quiet_NaN(),
                            T(-0.0),
                            Limits::min(),
                            Limits::denorm_min(),
                            static_cast<T>(std::numeric_limits<float>::max()),
                            Limits::epsilon()};
        return values[count(0, std::size(values) - 1)];
    }

    template <typename T>
    T anyBits() {
        T value = T(0);
        bytes_.ConsumeData(&value, sizeof value);
        return value;
    }

    template <typename T>
    T fraction() {
        return static_cast<T>(bytes_.ConsumeFloatingPointInRange<double>(-1.0, 1.0));
    }

    FuzzedDataProvider bytes_;
};

} // namespace qel_fuzz

#endif
