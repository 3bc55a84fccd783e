// Many threads read one array whose statistics have been computed: for ThreadSanitizer.

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TripletQELVector.h>

namespace {

TEST(Concurrency, ThreadsReadOneArray) {
    const qel::FloatQELVectorConcrete values = {3.0f, -1.0f, 2.0f};
    const qel::TripletQELVector triplets = {{3, 4, 0}, {0, 0, 1}};
    const float sum = values.getSum(); // from here on statistics are only read
    const float largest = triplets.getMax();
    std::vector<float> sums(4);
    std::vector<std::thread> threads;
    for (float& found : sums) {
        threads.emplace_back([&] {
            found = values.getSum() + triplets.getMax() + values[0] + triplets[1].z;
            found += static_cast<float>(values.toString(1).size() + triplets.toString().size());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const auto texts = static_cast<float>(values.toString(1).size() + triplets.toString().size());
    for (const float found : sums) {
        EXPECT_EQ(found, sum + largest + 3.0f + 1.0f + texts);
    }
}

} // namespace
