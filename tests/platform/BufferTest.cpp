#include "platform/Buffer.h"

#include <cstdint>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

using qel::Buffer;

namespace {

// Elements hold what is written, also after a move.
void checkElements(std::size_t size) {
    Buffer<std::uint32_t> buffer(size);
    ASSERT_EQ(buffer.size(), size);
    const auto address = reinterpret_cast<std::uintptr_t>(buffer.data());
    EXPECT_EQ(address % 64, 0u);
    for (std::size_t i = 0; i < size; ++i) {
        buffer[i] = static_cast<std::uint32_t>(3 * i);
    }
    const Buffer<std::uint32_t> moved = std::move(buffer);
    EXPECT_EQ(buffer.size(), 0u);
    EXPECT_EQ(moved.size(), size);
    std::uint32_t expected = 0;
    for (const std::uint32_t element : moved) {
        ASSERT_EQ(element, expected);
        expected += 3;
    }
}

} // namespace

TEST(Buffer, HoldsWhatIsWritten) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{1000}, std::size_t{3000000}}) {
        SCOPED_TRACE(size);
        checkElements(size);
    }
}

TEST(Buffer, MayBeEmpty) {
    const Buffer<double> none;
    EXPECT_EQ(none.size(), 0u);
    EXPECT_EQ(none.begin(), none.end());
    EXPECT_EQ(Buffer<double>(0).size(), 0u);
}

TEST(Buffer, SizesBeyondMemoryAreRefused) {
    EXPECT_THROW(Buffer<double>(std::numeric_limits<std::size_t>::max() / 4), std::bad_alloc);
}
