#ifndef QEL_TESTS_SUPPORT_ROUNDED_H
#define QEL_TESTS_SUPPORT_ROUNDED_H

// Single operations, each rounded on its own whatever the compiler would like to make of several:
// references for an order of operations.

namespace qel_test {

template <typename T>
T rounded(T value) {
    const volatile T result = value;
    return result;
}

template <typename T>
T product(T a, T b) {
    return rounded(a * b);
}

template <typename T>
T sum(T a, T b) {
    return rounded(a + b);
}

} // namespace qel_test

#endif
