// Statistics of strided views: split and merged as whole, and counted value by value.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <qel/ViewStatistics.h>

#include "Input.h"
#include "support/Bits.h"

namespace {

using namespace qel_fuzz;
using qel_test::sameBits;

template <typename T>
void checkCounts(const qel::ScalarStatistics<T>& all, const std::vector<T>& values) {
    std::uint64_t undefined = 0, notANumber = 0, lowest = 0, highest = 0;
    T min = std::numeric_limits<T>::quiet_NaN(), max = min;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const T v = values[i];
        if (std::isnan(v)) {
            ++notANumber;
        } else if (v == std::numeric_limits<T>::max()) {
            ++undefined;
        } else {
            if (std::isnan(min) || v < min) {
                min = v;
                lowest = i;
            }
            if (std::isnan(max) || v > max) {
                max = v;
                highest = i;
            }
        }
    }
    require(all.getCount() == values.size() && all.getUndefined() == undefined &&
                all.getNotANumber() == notANumber,
            "the numbers are counted");
    require((all.getMin() == min || (std::isnan(min) && std::isnan(all.getMin()))) &&
                (all.getMax() == max || (std::isnan(max) && std::isnan(all.getMax()))),
            "the extremes");
    require(all.getMinIndex() == lowest && all.getMaxIndex() == highest,
            "the lowest indices of the extremes");
    require(!(all.getVariance() < 0.0), "a variance is not negative");
}

template <typename T>
void checkScalars(Input& input) {
    const std::vector<T> values = input.numbers<T>(0, 120);
    const std::size_t n = values.size();
    const qel::ScalarView<const T> view(values);
    const qel::ScalarStatistics<T> all(view);
    checkCounts(all, values);
    const std::size_t cut = input.count(0, n);
    qel::ScalarStatistics<T> front(view.part(0, cut));
    const qel::ScalarStatistics<T> back(view.part(cut, n - cut), cut);
    front.merge(back);
    require(front == all, "parts merge to the whole");
    qel::ScalarStatistics<T> added;
    for (std::size_t i = n; i-- > 0;) {
        added.add(values[i], i);
    }
    require(added.getCount() == all.getCount() && sameBits(added.getSum(), all.getSum()) &&
                sameBits(added.getVariance(), all.getVariance()),
            "sums do not depend on the order");
    if (n == 1 && all.getValid() == 1) {
        require(all.getSum() == static_cast<double>(values[0]), "the sum of one number");
    }
}

template <typename T>
void checkStrided(Input& input) {
    const std::vector<T> values = input.numbers<T>(1, 40);
    const std::size_t step = sizeof(T) + input.count(0, 5);
    std::vector<char> bytes(values.size() * step);
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::memcpy(bytes.data() + i * step, &values[i], sizeof(T));
    }
    const qel::ScalarView<const T> view(reinterpret_cast<const T*>(bytes.data()), values.size(),
                                        static_cast<std::ptrdiff_t>(step));
    require(qel::ScalarStatistics<T>(view) ==
                qel::ScalarStatistics<T>(qel::ScalarView<const T>(values)),
            "a stride changes nothing");
}

template <typename T>
void checkTriplets(Input& input) {
    const std::vector<qel::TripletBase<T>> triplets = input.triplets<T>(0, 40);
    const qel::TripletView<const T> view(triplets);
    const std::size_t n = triplets.size(), cut = input.count(0, n);
    qel::TripletStatistics<T> front(view.part(0, cut));
    front.merge(qel::TripletStatistics<T>(view.part(cut, n - cut), cut));
    require(front == qel::TripletStatistics<T>(view), "parts of triplets merge to the whole");
    std::vector<T> x, y, z;
    for (const auto& t : triplets) {
        x.push_back(t.x);
        y.push_back(t.y);
        z.push_back(t.z);
    }
    require(qel::TripletStatistics<T>(qel::TripletView<const T>(x, y, z)) == front,
            "where components lie changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    using Check = void (*)(Input&);
    constexpr Check kChecks[] = {checkScalars<float>,  checkScalars<double>, checkStrided<float>,
                                 checkStrided<double>, checkTriplets<float>, checkTriplets<double>};
    for (int checks = 0; input.hasMore() && checks < 4; ++checks) {
        kChecks[input.count(0, std::size(kChecks) - 1)](input);
    }
    return 0;
}
