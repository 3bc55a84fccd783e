#include "curve/BracketSearch.h"

#include <algorithm>
#include <cstdint>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

struct SearchKernel {
    // The last s-value that is not above each parameter, but neither the last of all.
    QEL_KERNEL static void searchGroup(const double* svalues, std::size_t size,
                                       const double* parameters, std::uint64_t* lower) {
        std::fill_n(lower, kSearchGroup, std::uint64_t{0});
        for (std::size_t left = size - 1; left > 1;) {
            const std::size_t half = left / 2;
            for (std::size_t k = 0; k < kSearchGroup; ++k) {
                // All ones or none: as a choice it may become a branch.
                const std::uint64_t isReached =
                    std::uint64_t{0} - std::uint64_t{svalues[lower[k] + half] <= parameters[k]};
                lower[k] += half & isReached;
            }
            left -= half;
        }
    }

    QEL_KERNEL static void run(const double* svalues, std::size_t size, const double* parameters,
                               std::size_t count, std::uint64_t* above, double* weights) {
        for (std::size_t first = 0; first < count; first += kSearchGroup) {
            std::uint64_t lower[kSearchGroup];
            searchGroup(svalues, size, parameters + first, lower);
            for (std::size_t k = 0; k < kSearchGroup; ++k) {
                const double sLo = svalues[lower[k]];
                const double sHi = svalues[lower[k] + 1];
                above[first + k] = lower[k] + 1;
                weights[first + k] = (parameters[first + k] - sLo) / (sHi - sLo);
            }
        }
    }
};

} // namespace

std::size_t searchBrackets(const double* svalues, std::size_t size, const double* parameters,
                           std::size_t count, BracketBlock& block) {
    const std::size_t room = std::min(count, BracketBlock::kCount);
    const std::size_t found = room / kSearchGroup * kSearchGroup;
    onVectorUnit<SearchKernel>(svalues, size, parameters, found, block.allAbove(), block.weights());
    return found;
}

} // namespace qel
