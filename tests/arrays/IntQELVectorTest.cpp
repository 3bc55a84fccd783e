#include <qel/IntQELVector.h>

#include <gmock/gmock.h>
#include <type_traits>
#include <utility>

#include "arrays/LengthErrors.h"
#include "support/Slots.h"

namespace {

using qel_test::kEndlessLength;
using qel_test::lengthErrorOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

static_assert(sizeof(qel::IntQELVector) == sizeof(QELVector<int>), "adds no fields");

TEST(IntQELVector, DefaultIsEmpty) {
    EXPECT_THAT(qel::IntQELVector(), IsEmpty());
}

TEST(IntQELVector, OfNIsNZeros) {
    const qel::IntQELVector v(5);
    EXPECT_THAT(v, SizeIs(5));
    EXPECT_THAT(v, Each(0));
    EXPECT_THAT(qel::IntQELVector(0), IsEmpty());
}

TEST(IntQELVector, ForwardsToTheStandardOperations) {
    qel::IntQELVector v;
    v.push_back(7);
    v.push_back(8);
    v.resize(4);
    EXPECT_THAT(v, ElementsAre(7, 8, 0, 0));
    v.pop_back();
    EXPECT_THAT(v, ElementsAre(7, 8, 0));
    v.resize(1);
    EXPECT_THAT(v, ElementsAre(7));
    v.clear();
    EXPECT_THAT(v, IsEmpty());
}

TEST(IntQELVector, InheritedVirtualsWorkThroughTheBase) {
    qel::IntQELVector v;
    QELVector<int>& base = v;
    base.push_back(3);
    std::vector<int> other = {1, 2};
    EXPECT_THAT(v, ElementsAre(3));
    base.swap(other);
    EXPECT_THAT(v, ElementsAre(1, 2));
    EXPECT_THAT(other, ElementsAre(3));
    v.swap(other);
    EXPECT_THAT(v, ElementsAre(3));
}

TEST(IntQELVector, CopiesAreDeep) {
    qel::IntQELVector v(2);
    qel::IntQELVector copy = v;
    v[0] = 1;
    EXPECT_THAT(copy, ElementsAre(0, 0));
    copy = v;
    EXPECT_THAT(copy, ElementsAre(1, 0));
}

TEST(IntQELVector, EveryChangeOfLengthCanBeOverridden) {
    struct Logging : qel::IntQELVector {
        void resize(std::size_t) override { log += 'r'; }
        void push_back(int) override { log += 'p'; }
        void pop_back() override { log += 'o'; }
        void clear() override { log += 'c'; }
        std::string log;
    };
    Logging logging;
    qel::IntQELVector& v = logging;
    v.resize(3);
    v.push_back(1);
    v.pop_back();
    v.clear();
    EXPECT_EQ(logging.log, "rpoc");
}

TEST(IntQELVector, VirtualOperationsStandInOrder) {
    using qel_test::slotOf;
    const std::size_t first = qel_test::kFirstSlotAfterDestructor + 2; // push_back, swap
    EXPECT_EQ(slotOf(&qel::IntQELVector::resize), first);
    EXPECT_EQ(slotOf(&qel::IntQELVector::push_back), first + 1);
    EXPECT_EQ(slotOf(&qel::IntQELVector::pop_back), first + 2);
    EXPECT_EQ(slotOf(&qel::IntQELVector::clear), first + 3);
}

TEST(IntQELVector, TooManyElementsAreTheLengthError) {
    EXPECT_EQ(lengthErrorOf([] { qel::IntQELVector v(kEndlessLength); }), "vector<T> too long");
    qel::IntQELVector v(2);
    EXPECT_EQ(lengthErrorOf([&] { v.resize(kEndlessLength); }), "vector<T> too long");
    EXPECT_THAT(v, ElementsAre(0, 0));
}

TEST(IntQELVectorDeathTest, PopBackOfAnEmptyArrayIsFatal) {
    qel::IntQELVector v;
    EXPECT_DEATH(v.pop_back(), "");
}

TEST(IntQELVector, IsMovedWithItsStorage) {
    static_assert(std::is_nothrow_move_constructible<qel::IntQELVector>::value, "cheap to return");
    static_assert(std::is_nothrow_move_assignable<qel::IntQELVector>::value, "cheap to replace");
    qel::IntQELVector source(3);
    const int* const storage = source.data();
    qel::IntQELVector moved(std::move(source));
    EXPECT_EQ(moved.data(), storage);
    EXPECT_THAT(source, IsEmpty());
    source = std::move(moved);
    EXPECT_EQ(source.data(), storage);
    EXPECT_THAT(source, SizeIs(3));
}

} // namespace
