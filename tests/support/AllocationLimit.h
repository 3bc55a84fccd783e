#ifndef QEL_TESTS_SUPPORT_ALLOCATIONLIMIT_H
#define QEL_TESTS_SUPPORT_ALLOCATIONLIMIT_H

// Lets memory run out after so many allocations. For programs that take in AllocationLimit.cpp,
// which replaces the global operator new.

namespace qel_test {

// While one lives, the first allocations succeed and all others throw std::bad_alloc.
class AllocationLimit {
public:
    explicit AllocationLimit(int allowed);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};

} // namespace qel_test

#endif
