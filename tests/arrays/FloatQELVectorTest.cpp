// Contents of the float arrays and which operations expire their statistics.

#include <qel/FloatQELVector.h>

#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>

#include "arrays/LengthErrors.h"
#include "support/Errors.h"
#include "support/Slots.h"
#include "support/SpecialFloats.h"

namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;
using qel_test::kEndlessLength;
using qel_test::kUndef;
using qel_test::lengthErrorOf;
using qel_test::throwsInvalid;
using ::testing::ElementsAre;
using Triplet = qel::TripletBase<float>;

static_assert(std::is_abstract<FloatQELVector>::value, "only its kinds exist");
static_assert(std::has_virtual_destructor<FloatQELVector>::value, "deletable through the base");
static_assert(std::is_base_of<FloatQELVector, FloatQELVectorConcrete>::value, "a kind");
static_assert(std::is_base_of<FloatQELVector, FloatQELVectorComponent>::value, "a kind");

FloatQELVectorConcrete arrayOf(const std::vector<float>& values) {
    return {values.data(), values.size()};
}

QELVector<float> storageOf(const std::vector<float>& values) {
    QELVector<float> storage;
    storage.insert(storage.end(), values.begin(), values.end());
    return storage;
}

TripletQELVector fourTriplets() {
    return TripletQELVector(
        std::vector<Triplet>{{1, 10, 100}, {2, 20, 200}, {3, 30, 300}, {4, 40, 400}});
}

// -- The owning kind ----

TEST(FloatQELVectorConcrete, Building) {
    EXPECT_TRUE(FloatQELVectorConcrete().empty());
    const float values[] = {1, 2, 3};
    const FloatQELVectorConcrete v(values, 2);
    EXPECT_THAT(v.getInternals(), ElementsAre(1, 2));
    EXPECT_EQ(v.size(), 2u);
    EXPECT_FALSE(v.empty());
    const FloatQELVectorConcrete fromStorage(storageOf({4, 5}));
    EXPECT_THAT(fromStorage.getInternals(), ElementsAre(4, 5));
    const FloatQELVectorConcrete none(values, 0);
    EXPECT_TRUE(none.empty());
}

TEST(FloatQELVectorConcrete, RefusesANullPointer) {
    EXPECT_THAT([] { FloatQELVectorConcrete(nullptr, 0); },
                throwsInvalid("FloatQELVectorConcrete", "constructor", "Null pointer to p_list."));
    FloatQELVectorConcrete v = arrayOf({1, 2});
    EXPECT_EQ(v.getMax(), 2.0f);
    *v.begin() = 7.0f;
    EXPECT_THAT([&] { v.redefine(nullptr, 3); },
                throwsInvalid("FloatQELVectorConcrete", "redefine", "Null pointer to p_list."));
    EXPECT_THAT(v.getInternals(), ElementsAre(7, 2));
    EXPECT_EQ(v.getMax(), 2.0f) << "the statistics stay in force too";
}

TEST(FloatQELVectorConcrete, RedefineReplaces) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    const float values[] = {9, 8, 7, 6};
    v.redefine(values, 1);
    EXPECT_THAT(v.getInternals(), ElementsAre(9));
    v.redefine(values, 4);
    EXPECT_THAT(v.getInternals(), ElementsAre(9, 8, 7, 6));
    v.redefine(values, 0);
    EXPECT_TRUE(v.empty());
    v.redefine(storageOf({1, 2}));
    EXPECT_THAT(v.getInternals(), ElementsAre(1, 2));
}

TEST(FloatQELVectorConcrete, RedefineFromItsOwnValues) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3, 4});
    v.redefine(v.getInternals().data() + 1, 3);
    EXPECT_THAT(v.getInternals(), ElementsAre(2, 3, 4));
    v.redefine(v.getInternals());
    EXPECT_THAT(v.getInternals(), ElementsAre(2, 3, 4));
}

TEST(FloatQELVectorConcrete, RedefineGoesThroughTheVirtualResize) {
    struct Logging : FloatQELVectorConcrete {
        void resize(std::size_t n) override {
            EXPECT_TRUE(empty());
            asked = n;
            FloatQELVectorConcrete::resize(n);
        }
        std::size_t asked = 0;
    };
    Logging v;
    v.push_back(1);
    const float values[] = {9, 8, 7};
    v.redefine(values, 3);
    EXPECT_EQ(v.asked, 3u);
    EXPECT_THAT(v.getInternals(), ElementsAre(9, 8, 7));
}

TEST(FloatQELVectorConcrete, ChangesOfLength) {
    FloatQELVectorConcrete v;
    v.pop_back();
    EXPECT_TRUE(v.empty());
    v.push_back(5);
    v.push_back(v[0]);
    v.resize(3);
    EXPECT_THAT(v.getInternals(), ElementsAre(5, 5, 0));
    v.pop_back();
    EXPECT_EQ(v.size(), 2u);
    v.erase();
    EXPECT_TRUE(v.empty());
}

TEST(FloatQELVectorConcrete, Access) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    const FloatQELVectorConcrete& c = v;
    v[1] = 9;
    EXPECT_EQ(c[1], 9.0f);
    EXPECT_EQ(c.end() - c.begin(), 3);
    EXPECT_EQ(v.end() - v.begin(), 3);
    EXPECT_EQ(&*v.begin(), &c[0]);
}

TEST(FloatQELVectorConcrete, StridedIteratorsWalkOneByOne) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    FloatQELVector::Iterator it;
    it = v.Begin();
    EXPECT_EQ(&*it, &v[0]);
    EXPECT_EQ(&*++it, &v[1]);
    EXPECT_EQ(&*it++, &v[1]);
    EXPECT_EQ(&*it, &v[2]);
    EXPECT_TRUE(it != v.End());
    EXPECT_TRUE(++it == v.End());
}

TEST(FloatQELVectorConcrete, StridedIteratorsOfAnEmptyArrayAreNull) {
    FloatQELVectorConcrete v;
    EXPECT_EQ(v.Begin().operator->(), nullptr);
    EXPECT_EQ(v.End().operator->(), nullptr);
    v.resize(4);
    v.resize(0); // the storage is still there
    EXPECT_EQ(v.Begin().operator->(), nullptr);
    EXPECT_EQ(v.End().operator->(), nullptr);
    EXPECT_TRUE(v.Begin() == v.End());
}

TEST(FloatQELVectorConcreteDeathTest, IndexAtTheSizeIsFatal) {
    FloatQELVectorConcrete v = arrayOf({1, 2});
    const FloatQELVectorConcrete& c = v;
    EXPECT_DEATH(v[2] = 0, "");
    EXPECT_DEATH(static_cast<void>(c[2]), "");
}

// -- Expiry: the values are changed behind the array's back, then an operation may show it ----

using Action = std::function<void(FloatQELVectorConcrete&)>;

// True if the maximum is computed again after the action.
bool expires(const Action& action) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    EXPECT_EQ(v.getMax(), 3.0f);
    *v.begin() = 50.0f;
    action(v);
    return v.getMax() != 3.0f;
}

TEST(FloatQELVectorConcrete, WhatExpiresTheStatistics) {
    const float values[] = {9, 8};
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { v.invalidateCache(); }));
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { static_cast<void>(v[1]); }));
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { v.push_back(1); }));
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { v.pop_back(); }));
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { v.resize(3); }));
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) { v.erase(); }));
    EXPECT_TRUE(expires([&](FloatQELVectorConcrete& v) { v.redefine(values, 2); }));
}

TEST(FloatQELVectorConcrete, StatisticsExpireBeforeAChangeOfLengthThatFails) {
    EXPECT_TRUE(expires([](FloatQELVectorConcrete& v) {
        EXPECT_EQ(lengthErrorOf([&] { v.resize(kEndlessLength); }), "vector<T> too long");
        EXPECT_THAT(v.getInternals(), ElementsAre(50, 2, 3));
    }));
}

TEST(FloatQELVectorConcrete, RedefineFromAStorageLeavesExpiredStatisticsExpired) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    v.redefine(storageOf({7, 8}));
    EXPECT_EQ(v.getMax(), 8.0f) << "not asked for before";
    v.invalidateCache();
    v.redefine(storageOf({4}));
    EXPECT_EQ(v.getMax(), 4.0f);
    EXPECT_EQ(v.getNvalid(), 1);
}

TEST(FloatQELVectorConcrete, WhatLeavesTheStatisticsInForce) {
    EXPECT_FALSE(expires([](FloatQELVectorConcrete& v) { v.redefine(storageOf({7, 8})); }));
    EXPECT_FALSE(expires([](FloatQELVectorConcrete& v) { v.Begin(); }));
    EXPECT_FALSE(expires([](FloatQELVectorConcrete& v) { v.toString(3); }));
    EXPECT_FALSE(expires([](FloatQELVectorConcrete& v) {
        const FloatQELVectorConcrete& c = v;
        static_cast<void>(c[1]);
    }));
}

TEST(FloatQELVectorConcrete, SwapExpiresTheStatisticsOfThisArrayOnly) {
    FloatQELVectorConcrete a = arrayOf({1, 2});
    FloatQELVectorConcrete b = arrayOf({30, 40});
    EXPECT_EQ(a.getMax(), 2.0f);
    EXPECT_EQ(b.getMax(), 40.0f);
    const float* const storage = b.getInternals().data();
    a.swap(b);
    EXPECT_EQ(a.getInternals().data(), storage);
    EXPECT_EQ(a.getMax(), 40.0f);
    EXPECT_EQ(b.getMax(), 40.0f) << "still that of the values before";
    b.invalidateCache();
    EXPECT_EQ(b.getMax(), 2.0f);
}

TEST(FloatQELVectorConcrete, CopiesTakeTheStatisticsAlong) {
    FloatQELVectorConcrete v = arrayOf({1, 2, 3});
    EXPECT_EQ(v.getMax(), 3.0f);
    *v.begin() = 50.0f;
    FloatQELVectorConcrete copy(v);
    FloatQELVectorConcrete assigned;
    assigned = v;
    EXPECT_EQ(copy.getMax(), 3.0f);
    EXPECT_EQ(assigned.getMax(), 3.0f);
    copy.invalidateCache();
    assigned.invalidateCache();
    EXPECT_EQ(copy.getMax(), 50.0f);
    EXPECT_EQ(assigned.getMax(), 50.0f);
}

// -- The view ----

TEST(FloatQELVectorComponent, SeesOneComponent) {
    TripletQELVector triplets = fourTriplets();
    for (int c = 0; c < 3; ++c) {
        FloatQELVectorComponent view(triplets, c);
        EXPECT_EQ(view.size(), 4u);
        EXPECT_FALSE(view.empty());
        const FloatQELVectorComponent& constView = view;
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(&view[i], &triplets.getInternals()[i].getRef(c));
            EXPECT_EQ(&constView[i], &view[i]);
        }
    }
}

TEST(FloatQELVectorComponent, WritingThroughItKeepsItsOwnStatisticsOnly) {
    TripletQELVector triplets = fourTriplets();
    FloatQELVectorComponent view(triplets, 1);
    EXPECT_EQ(view.size(), 4u);
    EXPECT_EQ(view.getMax(), 40.0f);
    EXPECT_EQ(triplets.getNvalid(), 4);
    view[2] = 1000.0f;
    EXPECT_EQ(triplets.getInternals()[2].y, 1000.0f);
    EXPECT_EQ(triplets.getNvalid(), 8) << "those of the triplet array expired";
    EXPECT_EQ(view.getMax(), 40.0f);
    view.invalidateCache();
    EXPECT_EQ(view.getMax(), 1000.0f);
}

TEST(FloatQELVectorComponent, ReadingByIndexExpiresTheTripletArraysStatistics) {
    TripletQELVector triplets = fourTriplets();
    const FloatQELVectorComponent view(triplets, 0);
    EXPECT_EQ(triplets.getNvalid(), 4);
    EXPECT_EQ(view[1], 2.0f);
    EXPECT_EQ(triplets.getNvalid(), 8);
    EXPECT_EQ(view.getSum(), 10.0f);
    EXPECT_EQ(triplets.getNvalid(), 8) << "the view's statistics walk by iterator";
}

TEST(FloatQELVectorComponent, ResizesTheTripletArray) {
    TripletQELVector triplets = fourTriplets();
    FloatQELVectorComponent view(triplets, 2);
    EXPECT_EQ(view.getMax(), 400.0f);
    EXPECT_EQ(triplets.getNvalid(), 4);
    view.resize(5);
    EXPECT_EQ(triplets.getInternals()[4], Triplet(0, 0, 0));
    EXPECT_EQ(triplets.getNvalid(), 9);
    view.resize(1);
    EXPECT_EQ(triplets.size(), 1u);
    EXPECT_EQ(view.getMax(), 400.0f) << "its own stay in force";
}

TEST(FloatQELVectorComponent, StridedIteratorsWalkInStridesOfThree) {
    TripletQELVector triplets = fourTriplets();
    for (int c = 0; c < 3; ++c) {
        FloatQELVectorComponent view(triplets, c);
        std::size_t i = 0;
        for (FloatQELVector::Iterator it = view.Begin(); it != view.End(); ++it, ++i) {
            EXPECT_EQ(&*it, &triplets.getInternals()[i].getRef(c));
        }
        EXPECT_EQ(i, 4u);
    }
    EXPECT_EQ(triplets.getNvalid(), 4);
    FloatQELVectorComponent(triplets, 0).Begin();
    EXPECT_EQ(triplets.getNvalid(), 4) << "they leave the triplet array's statistics in force";
}

TEST(FloatQELVectorComponent, StridedIteratorsOfAnEmptyArrayAreNull) {
    TripletQELVector triplets;
    FloatQELVectorComponent view(triplets, 1);
    EXPECT_TRUE(view.empty());
    EXPECT_EQ(view.Begin().operator->(), nullptr);
    EXPECT_EQ(view.End().operator->(), nullptr);
    triplets.reserve(10);
    EXPECT_EQ(view.Begin().operator->(), nullptr);
}

TEST(FloatQELVectorComponent, RefusesABadComponentAtTheFirstAccess) {
    TripletQELVector triplets = fourTriplets();
    for (const int component : {-1, 3}) {
        FloatQELVectorComponent view(triplets, component);
        const FloatQELVectorComponent& constView = view;
        const auto refusal = throwsInvalid(
            "Triplet", "getRef", "Index (" + std::to_string(component) + ") out of range 0..2");
        EXPECT_THAT([&] { view[0] = 1; }, refusal);
        EXPECT_THAT([&] { static_cast<void>(constView[0]); }, refusal);
        EXPECT_THAT([&] { view.getMin(); }, refusal);
        EXPECT_EQ(view.size(), 4u);
    }
    TripletQELVector none;
    EXPECT_EQ(FloatQELVectorComponent(none, 7).getNvalid(), 0);
}

TEST(FloatQELVectorComponent, CopiesShareTheTripletArray) {
    TripletQELVector triplets = fourTriplets();
    FloatQELVectorComponent view(triplets, 1);
    EXPECT_EQ(view.getMax(), 40.0f);
    view[0] = 99.0f;
    FloatQELVectorComponent copy(view);
    EXPECT_EQ(&copy[3], &triplets[3].y);
    EXPECT_EQ(copy.getMax(), 40.0f) << "statistics are copied in force";
}

TEST(FloatQELVectorComponentDeathTest, IndexAtTheSizeIsFatal) {
    TripletQELVector triplets = fourTriplets();
    FloatQELVectorComponent view(triplets, 0);
    EXPECT_DEATH(view[4] = 0, "");
}

// -- The table of virtual operations ----

TEST(FloatQELVector, VirtualOperationsStandInOrder) {
    using qel_test::slotOf;
    using V = FloatQELVector;
    std::size_t slot = qel_test::kFirstSlotAfterDestructor;
    EXPECT_EQ(slotOf(static_cast<const float& (V::*)(std::size_t) const>(&V::operator[])), slot++);
    EXPECT_EQ(slotOf(static_cast<float& (V::*)(std::size_t)>(&V::operator[])), slot++);
    EXPECT_EQ(slotOf(&V::resize), slot++);
    EXPECT_EQ(slotOf(&V::size), slot++);
    EXPECT_EQ(slotOf(&V::Begin), slot++);
    EXPECT_EQ(slotOf(&V::End), slot++);
    EXPECT_EQ(slotOf(static_cast<void (V::*)(std::size_t, std::size_t) const>(&V::dbprint)),
              slot++);
    EXPECT_EQ(slotOf(static_cast<void (V::*)() const>(&V::dbprint)), slot++);
}

// Private operations that a derived class overrides keep their places.
TEST(FloatQELVector, PrivateVirtualOperationsStandBehindTheOthers) {
    struct Overriding : FloatQELVectorConcrete {
        int getStride() const override { return 1; }
        void updateCache() const override {}
    };
    const std::size_t behindDbprint = qel_test::kFirstSlotAfterDestructor + 8;
    EXPECT_EQ(qel_test::slotOf(&Overriding::getStride), behindDbprint);
    EXPECT_EQ(qel_test::slotOf(&Overriding::updateCache), behindDbprint + 1);
}

// The flag stays down, since only the library's own computation raises it.
TEST(FloatQELVector, StatisticsAskTheVirtualUpdateWhileTheyAreExpired) {
    struct Counting : FloatQELVectorConcrete {
        void updateCache() const override { ++updates; }
        mutable int updates = 0;
    };
    const Counting v;
    EXPECT_EQ(v.getMin(), kUndef);
    EXPECT_EQ(v.getMax(), kUndef);
    EXPECT_EQ(v.getSum(), kUndef) << "as built";
    EXPECT_EQ(v.getNvalid(), 0);
    EXPECT_EQ(v.updates, 4);
}

// A kind of a caller's own, of values two floats apart.
class EverySecond : public FloatQELVector {
public:
    const float& operator[](std::size_t i) const override { return values_[2 * i]; }
    float& operator[](std::size_t i) override {
        invalidateCache();
        return values_[2 * i];
    }
    void resize(std::size_t n) override { values_.resize(2 * n); }
    std::size_t size() const override { return values_.size() / 2; }
    Iterator Begin() override { return {2, values_.empty() ? nullptr : values_.data()}; }
    Iterator End() override {
        return {2, values_.empty() ? nullptr : values_.data() + values_.size()};
    }

private:
    int getStride() const override { return 2; }

    std::vector<float> values_;
};

TEST(FloatQELVector, WorksOnACallersOwnKind) {
    EverySecond v;
    EXPECT_EQ(v.getMin(), kUndef);
    v.resize(3);
    v[0] = 3;
    v[1] = -1;
    v[2] = kUndef;
    EXPECT_EQ(v.getMin(), -1.0f);
    EXPECT_EQ(v.getMax(), 3.0f);
    EXPECT_EQ(v.getSum(), 2.0f);
    EXPECT_EQ(v.getNvalid(), 2);
    EXPECT_EQ(v.toString(1), "3.0e+00, -1.0e+00, UNDEF");
}

// -- Moving, braces and loops ----

static_assert(std::is_nothrow_move_constructible<FloatQELVectorConcrete>::value, "cheap to return");
static_assert(std::is_nothrow_move_assignable<FloatQELVectorConcrete>::value, "cheap to replace");

TEST(FloatQELVectorConcrete, IsBuiltFromBraces) {
    const FloatQELVectorConcrete v = {1.0f, kUndef, 3.0f};
    EXPECT_THAT(v.getInternals(), ElementsAre(1.0f, kUndef, 3.0f));
    EXPECT_EQ(v.getNvalid(), 2);
    EXPECT_TRUE(FloatQELVectorConcrete{}.empty());
}

TEST(FloatQELVectorConcrete, IsMovedWithItsStatistics) {
    FloatQELVectorConcrete source = {1.0f, 4.0f};
    EXPECT_EQ(source.getSum(), 5.0f);
    const float* const storage = source.getInternals().data();
    FloatQELVectorConcrete moved(std::move(source));
    EXPECT_EQ(moved.getInternals().data(), storage);
    EXPECT_EQ(moved.getSum(), 5.0f);
    EXPECT_TRUE(source.empty());
    EXPECT_EQ(source.getNvalid(), 0);
    EXPECT_EQ(source.getMax(), kUndef);

    FloatQELVectorConcrete assigned = {7.0f};
    EXPECT_EQ(assigned.getMax(), 7.0f);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getInternals().data(), storage);
    EXPECT_EQ(assigned.getMax(), 4.0f);
    EXPECT_TRUE(moved.empty());
    EXPECT_EQ(moved.getNvalid(), 0);
    FloatQELVectorConcrete& itself = assigned;
    assigned = std::move(itself);
    EXPECT_EQ(assigned.size(), 2U);
}

TEST(FloatQELVectorComponent, LoopsGoOverTheComponent) {
    TripletQELVector triplets = {{1, 2, 3}, {4, 5, 6}};
    FloatQELVectorComponent y(triplets, 1);
    std::vector<float> seen;
    for (float& value : y) {
        seen.push_back(value);
        value = -value;
    }
    EXPECT_THAT(seen, ElementsAre(2.0f, 5.0f));
    EXPECT_EQ(triplets[1], Triplet(4, -5, 6));
}

} // namespace
