#ifndef QEL_PLATFORM_LARGEPAGES_H
#define QEL_PLATFORM_LARGEPAGES_H

#include <cstddef>

namespace qel {

/// Asks for large pages for memory that has not been touched yet, so that random reads miss fewer
/// address translations. Does nothing where the system has none to give.
void adviseLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace qel

#endif
