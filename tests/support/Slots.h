#ifndef QEL_TESTS_SUPPORT_SLOTS_H
#define QEL_TESTS_SUPPORT_SLOTS_H

// Places of virtual operations in their table, as the common C++ ABI stores them in a pointer to
// member: the offset in bytes, plus one on processors whose functions may lie at even addresses
// only. The destructor takes the first two places.

#include <cstddef>
#include <cstring>

namespace qel_test {

template <typename Member>
std::size_t slotOf(Member member) {
    std::size_t encoded = 0;
    static_assert(sizeof(member) >= sizeof(encoded), "a pointer to member");
    std::memcpy(&encoded, &member, sizeof(encoded));
    return encoded / sizeof(void*);
}

constexpr std::size_t kFirstSlotAfterDestructor = 2;

} // namespace qel_test

#endif
