// Writes docs/accuracy.md to standard output.

#include <iostream>

#include "accuracy/Page.h"

int main() {
    std::cout << qel_accuracy::writePage();
    return std::cout.flush() ? 0 : 1;
}
