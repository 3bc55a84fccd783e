#include "platform/LargePages.h"

#if defined(__linux__)
#include <sys/mman.h>

#include <cstdint>
#endif

namespace qel {

void adviseLargePages(void* memory, std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::size_t kLargePage = std::size_t{1} << 21, kSmallPage = std::size_t{1} << 16;
    if (bytes >= 2 * kLargePage) {
        // Advice is taken for whole small pages, which no machine has wider than 64 KiB.
        const std::size_t ahead =
            (kSmallPage - reinterpret_cast<std::uintptr_t>(memory) % kSmallPage) % kSmallPage;
        madvise(static_cast<char*>(memory) + ahead, (bytes - ahead) / kSmallPage * kSmallPage,
                MADV_HUGEPAGE); // only an advice: an error leaves small pages
    }
#else
    static_cast<void>(memory);
    static_cast<void>(bytes);
#endif
}

} // namespace qel
