// The statistics of triplets in memory, block by block in vector lanes.
//
// Components and magnitudes of a block are put into columns of their own, whose extremes do not
// depend on order. What does: NaN and undefined components, whose blocks take the loop, and the
// sum, which is in single precision. It starts from the undefined marker, which smaller magnitudes
// do not change; where they do, it is added up in order.

#include "arrays/Statistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "arrays/Extremes.h"
#include "foundation/Deinterleave.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 256;
constexpr std::size_t kMinLanes = 16; // fewer triplets are faster one by one

float magnitudeOf(const TripletBase<float>& t) {
    return t.isUndefined() ? kUndefinedFloat : std::sqrt(t.x * t.x + t.y * t.y + t.z * t.z);
}

// The undefined marker counts as "not yet set".
void lower(float& extreme, float value) {
    if (extreme == kUndefinedFloat || extreme > value) {
        extreme = value;
    }
}

void raise(float& extreme, float value) {
    if (extreme == kUndefinedFloat || value > extreme) {
        extreme = value;
    }
}

// The count adds up over all computations and may come to the end of int; it goes on from the
// other.
int sumOfCounts(int count, std::size_t more) {
    return static_cast<int>(static_cast<unsigned>(count) + static_cast<unsigned>(more));
}

// -- Blocks ----

struct Column {
    alignas(64) float values[kBlock];
    Extremes extremes;

    void addTo(float& min, float& max, std::size_t n) const {
        lower(min, extremes.minimumOf(values, n));
        raise(max, extremes.maximumOf(values, n));
    }
};

struct Columns {
    Column x, y, z, magnitude;
};

template <std::size_t width>
struct ColumnsKernel {
    QEL_KERNEL static std::size_t run(const TripletBase<float>* triplets, std::size_t n,
                                      Columns* c) {
        const float* const x = c->x.values;
        const float* const y = c->y.values;
        const float* const z = c->z.values;
        deinterleave<width>(triplets, n, c->x.values, c->y.values, c->z.values);
        for (std::size_t k = 0; k < n; ++k) {
            c->magnitude.values[k] = std::sqrt(x[k] * x[k] + y[k] * y[k] + z[k] * z[k]);
        }
        for (Column* const column : {&c->x, &c->y, &c->z, &c->magnitude}) {
            column->extremes = Extremes::of(column->values, n);
        }
        return n;
    }
};

bool hasNumbersOnly(const Columns& c) {
    const auto leftOut = [](const Column& column) {
        return column.extremes.undefined + column.extremes.nans;
    };
    return leftOut(c.x) + leftOut(c.y) + leftOut(c.z) + leftOut(c.magnitude) == 0;
}

float sumInOrder(float sum, const Column& magnitude, std::size_t n) {
    constexpr float kMaxLost = 0x1p102f; // less than half a step at the undefined marker
    if (sum == kUndefinedFloat && magnitude.extremes.maximum() < kMaxLost) {
        return sum;
    }
    return std::accumulate(magnitude.values, magnitude.values + n, sum);
}

// False if the block is left to the loop: it is short, not of numbers only, or there are no lanes.
bool addInLanes(const TripletBase<float>* triplets, std::size_t n, TripletStatistics& s) {
    Columns c;
    if (n < kMinLanes || onFloatLanes<ColumnsKernel>(triplets, n, &c) != n || !hasNumbersOnly(c)) {
        return false;
    }
    c.magnitude.addTo(s.min, s.max, n);
    c.x.addTo(s.minExtents.x, s.maxExtents.x, n);
    c.y.addTo(s.minExtents.y, s.maxExtents.y, n);
    c.z.addTo(s.minExtents.z, s.maxExtents.z, n);
    s.sum = sumInOrder(s.sum, c.magnitude, n);
    s.count = sumOfCounts(s.count, n);
    return true;
}

} // namespace

void TripletStatistics::add(const TripletBase<float>& t) {
    const float magnitude = magnitudeOf(t);
    if (magnitude != kUndefinedFloat) {
        lower(min, magnitude);
        raise(max, magnitude);
        sum += magnitude;
        count = sumOfCounts(count, 1);
    }
    lower(minExtents.x, t.x);
    lower(minExtents.y, t.y);
    lower(minExtents.z, t.z);
    raise(maxExtents.x, t.x);
    raise(maxExtents.y, t.y);
    raise(maxExtents.z, t.z);
}

void TripletStatistics::add(const TripletBase<float>* triplets, std::size_t n) {
    while (n > 0) {
        const std::size_t size = std::min(n, kBlock);
        if (!addInLanes(triplets, size, *this)) {
            std::for_each(triplets, triplets + size, [&](const TripletBase<float>& t) { add(t); });
        }
        triplets += size;
        n -= size;
    }
}

} // namespace qel
