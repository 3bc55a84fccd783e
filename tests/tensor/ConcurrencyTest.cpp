// Many threads analyse with one object: for ThreadSanitizer.

#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

namespace {

using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;

TripletQELVector randomRows(std::size_t n, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<float> normal;
    TripletQELVector rows;
    for (std::size_t i = 0; i < n; ++i) {
        const float x = normal(random), y = normal(random), z = normal(random);
        rows.push_back({x, y, z});
    }
    return rows;
}

struct Results {
    FloatQELVectorConcrete lambda2, swirl, eigenvalue, stretch;
};

TEST(Concurrency, ThreadsAnalyseWithOneObject) {
    constexpr std::size_t kPoints = 5000;
    const TripletQELVector row1 = randomRows(kPoints, 1);
    const TripletQELVector row2 = randomRows(kPoints, 2);
    const TripletQELVector row3 = randomRows(kPoints, 3);
    const qel::TensorEigenizer tensor(kPoints, row1, row2, row3);
    const auto analyse = [&tensor](Results& out) {
        tensor.get2ndEValSymmTT(out.lambda2);
        tensor.getSwirlStrength(out.swirl, out.eigenvalue);
        tensor.getSwirlStretchRate(out.swirl, out.eigenvalue, out.stretch);
    };
    Results alone;
    analyse(alone);
    std::vector<Results> results(4);
    std::vector<std::thread> threads;
    for (Results& result : results) {
        threads.emplace_back([&result, &analyse] { analyse(result); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Results& result : results) {
        EXPECT_EQ(result.lambda2.getInternals(), alone.lambda2.getInternals());
        EXPECT_EQ(result.swirl.getInternals(), alone.swirl.getInternals());
        EXPECT_EQ(result.stretch.getInternals(), alone.stretch.getInternals());
    }
}

} // namespace
