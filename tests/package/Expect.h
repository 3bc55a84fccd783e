#ifndef QEL_TESTS_PACKAGE_EXPECT_H
#define QEL_TESTS_PACKAGE_EXPECT_H

// What the external consumers check by; they know no test framework.

#include <iostream>

inline int failures = 0;

inline void expect(bool holds, const char* what) {
    if (!holds) {
        std::cerr << "wrong: " << what << "\n";
        ++failures;
    }
}

#endif
