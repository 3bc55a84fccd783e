// Text of the float arrays.

#include <iostream>
#include <sstream>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>

#include "support/SpecialFloats.h"
#include "support/StandardStreams.h"

namespace {

using qel::FloatQELVector;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel_test::kUndef;
using qel_test::standardOutputOf;

FloatQELVectorConcrete counted(std::size_t n) {
    FloatQELVectorConcrete v;
    for (std::size_t i = 0; i < n; ++i) {
        v.push_back(static_cast<float>(i));
    }
    return v;
}

std::string written(const FloatQELVector& v, std::size_t from, std::size_t to) {
    std::ostringstream os;
    v.write(os, from, to);
    return os.str();
}

TEST(FloatText, WriteOfAReversedRange) {
    EXPECT_EQ(written(counted(5), 2, 1), "1<2\n");
}

TEST(FloatText, WriteBeyondTheEnd) {
    EXPECT_EQ(written(counted(5), 0, 9), "9>= size 5\n");
    EXPECT_EQ(written(counted(5), 0, 5), "5>= size 5\n");
}

TEST(FloatText, WriteBreaksLinesAfterEveryEighthValue) {
    EXPECT_EQ(written(counted(20), 0, 19), "0:0,1,2,3,4,5,6,7,\n"
                                           "8:8,9,10,11,12,13,14,15,\n"
                                           "16:16,17,18,19,\n");
}

TEST(FloatText, WriteDoesNotBreakBeforeTheLastValueAlone) {
    EXPECT_EQ(written(counted(20), 0, 8), "0:0,1,2,3,4,5,6,7,8,\n");
    EXPECT_EQ(written(counted(20), 0, 7), "0:0,1,2,3,4,5,6,7,\n");
    EXPECT_EQ(written(counted(20), 0, 9), "0:0,1,2,3,4,5,6,7,\n8:8,9,\n");
    EXPECT_EQ(written(counted(20), 5, 9), "5:5,6,7,\n8:8,9,\n");
}

TEST(FloatText, WriteWithToZeroGoesToTheEnd) {
    EXPECT_EQ(written(counted(3), 0, 0), "0:0,1,2,\n");
    EXPECT_EQ(written(counted(3), 2, 0), "2:2,\n");
    EXPECT_EQ(written(counted(1), 0, 0), "0:0,\n");
    EXPECT_EQ(written(counted(0), 0, 0), "18446744073709551615>= size 0\n");
}

TEST(FloatText, WriteWithoutARangePrintsTheSizeLineAlone) {
    std::ostringstream os;
    counted(5).write(os);
    EXPECT_EQ(os.str(), "5>= size 5\n");
    std::ostringstream empty;
    counted(0).write(empty);
    EXPECT_EQ(empty.str(), "18446744073709551615>= size 0\n");
}

TEST(FloatText, WriteUsesTheStreamsFormattingAndMarksUndefinedValues) {
    FloatQELVectorConcrete v;
    v.push_back(1.23456789f);
    v.push_back(kUndef);
    v.push_back(-kUndef);
    EXPECT_EQ(written(v, 0, 2), "0:1.23457,UNDEF,-3.40282e+38,\n");
    std::ostringstream os;
    os << std::fixed;
    os.precision(2);
    v.write(os, 0, 1);
    EXPECT_EQ(os.str(), "0:1.23,UNDEF,\n");
}

TEST(FloatText, WriteSendsNothingElsewhere) {
    const FloatQELVectorConcrete v = counted(20);
    std::ostringstream os;
    EXPECT_EQ(standardOutputOf([&] { v.write(os, 0, 19); }), "");
}

TEST(FloatText, ToStringIsScientificWithTheGivenPrecision) {
    FloatQELVectorConcrete v;
    EXPECT_EQ(v.toString(3), "");
    v.push_back(1.5f);
    v.push_back(kUndef);
    v.push_back(-20.0f);
    EXPECT_EQ(v.toString(0), "1.500000e+00, UNDEF, -2.000000e+01");
    EXPECT_EQ(v.toString(-4), "1.500000e+00, UNDEF, -2.000000e+01");
    EXPECT_EQ(v.toString(2), "1.50e+00, UNDEF, -2.00e+01");
}

TEST(FloatText, DbprintIsWriteToStandardOutput) {
    const FloatQELVectorConcrete v = counted(3);
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(); }), "3>= size 3\n");
    EXPECT_EQ(standardOutputOf([&] { v.dbprint(1, 2); }), "1:1,2,\n");
    const FloatQELVector& base = v;
    EXPECT_EQ(standardOutputOf([&] { base.dbprint(); }), "3>= size 3\n");
    EXPECT_EQ(standardOutputOf([&] { base.dbprint(2, 1); }), "1<2\n");
    EXPECT_EQ(standardOutputOf([&] { base.FloatQELVector::dbprint(); }), "3>= size 3\n");
}

TEST(FloatText, AViewPrintsItsComponent) {
    qel::TripletQELVector triplets;
    triplets.push_back({1, 2, 3});
    triplets.push_back({4, kUndef, 6});
    const FloatQELVectorComponent view(triplets, 1);
    EXPECT_EQ(written(view, 0, 0), "0:2,UNDEF,\n");
    EXPECT_EQ(view.toString(1), "2.0e+00, UNDEF");
    EXPECT_EQ(standardOutputOf([&] { view.dbprint(); }), "2>= size 2\n");
    EXPECT_EQ(standardOutputOf([&] { view.dbprint(1, 1); }), "1:UNDEF,\n");
}

} // namespace
