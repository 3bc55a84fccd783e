#include "curve/BracketSearch.h"

#include <algorithm>
#include <cstdint>

#include "platform/Lanes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

// All are looked at, so that lanes help; words as wide as the values keep them whole.
struct StepsKernel {
    QEL_KERNEL static Steps run(const double* values, std::size_t count, double distinctStep) {
        std::uint64_t falls = 0;
        std::uint64_t indistinct = 0;
        for (std::size_t i = 1; i < count; ++i) {
            const double step = values[i] - values[i - 1];
            falls |= step >= 0.0 ? 0 : std::uint64_t{1};
            indistinct |= step > distinctStep ? 0 : std::uint64_t{1};
        }
        return {falls == 0, indistinct == 0};
    }
};

// -- Searches side by side ----

// Moves each index on to the last of a range of s-values that is not above the lane's parameter.
template <std::size_t lanes>
QEL_KERNEL void searchTogether(const double* s, std::size_t range, const double* parameters,
                               std::size_t stride, std::size_t* lower) {
    for (std::size_t left = range; left > 1;) {
        const std::size_t half = left / 2;
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            // All ones or none: as a choice it may become a branch.
            const std::size_t isReached =
                std::size_t{0} - std::size_t{s[lower[lane] + half] <= parameters[lane * stride]};
            lower[lane] += half & isReached;
        }
        left -= half;
    }
}

// Indices among `range` s-values from one on, behind which all are above the parameters.
struct SearchKernel {
    QEL_KERNEL static void run(const double* s, std::size_t from, std::size_t range,
                               const double* parameters, std::size_t count, std::size_t* lower) {
        std::fill_n(lower, count, from);
        std::size_t k = searchGroups<32>(s, range, parameters, 0, count, lower);
        k = searchGroups<8>(s, range, parameters, k, count, lower);
        searchGroups<1>(s, range, parameters, k, count, lower);
    }

private:
    template <std::size_t lanes>
    QEL_KERNEL static std::size_t searchGroups(const double* s, std::size_t range,
                                               const double* parameters, std::size_t k,
                                               std::size_t count, std::size_t* lower) {
        for (; k + lanes <= count; k += lanes) {
            searchTogether<lanes>(s, range, parameters + k, 1, lower + k);
        }
        return k;
    }
};

void search(const double* s, std::size_t from, std::size_t range, const double* parameters,
            std::size_t count, std::size_t* lower) {
#if defined(QEL_VECTOR_UNITS)
    if (vectorUnit() != VectorUnit::portable) { // wider registers are slower
        return runAvx2<SearchKernel>(s, from, range, parameters, count, lower);
    }
#endif
    runPortable<SearchKernel>(s, from, range, parameters, count, lower);
}

// -- Walks ----

constexpr std::size_t kWalks = 4; // side by side: as many as hide the wait
constexpr std::size_t kGroup = 8; // parameters that a walk takes in a step
constexpr std::size_t kWindow = 2 * kGroup;
constexpr std::size_t kTogether = kWalks * kGroup;

// Indices from one on, for parameters in order.
void walk(const double* s, std::size_t from, const double* parameters, std::size_t count,
          std::size_t* lower) {
    for (std::size_t k = 0; k < count; ++k) {
        while (s[from + 1] <= parameters[k]) {
            ++from;
        }
        lower[k] = from;
    }
}

#if defined(QEL_SHUFFLES)

// The same by walks side by side, each through `length` of the parameters, a multiple of kGroup;
// and with a window of s-values behind the range that holds the indices.
struct WalksKernel {
    QEL_KERNEL static void run(const double* s, std::size_t from, std::size_t range,
                               const double* parameters, std::size_t length, std::size_t* lower) {
        std::size_t places[kWalks];
        std::fill_n(places, kWalks, from);
        searchTogether<kWalks>(s, range, parameters, length, places);
        for (std::size_t k = 0; k < length; k += kGroup) {
            for (std::size_t which = 0; which < kWalks; ++which) {
                const std::size_t at = which * length + k;
                step(s, places[which], parameters + at, lower + at);
                places[which] = lower[at + kGroup - 1];
            }
        }
    }

private:
    QEL_KERNEL static void step(const double* s, std::size_t from, const double* parameters,
                                std::size_t* lower) {
        if (s[from + kWindow] > parameters[kGroup - 1]) {
            count(s, from, parameters, lower);
        } else {
            walk(s, from, parameters, kGroup, lower);
        }
    }

    QEL_KERNEL static void count(const double* s, std::size_t from, const double* parameters,
                                 std::size_t* lower) {
        using Numbers = Lanes<double, kGroup / 2>;
        using Counts = Lanes<std::int64_t, kGroup / 2>;
        const Numbers low = Numbers::read(reinterpret_cast<const char*>(parameters));
        const Numbers high = Numbers::read(reinterpret_cast<const char*>(parameters + kGroup / 2));
        Counts ofLow = Counts::all(-static_cast<std::int64_t>(from));
        Counts ofHigh = ofLow;
        for (std::size_t j = 1; j < kWindow; ++j) {
            const Numbers svalue = Numbers::all(s[from + j]);
            ofLow.value += svalue.value <= low.value; // by -1, where it is true
            ofHigh.value += svalue.value <= high.value;
        }
        ofLow.value = -ofLow.value;
        ofHigh.value = -ofHigh.value;
        ofLow.write(reinterpret_cast<char*>(lower));
        ofHigh.write(reinterpret_cast<char*>(lower + kGroup / 2));
    }
};

// The same, if the walks have room for their windows; returns how many parameters are done.
std::size_t walkTogether(const double* s, std::size_t size, std::size_t from, std::size_t range,
                         const double* parameters, std::size_t count, std::size_t* lower) {
    if (count < kTogether || from + range + kWindow > size ||
        vectorUnit() == VectorUnit::portable) { // wider registers are no faster
        return 0;
    }
    const std::size_t length = count / kTogether * kGroup;
    runAvx2<WalksKernel>(s, from, range, parameters, length, lower);
    return kWalks * length;
}

#else

std::size_t walkTogether(const double*, std::size_t, std::size_t, std::size_t, const double*,
                         std::size_t, std::size_t*) {
    return 0;
}

#endif

// Of how many s-values from one on the last is above a parameter, which the last of all is.
std::size_t rangeTo(const double* s, std::size_t size, double parameter, std::size_t from,
                    std::size_t expected) {
    std::size_t range = expected;
    while (range < size - from && s[from + range] <= parameter) {
        range *= 2;
    }
    return std::min(range, size - 1 - from);
}

} // namespace

Steps stepsOf(const double* values, std::size_t count, double distinctStep) {
    return onVectorUnitFrom<StepsKernel>(count, values, count, distinctStep);
}

bool BracketSearch::find(const double* parameters, std::size_t count, std::size_t* lower) {
    std::size_t inRange = count;
    while (inRange > 0 && parameters[inRange - 1] >= s_[last_]) {
        lower[--inRange] = last_ - 1;
    }
    if (inRange > 0 && stepsOf(parameters, inRange, 0.0).areInOrder) {
        findInOrder(parameters, inRange, lower);
        return inRange == count && parameters[0] > s_[0] && parameters[count - 1] < s_[last_];
    }
    search(s_, 0, last_, parameters, inRange, lower);
    return inRange == count &&
           std::all_of(parameters, parameters + count, [this](double parameter) {
               return parameter > s_[0] && parameter < s_[last_];
           });
}

void BracketSearch::findInOrder(const double* parameters, std::size_t count, std::size_t* lower) {
    constexpr std::size_t kWalkPays = 2; // up to so many s-values for each parameter
    const std::size_t size = last_ + 1;
    const std::size_t from = s_[place_] <= parameters[0] ? place_ : 0;
    const std::size_t range = rangeTo(s_, size, parameters[count - 1], from, count);
    if (range > kWalkPays * count) {
        search(s_, from, range, parameters, count, lower);
    } else {
        const std::size_t done = walkTogether(s_, size, from, range, parameters, count, lower);
        walk(s_, done > 0 ? lower[done - 1] : from, parameters + done, count - done, lower + done);
    }
    place_ = lower[count - 1];
}

} // namespace qel
