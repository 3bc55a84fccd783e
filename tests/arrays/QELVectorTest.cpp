#include <qel/QELVector.h>

#include <type_traits>
#include <utility>

#include <gmock/gmock.h>

#include <qel/TripletBase.h>

#include "arrays/LengthErrors.h"
#include "support/Slots.h"

namespace {

using qel_test::lengthErrorOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(std::is_base_of<std::vector<int>, QELVector<int>>::value, "a standard array");
static_assert(std::has_virtual_destructor<QELVector<int>>::value, "deletable through the base");
static_assert(sizeof(QELVector<int>) == sizeof(void*) + sizeof(std::vector<int>),
              "adds the virtual table alone");

QELVector<int> oneTwoThree() {
    QELVector<int> v;
    v.push_back(1);
    v.push_back(2);
    v.push_back(3);
    return v;
}

TEST(QELVector, SwapWithItselfLeavesTheContents) {
    QELVector<int> v = oneTwoThree();
    v.swap(v);
    EXPECT_THAT(v, ElementsAre(1, 2, 3));
}

TEST(QELVector, PushBackThroughABaseReferenceIsTheSame) {
    struct Doubling : QELVector<int> {
        void push_back(const int& value) override { QELVector<int>::push_back(2 * value); }
    };
    Doubling derived;
    QELVector<int>& base = derived;
    derived.push_back(1);
    base.push_back(2);
    EXPECT_THAT(derived, ElementsAre(2, 4));

    QELVector<int> direct = oneTwoThree();
    QELVector<int> referred = oneTwoThree();
    QELVector<int>& reference = referred;
    direct.push_back(4);
    reference.push_back(4);
    EXPECT_EQ(direct, referred);
}

TEST(QELVector, DefaultOneIsEmptyAndCanBeSwappedWithAnother) {
    QELVector<int> empty;
    QELVector<int> full = oneTwoThree();
    const int* const storage = full.data();
    EXPECT_EQ(empty.size(), 0u);
    empty.swap(full);
    EXPECT_THAT(full, IsEmpty());
    EXPECT_THAT(empty, ElementsAre(1, 2, 3));
    EXPECT_EQ(empty.data(), storage) << "swapping moves no element";
}

TEST(QELVector, SwapsWithAPlainStandardArray) {
    QELVector<int> v = oneTwoThree();
    std::vector<int> plain = {7, 8};
    v.swap(plain);
    EXPECT_THAT(v, ElementsAre(7, 8));
    EXPECT_THAT(plain, ElementsAre(1, 2, 3));
}

TEST(QELVector, CopiesAreDeep) {
    QELVector<int> v = oneTwoThree();
    QELVector<int> copy = v;
    QELVector<int> assigned;
    assigned = v;
    v[0] = 9;
    EXPECT_THAT(copy, ElementsAre(1, 2, 3));
    EXPECT_THAT(assigned, ElementsAre(1, 2, 3));
}

TEST(QELVector, AppendsItsOwnElementWhileGrowing) {
    QELVector<int> v;
    v.push_back(5);
    for (int i = 0; i < 100; ++i) {
        v.push_back(v.front());
    }
    EXPECT_THAT(v, ::testing::Each(5));
}

TEST(QELVector, VirtualOperationsStandInOrder) {
    using qel_test::kFirstSlotAfterDestructor;
    using qel_test::slotOf;
    EXPECT_EQ(slotOf(&QELVector<int>::push_back), kFirstSlotAfterDestructor);
    EXPECT_EQ(
        slotOf(static_cast<void (QELVector<int>::*)(std::vector<int>&)>(&QELVector<int>::swap)),
        kFirstSlotAfterDestructor + 1);
}

TEST(QELVector, DeletingThroughTheBaseReleasesTheElements) {
    static int alive = 0;
    struct Counted {
        Counted() { ++alive; }
        Counted(const Counted&) { ++alive; }
        Counted& operator=(const Counted&) = default;
        ~Counted() { --alive; }
    };
    struct Derived : QELVector<Counted> {};
    QELVector<Counted>* v = new Derived;
    v->push_back(Counted());
    EXPECT_EQ(alive, 1);
    delete v;
    EXPECT_EQ(alive, 0);
}

TEST(QELVector, AssignsAndInsertsManyCopies) {
    QELVector<int> v = oneTwoThree();
    const auto first = v.insert(v.begin() + 1, 2, 7);
    EXPECT_EQ(first - v.begin(), 1);
    EXPECT_THAT(v, ElementsAre(1, 7, 7, 2, 3));
    v.assign(2, 5);
    EXPECT_THAT(v, ElementsAre(5, 5));
}

TEST(QELVector, BeyondTheMaximumLengthIsTheLengthError) {
    QELVector<int> v = oneTwoThree();
    const std::size_t tooMany = v.max_size() + 1;
    EXPECT_EQ(lengthErrorOf([&] { v.resize(tooMany); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { v.resize(tooMany, 1); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { v.reserve(tooMany); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { v.assign(tooMany, 1); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { v.insert(v.begin(), tooMany - 3, 1); }), "vector<T> too long");
    EXPECT_THAT(v, ElementsAre(1, 2, 3));
}

TEST(QELVector, TripletsLieInOneRunOfFloats) {
    QELVector<qel::TripletBase<float>> v;
    v.push_back({1, 2, 3});
    v.push_back({4, 5, 6});
    EXPECT_EQ(&v[1].x - &v[0].x, 3);
}

TEST(QELVectorDeathTest, IndexAtTheSizeIsFatal) {
    QELVector<int> v = oneTwoThree();
    EXPECT_DEATH(v[3] = 1, "");
    const QELVector<int> empty;
    EXPECT_DEATH(static_cast<void>(empty[0]), "");
}

TEST(QELVectorDeathTest, EndsOfAnEmptyArrayAreFatal) {
    QELVector<int> v;
    EXPECT_DEATH(v.front() = 1, "");
    EXPECT_DEATH(v.pop_back(), "");
}

// -- Moving, and braces ----

static_assert(std::is_nothrow_move_constructible<QELVector<int>>::value, "cheap to return");
static_assert(std::is_nothrow_move_assignable<QELVector<int>>::value, "cheap to replace");

TEST(QELVector, IsMovedWithItsStorage) {
    QELVector<int> source{4, 5, 6};
    const int* const storage = source.data();
    QELVector<int> moved(std::move(source));
    EXPECT_EQ(moved.data(), storage);
    EXPECT_THAT(moved, ElementsAre(4, 5, 6));
    EXPECT_THAT(source, IsEmpty());
    QELVector<int> assigned{1};
    assigned = std::move(moved);
    EXPECT_EQ(assigned.data(), storage);
    EXPECT_THAT(moved, IsEmpty());
    moved.push_back(7);
    EXPECT_THAT(moved, ElementsAre(7));
}

} // namespace
