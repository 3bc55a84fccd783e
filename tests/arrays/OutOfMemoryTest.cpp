// An array keeps its elements where memory for more runs out.

#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/IntQELVector.h>
#include <qel/QELVector.h>
#include <qel/TripletQELVector.h>

#include "support/AllocationFailures.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel::IntQELVector;
using qel::TripletQELVector;
using Triplet = qel::TripletBase<float>;
using Triplets = std::vector<Triplet>;

const std::vector<float> kManyFloats(30, 2.5f);
const Triplets kManyTriplets(30, Triplet(1, 2, 3));

template <typename Operation>
int failuresOfFloats(const Operation& operation) {
    const auto make = [] { return FloatQELVectorConcrete(kManyFloats.data(), 3); };
    const auto stateOf = [](const FloatQELVectorConcrete& a) {
        return std::vector<float>(a.getInternals());
    };
    return allocationFailures(make, stateOf, operation);
}

template <typename Operation>
int failuresOfTriplets(const Operation& operation) {
    const auto make = [] { return TripletQELVector(kManyFloats.data(), 9); };
    const auto stateOf = [](const TripletQELVector& a) { return Triplets(a.getInternals()); };
    return allocationFailures(make, stateOf, operation);
}

template <typename Operation>
int failuresOfIntegers(const Operation& operation) {
    const auto make = [] { return IntQELVector(3); };
    const auto stateOf = [](const IntQELVector& a) { return std::vector<int>(a); };
    return allocationFailures(make, stateOf, operation);
}

TEST(OutOfMemory, FloatsGrowOrStay) {
    using Array = FloatQELVectorConcrete;
    QELVector<float> values;
    values.resize(30, 7.0f);
    EXPECT_GT(failuresOfFloats([](Array& a) { a.push_back(1.0f); }), 0);
    EXPECT_GT(failuresOfFloats([](Array& a) { a.resize(100); }), 0);
    EXPECT_GT(failuresOfFloats([](Array& a) { a.redefine(kManyFloats.data(), 30); }), 0);
    EXPECT_GT(failuresOfFloats([&](Array& a) { a.redefine(values); }), 0);
    EXPECT_GT(failuresOfFloats([](Array& a) { a = Array(kManyFloats.data(), 30); }), 0);
    EXPECT_GT(failuresOfFloats([](Array& a) { a.redefine(&a[1], 2); }), 0) << "from its own memory";
}

TEST(OutOfMemory, FloatsShrinkWithoutMemory) {
    using Array = FloatQELVectorConcrete;
    EXPECT_EQ(failuresOfFloats([](Array& a) { a.pop_back(); }), 0);
    EXPECT_EQ(failuresOfFloats([](Array& a) { a.resize(1); }), 0);
    EXPECT_EQ(failuresOfFloats([](Array& a) { a.erase(); }), 0);
    EXPECT_EQ(failuresOfFloats([](Array& a) { a.redefine(kManyFloats.data() + 1, 2); }), 0);
    Array other;
    EXPECT_EQ(failuresOfFloats([&](Array& a) { a.swap(other); }), 0);
}

TEST(OutOfMemory, StatisticsOfFloatsAreThoseOfTheElementsThatStayed) {
    FloatQELVectorConcrete array(kManyFloats.data(), 3);
    EXPECT_EQ(array.getSum(), 7.5f);
    {
        const AllocationLimit limit(0);
        EXPECT_THROW(array.resize(100), std::bad_alloc);
        EXPECT_EQ(array.getSum(), 7.5f);
        EXPECT_EQ(array.getNvalid(), 3);
    }
}

TEST(OutOfMemory, TripletsGrowOrStay) {
    using Array = TripletQELVector;
    EXPECT_GT(failuresOfTriplets([](Array& a) { a.push_back(Triplet()); }), 0);
    EXPECT_GT(failuresOfTriplets([](Array& a) { a.resize(100); }), 0);
    EXPECT_GT(failuresOfTriplets([](Array& a) { a.redefine(kManyFloats.data(), 30); }), 0);
    EXPECT_GT(failuresOfTriplets([](Array& a) { a.redefine(kManyTriplets); }), 0);
    EXPECT_GT(failuresOfTriplets([](Array& a) { a = Array(kManyTriplets); }), 0);
    EXPECT_GT(failuresOfTriplets([](Array& a) { FloatQELVectorComponent(a, 1).resize(100); }), 0);
}

TEST(OutOfMemory, TripletsShrinkWithoutMemory) {
    using Array = TripletQELVector;
    EXPECT_EQ(failuresOfTriplets([](Array& a) { a.pop_back(); }), 0);
    EXPECT_EQ(failuresOfTriplets([](Array& a) { a.resize(1); }), 0);
    EXPECT_EQ(failuresOfTriplets([](Array& a) { a.clear(); }), 0);
    EXPECT_EQ(failuresOfTriplets([](Array& a) { a.normalize(); }), 0);
    Triplets list;
    EXPECT_EQ(failuresOfTriplets([&](Array& a) { a.swap(list); }), 0);
    Array other;
    EXPECT_EQ(failuresOfTriplets([&](Array& a) { a.swap(other); }), 0);
}

TEST(OutOfMemory, IntegersGrowOrStay) {
    EXPECT_GT(failuresOfIntegers([](IntQELVector& a) { a.push_back(1); }), 0);
    EXPECT_GT(failuresOfIntegers([](IntQELVector& a) { a.resize(100); }), 0);
    EXPECT_GT(failuresOfIntegers([](IntQELVector& a) { a = IntQELVector(100); }), 0);
    EXPECT_EQ(failuresOfIntegers([](IntQELVector& a) { a.pop_back(); }), 0);
    EXPECT_EQ(failuresOfIntegers([](IntQELVector& a) { a.clear(); }), 0);
}

} // namespace
