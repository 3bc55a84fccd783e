#include "platform/LargePages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace qel {

void adviseLargePages(void* memory, std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (!isInLargePages(bytes)) {
        return;
    }
    // Advice is taken for whole small pages; large ones form where they fit.
    constexpr std::uintptr_t kPageBytes = std::uintptr_t{1} << 16; // no machine has wider ones
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (address + kPageBytes - 1) / kPageBytes * kPageBytes;
    const std::uintptr_t last = (address + bytes) / kPageBytes * kPageBytes;
    // A system that does not grant them gives small ones: nothing to handle.
    madvise(static_cast<char*>(memory) + (first - address), last - first, MADV_HUGEPAGE);
#else
    static_cast<void>(memory);
    static_cast<void>(bytes);
#endif
}

} // namespace qel
