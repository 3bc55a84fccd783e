#ifndef QEL_TESTS_ACCURACY_PAGE_H
#define QEL_TESTS_ACCURACY_PAGE_H

#include <string>

namespace qel_accuracy {

// docs/accuracy.md, measured now.
std::string writePage();

} // namespace qel_accuracy

#endif
