// Arrays of floats and of triplets: statistics with undefined values marked, normalising, filling
// and text.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TripletQELVector.h>

#include "support/FieldShapes.h"
#include "support/Program.h"

#if defined(QEL_BENCHMARK_HAS_EIGEN)
#include <Eigen/Core>
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#endif
#include <boost/accumulators/accumulators.hpp>
#include <boost/accumulators/statistics/count.hpp>
#include <boost/accumulators/statistics/max.hpp>
#include <boost/accumulators/statistics/min.hpp>
#include <boost/accumulators/statistics/stats.hpp>
#include <boost/accumulators/statistics/sum.hpp>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
#endif

namespace qel_benchmark {
namespace {

using qel_test::FieldShape;
using Triplet = qel::TripletBase<float>;

constexpr float kUndefined = std::numeric_limits<float>::max();

struct FieldInput {
    FieldInput(const FieldShape& shapeOfField, std::size_t count)
        : shape(shapeOfField), n(count), values(shape.make(n)), triplets(shape.makeTriplets(n)) {}

    const FieldShape& shape;
    std::size_t n;
    std::vector<float> values;
    std::vector<Triplet> triplets;

    std::size_t bytes() const { return n * sizeof(Triplet); }
};

// -- Statistics of floats ----

struct Statistics {
    float min = kUndefined;
    float max = kUndefined;
    double sum = 0.0;
    int count = 0;
};

Statistics statisticsByLoop(const float* values, std::size_t n, std::size_t stride) {
    Statistics s;
    for (std::size_t i = 0; i < n; ++i) {
        const float v = values[stride * i];
        if (v != kUndefined) {
            s.min = s.min == kUndefined || s.min > v ? v : s.min;
            s.max = s.max == kUndefined || v > s.max ? v : s.max;
            s.sum += static_cast<double>(v);
            ++s.count;
        }
    }
    return s;
}

#if defined(QEL_BENCHMARK_HAS_BOOST)
void statisticsByBoost(const float* values, std::size_t n, std::size_t stride) {
    namespace acc = boost::accumulators;
    acc::accumulator_set<double,
                         acc::stats<acc::tag::min, acc::tag::max, acc::tag::sum, acc::tag::count>>
        set;
    for (std::size_t i = 0; i < n; ++i) {
        const float v = values[stride * i];
        if (v != kUndefined) {
            set(static_cast<double>(v));
        }
    }
    keep(acc::min(set));
    keep(acc::max(set));
    keep(acc::sum(set));
    keep(acc::count(set));
}
#endif

bool sameBits(float a, float b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (a != a && b != b);
}

// Of an array that has these values at each stride-th place.
void compareStatistics(Row& row, const qel::FloatQELVector& array, const float* values,
                       std::size_t stride) {
    row.add(kLibrary, [&] {
        array.invalidateCache();
        keep(array.getMin());
        keep(array.getSum());
    });
    Statistics s;
    row.add(kPlain, [&] { s = statisticsByLoop(values, row.n(), stride); });
#if defined(QEL_BENCHMARK_HAS_BOOST)
    row.add("Boost", [&] { statisticsByBoost(values, row.n(), stride); });
#endif
    row.measure();
    row.expectSame(sameBits(array.getMin(), s.min) && sameBits(array.getMax(), s.max) &&
                   sameBits(array.getSum(), static_cast<float>(s.sum)) &&
                   array.getNvalid() == s.count);
}

void statistics(Row& row, const FieldInput& in) {
    const qel::FloatQELVectorConcrete array(in.values.data(), in.n);
    compareStatistics(row, array, array.getInternals().data(), 1);
}

void statisticsOfComponent(Row& row, const FieldInput& in) {
    qel::TripletQELVector triplets(in.triplets);
    const qel::FloatQELVectorComponent array(triplets, 1);
    compareStatistics(row, array, &triplets.getInternals()[0].y, 3);
}

// -- Triplets ----

bool isDefined(const Triplet& t) {
    return t.x != kUndefined && t.y != kUndefined && t.z != kUndefined;
}

float lengthOf(const Triplet& t) {
    return std::sqrt(t.x * t.x + t.y * t.y + t.z * t.z);
}

// Goes on from what it holds, as the array does.
struct TripletStatistics {
    float min = kUndefined;
    float max = kUndefined;
    float sum = kUndefined;
    Triplet low{kUndefined, kUndefined, kUndefined};
    Triplet high{kUndefined, kUndefined, kUndefined};
    int count = 0;

    void addExtent(float v, float& lowest, float& highest) {
        lowest = lowest == kUndefined || lowest > v ? v : lowest;
        highest = highest == kUndefined || v > highest ? v : highest;
    }
    void add(const Triplet& t) {
        if (isDefined(t)) {
            const float m = lengthOf(t);
            if (m != kUndefined) {
                min = min == kUndefined || min > m ? m : min;
                max = max == kUndefined || m > max ? m : max;
                sum += m;
                ++count;
            }
        }
        addExtent(t.x, low.x, high.x);
        addExtent(t.y, low.y, high.y);
        addExtent(t.z, low.z, high.z);
    }
};

void statisticsOfTriplets(Row& row, const FieldInput& in) {
    qel::TripletQELVector array(in.triplets);
    row.add(kLibrary, [&] {
        keep(array[0]); // a place that may be written makes the statistics stale
        keep(static_cast<const qel::TripletQELVector&>(array).getMin());
    });
    TripletStatistics s;
    row.add(kPlain, [&] {
        for (const Triplet& t : array.getInternals()) {
            s.add(t);
        }
    });
    row.measure();
    TripletStatistics once;
    for (const Triplet& t : in.triplets) {
        once.add(t);
    }
    const qel::TripletQELVector fresh(in.triplets);
    row.expectSame(sameBits(fresh.getMin(), once.min) && sameBits(fresh.getMax(), once.max) &&
                   sameBits(fresh.getSum(), once.sum) && fresh.getNvalid() == once.count &&
                   sameBits(fresh.getMinExtents().y, once.low.y) &&
                   sameBits(fresh.getMaxExtents().z, once.high.z));
}

void normalizeByLoop(std::vector<Triplet>& triplets) {
    for (Triplet& t : triplets) {
        const float m = isDefined(t) ? lengthOf(t) : kUndefined;
        if (m != 0.0f) {
            t = Triplet(t.x / m, t.y / m, t.z / m);
        }
    }
}

void normalize(Row& row, const FieldInput& in) {
    qel::TripletQELVector array(in.triplets);
    row.addOnCopies(kLibrary, array, in.bytes(),
                    [](qel::TripletQELVector& triplets) { triplets.normalize(); });
    row.addOnCopies(kPlain, in.triplets, in.bytes(), normalizeByLoop);
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    row.addOnCopies("Eigen", in.triplets, in.bytes(), [](std::vector<Triplet>& triplets) {
        Eigen::Map<Eigen::Matrix3Xf>(&triplets[0].x, 3, static_cast<Eigen::Index>(triplets.size()))
            .colwise()
            .normalize();
    });
#endif
    row.measure();
    array.normalize();
    std::vector<Triplet> triplets(in.triplets);
    normalizeByLoop(triplets);
    bool same = true;
    for (std::size_t i = 0; i < in.n; ++i) {
        const Triplet& t = array.getInternals()[i];
        same = same && sameBits(t.x, triplets[i].x) && sameBits(t.z, triplets[i].z);
    }
    row.expectSame(same);
}

// -- Filling ----

void redefine(Row& row, const FieldInput& in) {
    qel::FloatQELVectorConcrete array;
    row.add(kLibrary, [&] { array.redefine(in.values.data(), in.n); });
    std::vector<float> values;
    row.add(kPlain, [&] { values.assign(in.values.begin(), in.values.end()); });
    row.measure();
}

void redefineTriplets(Row& row, const FieldInput& in) {
    qel::TripletQELVector array;
    row.add(kLibrary, [&] { array.redefine(&in.triplets[0].x, 3 * in.n); });
    std::vector<Triplet> triplets;
    row.add(kPlain, [&] { triplets.assign(in.triplets.begin(), in.triplets.end()); });
    row.measure();
}

void pushBack(Row& row, const FieldInput& in) {
    row.add(kLibrary, [&] {
        qel::FloatQELVectorConcrete array;
        for (const float v : in.values) {
            array.push_back(v);
        }
        keep(array.size());
    });
    row.add(kPlain, [&] {
        std::vector<float> values;
        for (const float v : in.values) {
            values.push_back(v);
        }
        keep(values.size());
    });
    row.measure();
}

// -- Text ----

void toText(Row& row, const FieldInput& in) {
    const qel::FloatQELVectorConcrete array(in.values.data(), in.n);
    std::string a;
    std::string b;
    row.add(kLibrary, [&] { a = array.toString(6); });
    row.add(kPlain, [&] {
        std::ostringstream os;
        os.precision(6);
        os << std::scientific;
        for (std::size_t i = 0; i < in.n; ++i) {
            os << (i == 0 ? "" : ", ");
            if (in.values[i] == kUndefined) {
                os << "UNDEF";
            } else {
                os << in.values[i];
            }
        }
        b = os.str();
    });
    row.measure();
    row.expectSame(a == b);
}

} // namespace
} // namespace qel_benchmark

int main(int argc, char** argv) {
    using namespace qel_benchmark;
    Program program(argc, argv, "arrays");
    Works<FieldShape, FieldInput> works;
    works.add("statistics", statistics);
    works.add("statistics_of_component", statisticsOfComponent);
    works.add("statistics_of_triplets", statisticsOfTriplets);
    works.add("normalize", normalize);
    works.add("redefine", redefine);
    works.add("redefine_triplets", redefineTriplets);
    works.add("push_back", pushBack);
    works.add("to_text", toText, 1, 10000);
    works.measure(program, qel_test::fieldShapes());
}
