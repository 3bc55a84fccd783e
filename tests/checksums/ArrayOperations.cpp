// Arrays of floats, triplets and integers.
#include <memory>
#include <sstream>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/IntQELVector.h>
#include <qel/QELVector.h>
#include <qel/TripletQELVector.h>
#include <qel/ViewStatistics.h>

#include "Inputs.h"
#include "Operations.h"
#include "support/StandardStreams.h"

namespace qel_checksums {
namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;

constexpr std::size_t kSizes[] = {0, 1, 2, 7, 8, 9, 64, 1000, 5003};

// Calls use(values) for arrays of each size, with and without odd values.
template <typename Use>
void forFields(Use use) {
    for (const std::size_t n : kSizes) {
        use(fieldValues(n, 61 + n, false));
        use(fieldValues(n, 62 + n, true));
        // Whole multiples of a power of two, whose sum is exact, behind a large value.
        std::vector<float> whole(n, 0.25f);
        if (n > 2) {
            whole[n / 2] = 16777216.0f;
        }
        use(whole);
    }
}

template <typename Use>
void forTripletFields(Use use) {
    for (const std::size_t n : kSizes) {
        use(fieldTriplets(n, 63 + n, false));
        use(fieldTriplets(n, 64 + n, true));
    }
}

void addValues(Checksum& sum, const FloatQELVector& values) {
    sum.add(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum.add(values[i]);
    }
}

void addStatistics(Checksum& sum, const FloatQELVector& values) {
    sum.add(values.getMin(), values.getMax(), values.getSum(), values.getNvalid());
}

void addStatistics(Checksum& sum, const TripletQELVector& values) {
    sum.add(values.getMin(), values.getMax(), values.getSum(), values.getNvalid(),
            values.getMinExtents(), values.getMaxExtents());
}

void addText(Checksum& sum, const FloatQELVector& values) {
    std::ostringstream stream;
    values.write(stream);
    values.write(stream, 1, 20);
    values.write(stream, 3, 2);
    sum.add(stream.str(), values.toString(0), values.toString(3));
    const qel_test::CapturedStandardOutput output;
    values.dbprint();
    values.dbprint(0, 5);
    sum.add(output.text());
}

// -- Floats ----

void floatStatistics(Checksum& sum) {
    forFields([&](const std::vector<float>& values) {
        const float none = 0.0f;
        FloatQELVectorConcrete field(values.empty() ? &none : values.data(), values.size());
        addStatistics(sum, field);
        field.push_back(3.5f);
        addStatistics(sum, field);
        field.pop_back();
        field.resize(field.size() + 3);
        addStatistics(sum, field);
        field.erase();
        addStatistics(sum, field);
    });
}

void floatContents(Checksum& sum) {
    forFields([&](const std::vector<float>& values) {
        QELVector<float> plain;
        for (const float value : values) {
            plain.push_back(value);
        }
        FloatQELVectorConcrete field(plain), other;
        other.swap(field);
        addValues(sum, field);
        addValues(sum, other);
        field = other;
        for (auto i = field.Begin(); i != field.End(); ++i) {
            sum.add(*i);
        }
        sum.addOutcome([&] { field.redefine(plain.data(), (plain.size() + 1) / 2); });
        addStatistics(sum, field);
        field.redefine(plain); // leaves the statistics in force
        addStatistics(sum, field);
        addValues(sum, field);
        sum.add(field.getInternals().size(), field.empty());
    });
    sum.addOutcome([] { const FloatQELVectorConcrete refused(nullptr, 3); });
}

void floatText(Checksum& sum) {
    forFields([&](const std::vector<float>& values) {
        FloatQELVectorConcrete field;
        for (const float value : values) {
            field.push_back(value);
        }
        addText(sum, field);
    });
}

void componentView(Checksum& sum) {
    forTripletFields([&](const FloatPoints& values) {
        TripletQELVector triplets(values);
        for (int component = 0; component < 3; ++component) {
            FloatQELVectorComponent view(triplets, component);
            addStatistics(sum, view);
            addText(sum, view);
            if (!view.empty()) {
                view[0] = 2.5f;
                view.invalidateCache();
            }
            for (auto i = view.Begin(); i != view.End(); ++i) {
                sum.add(*i);
            }
            view.resize(view.size() + 1);
            addStatistics(sum, view);
        }
        sum.add(triplets.getInternals());
    });
    TripletQELVector one(FloatPoints{{1.0f, 2.0f, 3.0f}});
    const FloatQELVectorComponent refused(one, 3);
    sum.addOutcome([&] { sum.add(refused[0]); });
}

// -- Triplets ----

void tripletStatistics(Checksum& sum) {
    forTripletFields([&](const FloatPoints& values) {
        TripletQELVector field(values);
        addStatistics(sum, field);
        field.push_back({3.0f, 4.0f, 0.0f});
        addStatistics(sum, field);
        field.pop_back();
        field.resize(field.size() + 2);
        addStatistics(sum, field);
        field.clear();
        addStatistics(sum, field);
    });
}

void tripletContents(Checksum& sum) {
    forTripletFields([&](const FloatPoints& values) {
        TripletQELVector field, other(values);
        field.reserve(values.size());
        field.swap(other);
        sum.add(field.getInternals(), other.size(), field.empty());
        FloatPoints plain = {{1.0f, 2.0f, 3.0f}, {4.0f, 5.0f, 6.0f}};
        field.swap(plain);
        sum.add(field.getInternals(), plain, field.front(), field.back());
        field.redefine(plain);
        addStatistics(sum, field);
        const std::vector<float> flat = fieldValues(30, 65, true);
        field.redefine(flat.data(), flat.size());
        addStatistics(sum, field);
        sum.addOutcome([&] { field.redefine(flat.data(), 29); });
        sum.addOutcome([&] { field.redefine(nullptr, 3); });
        sum.add(field.getInternals());
    });
}

void tripletNormalize(Checksum& sum) {
    forTripletFields([&](const FloatPoints& values) {
        TripletQELVector field(values);
        field.normalize();
        sum.add(field.getInternals());
    });
}

void tripletText(Checksum& sum) {
    forTripletFields([&](const FloatPoints& values) {
        const TripletQELVector field(values);
        const qel_test::CapturedStandardOutput output;
        std::ostringstream stream;
        field.write(stream, 0, 0);
        field.write(stream, 1, 6);
        field.write(stream, 6, 1);
        field.dbprint();
        field.dbprint(0, 3);
        field.dbprint(-1, 3);
        sum.add(field.toString(), stream.str(), output.text());
    });
}

// -- Containers ----

void container(Checksum& sum) {
    QELVector<double> values;
    values.reserve(10);
    values.push_back(1.5);
    values.resize(3);
    values.resize(5, 2.5);
    std::vector<double> other = {9.0};
    values.swap(other);
    sum.add(values, other);
}

void integers(Checksum& sum) {
    qel::IntQELVector values(3);
    values.push_back(-7);
    values.push_back(9);
    values.pop_back();
    values.resize(6);
    sum.add(values);
    const qel::IntQELVector copy(values);
    values.clear();
    sum.add(values, copy);
}

// -- Views ----

template <typename T>
void addStatistics(Checksum& sum, const qel::ScalarStatistics<T>& s) {
    sum.add(s.getCount(), s.getUndefined(), s.getNotANumber(), s.getMin(), s.getMinIndex(),
            s.getMax(), s.getMaxIndex(), s.getSum(), s.getMean(), s.getVariance());
}

void viewStatistics(Checksum& sum) {
    forFields([&](const std::vector<float>& values) {
        addStatistics(sum, qel::ScalarStatistics<float>(values));
        addStatistics(
            sum, qel::ScalarStatistics<double>(std::vector<double>(values.begin(), values.end())));
    });
    forTripletFields([&](const FloatPoints& values) {
        const qel::TripletStatistics<float> s(values);
        addStatistics(sum, s.getX());
        addStatistics(sum, s.getLength());
    });
}

} // namespace

void addArrayOperations(Operations& operations) {
    operations.push_back({"FloatQELVectorConcrete.statistics", Arithmetic::exact, floatStatistics});
    operations.push_back({"FloatQELVectorConcrete.contents", Arithmetic::exact, floatContents});
    operations.push_back({"FloatQELVectorConcrete.text", Arithmetic::exact, floatText});
    operations.push_back({"FloatQELVectorComponent", Arithmetic::exact, componentView});
    operations.push_back({"TripletQELVector.statistics", Arithmetic::exact, tripletStatistics});
    operations.push_back({"TripletQELVector.contents", Arithmetic::exact, tripletContents});
    operations.push_back({"TripletQELVector.normalize", Arithmetic::exact, tripletNormalize});
    operations.push_back({"TripletQELVector.text", Arithmetic::exact, tripletText});
    operations.push_back({"ViewStatistics", Arithmetic::exact, viewStatistics});
    operations.push_back({"QELVector", Arithmetic::exact, container});
    operations.push_back({"IntQELVector", Arithmetic::exact, integers});
}

} // namespace qel_checksums
