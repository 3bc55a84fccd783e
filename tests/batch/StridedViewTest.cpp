#include <qel/StridedView.h>

#include <array>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Errors.h"

namespace qel_test {
namespace {

using namespace qel;

// -- Numbers ----

TEST(ScalarView, OfNothingIsEmpty) {
    const ScalarView<float> none;
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.size(), 0U);
    EXPECT_EQ(none.data(), nullptr);
}

TEST(ScalarView, ReadsNumbersSideBySide) {
    const double numbers[] = {1.5, 2.5, 3.5};
    const ScalarView<const double> view(numbers, 3);
    EXPECT_EQ(view.size(), 3U);
    EXPECT_TRUE(view.isContiguous());
    EXPECT_EQ(view[0], 1.5);
    EXPECT_EQ(view[2], 3.5);
}

TEST(ScalarView, ReadsOneMemberOfARecord) {
    struct Cell {
        double volume;
        float pressure;
        int kind;
    };
    const Cell cells[] = {{1.0, 10.0f, 1}, {2.0, 20.0f, 2}, {3.0, 30.0f, 3}};
    const ScalarView<const float> pressure(&cells[0].pressure, 3, sizeof(Cell));
    EXPECT_FALSE(pressure.isContiguous());
    EXPECT_EQ(pressure[1], 20.0f);
    const ScalarView<const int> kind(&cells[0].kind, 3, sizeof(Cell));
    EXPECT_EQ(kind[2], 3);
}

TEST(ScalarView, ReadsBackwardsByANegativeStride) {
    const float numbers[] = {1, 2, 3, 4};
    const ScalarView<const float> view(numbers + 3, 4, -static_cast<std::ptrdiff_t>(sizeof(float)));
    EXPECT_EQ(view[0], 4.0f);
    EXPECT_EQ(view[3], 1.0f);
}

TEST(ScalarView, RepeatsOneNumberByAStrideOfZero) {
    const float number = 7;
    const ScalarView<const float> view(&number, 1000, 0);
    EXPECT_EQ(view.size(), 1000U);
    EXPECT_EQ(view[999], 7.0f);
}

TEST(ScalarView, ReadsAndWritesNumbersThatAreNotAligned) {
    std::array<char, 1 + 3 * sizeof(double)> bytes{};
    const double numbers[] = {1.0, -2.0, 3.0};
    std::memcpy(bytes.data() + 1, numbers, sizeof numbers);
    const ScalarView<double> view(reinterpret_cast<double*>(bytes.data() + 1), 3);
    EXPECT_EQ(view[1], -2.0);
    view.set(1, 5.0);
    EXPECT_EQ(view[1], 5.0);
    EXPECT_EQ(view[0], 1.0);
    EXPECT_EQ(view[2], 3.0);
    EXPECT_EQ(bytes[0], 0);
}

TEST(ScalarView, IsMadeFromVectors) {
    std::vector<double> numbers = {1, 2};
    const ScalarView<double> writable = numbers;
    writable.set(0, 4.0);
    EXPECT_EQ(numbers[0], 4.0);
    const std::vector<double>& fixed = numbers;
    const ScalarView<const double> readable = fixed;
    EXPECT_EQ(readable[0], 4.0);
    EXPECT_EQ(readable.data(), numbers.data());

    QELVector<int> counts;
    counts.push_back(3);
    const ScalarView<const int> counted = counts;
    EXPECT_EQ(counted[0], 3);
}

// A view of const numbers is never a way to write them.
TEST(ScalarView, CannotBeMadeToWriteWhatIsConst) {
    EXPECT_FALSE((std::is_constructible_v<ScalarView<double>, const std::vector<double>&>));
    EXPECT_FALSE((std::is_constructible_v<ScalarView<double>, ScalarView<const double>>));
    EXPECT_FALSE((std::is_constructible_v<ScalarView<float>, const FloatQELVectorConcrete&>));
    EXPECT_TRUE((std::is_convertible_v<ScalarView<double>, ScalarView<const double>>));
    EXPECT_FALSE((std::is_constructible_v<ScalarView<const double>, std::vector<float>&>));
}

TEST(ScalarView, OfAFloatArrayReadsItAndLeavesItsStatistics) {
    const float values[] = {3, 1, 2};
    FloatQELVectorConcrete array(values, 3);
    EXPECT_EQ(array.getMax(), 3.0f);
    const FloatQELVectorConcrete& fixed = array;
    const ScalarView<const float> view = fixed;
    EXPECT_EQ(view[0], 3.0f);
    EXPECT_EQ(view.size(), 3U);
    EXPECT_EQ(view.data(), &fixed[0]);
}

TEST(ScalarView, ThatMayWriteExpiresTheStatisticsOfAFloatArray) {
    const float values[] = {3, 1, 2};
    FloatQELVectorConcrete array(values, 3);
    EXPECT_EQ(array.getMax(), 3.0f);
    const ScalarView<float> view = array;
    view.set(0, 9.0f);
    EXPECT_EQ(array.getMax(), 9.0f);
}

TEST(ScalarView, OfAComponentSkipsTheOtherTwo) {
    const float values[] = {1, 2, 3, 4, 5, 6};
    TripletQELVector triplets(values, 6);
    FloatQELVectorComponent y(triplets, 1);
    const ScalarView<float> view = y;
    EXPECT_EQ(view.size(), 2U);
    EXPECT_EQ(view[1], 5.0f);
    view.set(1, 50.0f);
    EXPECT_EQ(triplets[1], TripletBase<float>(4, 50, 6));
}

TEST(ScalarView, OfAnEmptyArrayIsEmpty) {
    FloatQELVectorConcrete none;
    const ScalarView<float> view = none;
    EXPECT_TRUE(view.empty());
    TripletQELVector noTriplets;
    FloatQELVectorComponent noX(noTriplets, 0);
    const ScalarView<const float> componentView = noX;
    EXPECT_TRUE(componentView.empty());
}

TEST(ScalarView, RefusesNumbersAtANullPointer) {
    EXPECT_THAT([] { ScalarView<const float>(nullptr, 3); },
                throwsInvalid("ScalarView", "constructor", "3 numbers at a null pointer."));
    EXPECT_THAT([] { TripletView<double>(static_cast<double*>(nullptr), 2); },
                throwsInvalid("ScalarView", "constructor", "2 numbers at a null pointer."));
    EXPECT_TRUE(ScalarView<const float>(nullptr, 0).empty());
}

TEST(ScalarView, GivesAPartOfItself) {
    const float numbers[] = {1, 2, 3, 4};
    const ScalarView<const float> view(numbers, 4);
    const ScalarView<const float> inner = view.part(1, 2);
    EXPECT_EQ(inner.size(), 2U);
    EXPECT_EQ(inner[0], 2.0f);
    EXPECT_EQ(inner[1], 3.0f);
    EXPECT_TRUE(view.part(4, 0).empty());
    EXPECT_TRUE(view.part(0, 0).empty());
}

TEST(ScalarViewDeathTest, IndexBeyondSize) {
    float numbers[] = {1, 2};
    const ScalarView<float> view(numbers, 2);
    EXPECT_DEATH(static_cast<void>(view[2]), "");
    EXPECT_DEATH(view.set(2, 0.0f), "");
    EXPECT_DEATH(static_cast<void>(view.part(1, 2)), "");
    EXPECT_DEATH(static_cast<void>(view.part(3, 0)), "");
}

// -- Triplets ----

TEST(TripletView, ReadsTripletsSideBySide) {
    const float numbers[] = {1, 2, 3, 4, 5, 6};
    const TripletView<const float> view(numbers, 2);
    EXPECT_TRUE(view.isContiguous());
    EXPECT_EQ(view[0], TripletBase<float>(1, 2, 3));
    EXPECT_EQ(view[1], TripletBase<float>(4, 5, 6));
    EXPECT_EQ(view.y()[1], 5.0f);
}

TEST(TripletView, ReadsColumnsThatLieApart) {
    const double x[] = {1, 2};
    const double y[] = {3, 4};
    const double z[] = {5, 6};
    const TripletView<const double> view({x, 2}, {y, 2}, {z, 2});
    EXPECT_FALSE(view.isInterleaved());
    EXPECT_EQ(view[1], TripletBase<double>(2, 4, 6));
}

TEST(TripletView, ReadsTheColumnsOfAMatrixStoredColumnByColumn) {
    const double columns[] = {1, 2, 3, 4, 5, 6}; // x x y y z z
    const TripletView<const double> view(columns, 2, sizeof(double), 2 * sizeof(double));
    EXPECT_EQ(view[0], TripletBase<double>(1, 3, 5));
    EXPECT_EQ(view[1], TripletBase<double>(2, 4, 6));
    EXPECT_FALSE(view.isInterleaved());
}

TEST(TripletView, OfRecordsIsInterleavedButNotContiguous) {
    struct Node {
        double id;
        TripletBase<double> place;
    };
    const Node nodes[] = {{1, {1, 2, 3}}, {2, {4, 5, 6}}};
    const TripletView<const double> view(&nodes[0].place.x, 2, sizeof(Node));
    EXPECT_TRUE(view.isInterleaved());
    EXPECT_FALSE(view.isContiguous());
    EXPECT_EQ(view[1], TripletBase<double>(4, 5, 6));
}

TEST(TripletView, ReadsBackwardsByANegativeStride) {
    const float numbers[] = {1, 2, 3, 4, 5, 6};
    const TripletView<const float> view(numbers + 3, 2,
                                        -3 * static_cast<std::ptrdiff_t>(sizeof(float)));
    EXPECT_EQ(view[0], TripletBase<float>(4, 5, 6));
    EXPECT_EQ(view[1], TripletBase<float>(1, 2, 3));
}

TEST(TripletView, RefusesComponentsOfDifferentSizes) {
    const float numbers[] = {1, 2, 3};
    EXPECT_THAT(([&] {
                    TripletView<const float>({numbers, 3}, {numbers, 3}, {numbers, 2});
                }),
                throwsInvalid("TripletView", "constructor",
                              "The components have different sizes: 3, 3 and 2."));
    EXPECT_THAT(([&] {
                    TripletView<const float>({numbers, 3}, {numbers, 1}, {numbers, 3});
                }),
                throwsInvalid("TripletView", "constructor",
                              "The components have different sizes: 3, 1 and 3."));
}

TEST(TripletView, IsMadeFromArraysOfTriplets) {
    std::vector<TripletBase<double>> points = {{1, 2, 3}, {4, 5, 6}};
    const TripletView<double> writable = points;
    writable.set(0, {7, 8, 9});
    EXPECT_EQ(points[0], TripletBase<double>(7, 8, 9));
    const TripletView<const double> readable = writable;
    EXPECT_EQ(readable[0], TripletBase<double>(7, 8, 9));
    const TripletView<const double> fromPointer(points.data(), 1);
    EXPECT_EQ(fromPointer[0], TripletBase<double>(7, 8, 9));

    const std::vector<TripletBase<double>> none;
    EXPECT_TRUE(TripletView<const double>(none).empty());
}

TEST(TripletView, ThatMayWriteExpiresTheStatisticsOfATripletArray) {
    const float values[] = {3, 0, 0, 1, 0, 0};
    TripletQELVector array(values, 6);
    EXPECT_EQ(array.getMin(), 1.0f);
    const TripletView<float> view = array;
    view.set(1, {0.5f, 0, 0});
    EXPECT_EQ(array.getMin(), 0.5f);
    const TripletQELVector& fixed = array;
    const TripletView<const float> readable = fixed;
    EXPECT_EQ(readable[1].x, 0.5f);
}

TEST(TripletView, CannotBeMadeToWriteWhatIsConst) {
    EXPECT_FALSE(
        (std::is_constructible_v<TripletView<float>, const std::vector<TripletBase<float>>&>));
    EXPECT_FALSE((std::is_constructible_v<TripletView<float>, const TripletQELVector&>));
    EXPECT_FALSE((std::is_constructible_v<TripletView<float>, TripletView<const float>>));
}

TEST(TripletView, GivesAPartOfItself) {
    const float numbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const TripletView<const float> view(numbers, 3);
    EXPECT_EQ(view.part(1, 2)[1], TripletBase<float>(7, 8, 9));
    EXPECT_TRUE(view.part(3, 0).empty());
}

// -- Tensors ----

TEST(TensorView, ReadsNineElementsRowByRow) {
    const double numbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    const TensorView<const double> view(numbers, 2);
    EXPECT_TRUE(view.isInterleaved());
    EXPECT_EQ(view.size(), 2U);
    EXPECT_EQ(view.row(0)[0], TripletBase<double>(1, 2, 3));
    EXPECT_EQ(view.row(2)[1], TripletBase<double>(17, 18, 19));
}

TEST(TensorView, ReadsRowsThatLieApart) {
    const std::vector<TripletBase<float>> u = {{1, 2, 3}};
    const std::vector<TripletBase<float>> v = {{4, 5, 6}};
    TripletQELVector w;
    w.push_back({7, 8, 9});
    const TensorView<const float> view(u, v, TripletView<const float>(w));
    EXPECT_FALSE(view.isInterleaved());
    EXPECT_EQ(view.row(1)[0], TripletBase<float>(4, 5, 6));
    EXPECT_EQ(view.row(2)[0], TripletBase<float>(7, 8, 9));
}

TEST(TensorView, TransposedExchangesRowsAndColumns) {
    const double numbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const TensorView<const double> view(numbers, 1);
    const TensorView<const double> turned = view.transposed();
    EXPECT_FALSE(turned.isInterleaved());
    EXPECT_EQ(turned.row(0)[0], TripletBase<double>(1, 4, 7));
    EXPECT_EQ(turned.row(2)[0], TripletBase<double>(3, 6, 9));
    EXPECT_TRUE(turned.transposed().isInterleaved());
}

TEST(TensorView, ReadsElementsByStridesOfTheirOwn) {
    // Component by component: nine columns of two numbers.
    const float columns[] = {1, 10, 2, 20, 3, 30, 4, 40, 5, 50, 6, 60, 7, 70, 8, 80, 9, 90};
    const TensorView<const float> view(columns, 2, sizeof(float), 6 * sizeof(float),
                                       2 * sizeof(float));
    EXPECT_EQ(view.row(1)[0], TripletBase<float>(4, 5, 6));
    EXPECT_EQ(view.row(1)[1], TripletBase<float>(40, 50, 60));
}

TEST(TensorView, RefusesRowsOfDifferentSizes) {
    const float numbers[] = {1, 2, 3, 4, 5, 6};
    const TripletView<const float> one(numbers, 1);
    const TripletView<const float> two(numbers, 2);
    EXPECT_THAT(
        [&] { TensorView<const float>(two, one, two); },
        throwsInvalid("TensorView", "constructor", "The rows have different sizes: 2, 1 and 2."));
}

TEST(TensorView, GivesAPartOfItself) {
    const double numbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    const TensorView<const double> view(numbers, 2);
    EXPECT_EQ(view.part(1, 1).row(0)[0], TripletBase<double>(11, 12, 13));
    EXPECT_TRUE(view.part(1, 1).isInterleaved());
}

TEST(TensorViewDeathTest, RowBeyondTheThird) {
    const TensorView<const float> none;
    EXPECT_DEATH(static_cast<void>(none.row(3)), "");
    EXPECT_DEATH(static_cast<void>(none.row(-1)), "");
}

} // namespace
} // namespace qel_test
