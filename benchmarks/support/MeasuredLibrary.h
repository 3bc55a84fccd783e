#ifndef QEL_BENCHMARKS_SUPPORT_MEASUREDLIBRARY_H
#define QEL_BENCHMARKS_SUPPORT_MEASUREDLIBRARY_H

#include <string>

namespace qel_benchmark {

// Makes the library use a vector unit: "portable", "AVX2", "AVX-512", or the widest if empty.
// Returns the name of the unit in use, or nothing if the machine does not have it.
__attribute__((visibility("default"))) std::string useVectorUnit(const std::string& name);

} // namespace qel_benchmark

#endif
