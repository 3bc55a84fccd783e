// The rows of the benchmarks: who is measured, and what is written.
#include "support/Row.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using qel_benchmark::CostHistory;
using qel_benchmark::keep;
using qel_benchmark::kLibrary;
using qel_benchmark::kPlain;
using qel_benchmark::Plan;
using qel_benchmark::Row;

namespace {

Plan shortPlan() {
    Plan plan;
    plan.batchSeconds = 1e-5;
    plan.rounds = 3;
    return plan;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class RowTest : public testing::Test {
protected:
    Plan plan_ = shortPlan();
    CostHistory costs_;
};

} // namespace

TEST_F(RowTest, CostsGoOnAsTheyGrew) {
    EXPECT_EQ(costs_.expected("a", 10), 0.0);
    costs_.add("a", 10, 2.0);
    EXPECT_DOUBLE_EQ(costs_.expected("a", 100), 20.0);
    costs_.add("a", 100, 200.0);
    EXPECT_NEAR(costs_.expected("a", 1000), 20000.0, 1e-6);
    EXPECT_EQ(costs_.expected("b", 1000), 0.0);
}

TEST_F(RowTest, MeasuresEachContender) {
    Row row(plan_, costs_, 100);
    row.setItems(100);
    int library = 0;
    int plain = 0;
    row.add(kLibrary, [&] { ++library; });
    row.add(kPlain, [&] { ++plain; });
    EXPECT_FALSE(row.isMeasured());
    row.measure();
    EXPECT_TRUE(row.isMeasured());
    EXPECT_GT(library, 3);
    EXPECT_GT(plain, 3);
    EXPECT_TRUE(contains(row.json(), "\"items\": 100, \"ns\": {\"library\": "));
    EXPECT_TRUE(contains(row.json(), "\"plain loop\": "));
    EXPECT_GT(costs_.expected(kLibrary, 100), 0.0);
}

TEST_F(RowTest, SaysThatResultsDiffer) {
    Row row(plan_, costs_, 1);
    row.add(kLibrary, [] {});
    row.add(kPlain, [] {});
    row.measure();
    row.expectSame(true);
    EXPECT_TRUE(contains(row.json(), "\"differs\": false"));
    row.expectSame(false);
    row.expectSame(true);
    EXPECT_TRUE(contains(row.json(), "\"differs\": true"));
}

TEST_F(RowTest, ComparesNothingWithTheLibraryAlone) {
    plan_.libraryAlone = true;
    Row row(plan_, costs_, 1);
    row.add(kLibrary, [] {});
    row.add(kPlain, [] { ADD_FAILURE(); });
    row.add("a peer", [] { ADD_FAILURE(); });
    row.measure();
    EXPECT_FALSE(row.canCompare());
    row.expectSame(false);
    EXPECT_TRUE(contains(row.json(), "\"differs\": false"));
}

TEST_F(RowTest, LeavesOutWhatWouldTakeTooLong) {
    plan_.maxCallSeconds = 1.0;
    costs_.add(kPlain, 10, 0.2);
    Row row(plan_, costs_, 100);
    row.add(kLibrary, [] {});
    row.add(kPlain, [] { ADD_FAILURE(); });
    row.measure();
    EXPECT_TRUE(contains(row.json(), "\"too_slow\": [\"plain loop\"]"));
    EXPECT_FALSE(row.wants(kPlain));
    EXPECT_TRUE(row.wants("a peer"));
}

TEST_F(RowTest, LeavesOutWhatTakesTooLongToPrepare) {
    plan_.maxCallSeconds = 1.0;
    costs_.add("a peer", 10, 0.05);
    Row row(plan_, costs_, 100);
    EXPECT_TRUE(row.wants("a peer", 4));
    EXPECT_FALSE(row.wants("a peer", 10));
}

TEST_F(RowTest, CallsThatChangeAnObjectGetACopyEach) {
    Row row(plan_, costs_, 2);
    const std::vector<int> original = {1, 2};
    bool allFresh = true;
    int calls = 0;
    row.addOnCopies(kLibrary, original, 2 * sizeof(int), [&](std::vector<int>& copy) {
        allFresh = allFresh && copy == original;
        copy.push_back(3);
        ++calls;
    });
    row.measure();
    EXPECT_TRUE(allFresh);
    EXPECT_GT(calls, 3);
    EXPECT_EQ(original.size(), 2u);
}

TEST_F(RowTest, LargeObjectsAreCopiedOneAtATime) {
    plan_.batchSeconds = 1e-4;
    Row row(plan_, costs_, 1000000);
    const std::vector<char> original(1000000, 'a');
    bool allFresh = true;
    row.addOnCopies(kLibrary, original, original.size(), [&](std::vector<char>& copy) {
        allFresh = allFresh && copy.back() == 'a';
        copy.back() = 'b';
    });
    row.measure();
    EXPECT_TRUE(allFresh);
}
