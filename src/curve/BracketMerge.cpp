#include "curve/BracketMerge.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kPieces = 6; // as many as the registers hold

// Compares all neighbours, so that lanes help.
struct SortedKernel {
    QEL_KERNEL static bool run(const double* parameters) {
        std::uint64_t descents = 0;
        for (std::size_t k = 1; k < BracketBlock::kCount; ++k) {
            descents |= parameters[k - 1] <= parameters[k] ? 0 : std::uint64_t{1};
        }
        return descents == 0;
    }
};

} // namespace

bool areSorted(const double* parameters) {
    return onVectorUnit<SortedKernel>(parameters);
}

class BracketMerge {
public:
    static constexpr std::size_t kCount = BracketBlock::kCount;

    BracketMerge(const double* svalues, std::size_t count, const double* parameters,
                 BracketBlock& block)
        : svalues_(svalues), count_(count), block_(block), parameters_(block.parameterBits()) {
        std::memcpy(parameters_, parameters, kCount * sizeof *parameters);
        parameters_[kCount] = std::numeric_limits<std::uint64_t>::max(); // above all s-values
    }

    void run() {
        Place from[kPieces + 1];
        for (std::size_t i = 0; i <= kPieces; ++i) {
            from[i] = placeAfter((kCount + count_) * i / kPieces);
        }
        mergePieces(from);
        // A piece that ends between s-values has written into the first entry of the next.
        for (std::size_t i = 1; i < kPieces; ++i) {
            finish(from[i]);
        }
        onVectorUnit<WeightKernel>(svalues_, &block_);
    }

private:
    // So many parameters and so many s-values come before it.
    struct Place {
        std::size_t parameters;
        std::size_t svalues;

        std::size_t steps() const { return parameters + svalues; }
    };

    // A piece of the merge. The parameter that it has come to follows from its steps and from the
    // s-values among them, which are thus all that changes.
    struct Piece {
        std::size_t first; // the step that it begins with
        std::size_t svalues;

        // The parameter's count is written at every step, at last when its bracket is found.
        void step(const double* sOfBlock, std::uint64_t* parameters, std::size_t steps) {
            const std::size_t k = first + steps - svalues;
            parameters[k + BracketBlock::kHalf] = svalues;
            svalues += bitsOf(sOfBlock[svalues]) <= parameters[k] ? 1 : 0;
        }
    };

    bool isNotAbove(std::size_t svalue, std::size_t parameter) const {
        return bitsOf(svalues_[svalue]) <= parameters_[parameter];
    }

    // The place after so many steps: as few parameters as leave no s-value out of order.
    Place placeAfter(std::size_t steps) const {
        std::size_t low = steps > count_ ? steps - count_ : 0;
        std::size_t high = std::min(kCount, steps);
        while (low < high) {
            const std::size_t middle = (low + high) / 2;
            if (isNotAbove(steps - middle - 1, middle)) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        return {low, steps - low};
    }

    void mergePieces(const Place* from) {
        Piece pieces[kPieces];
        for (std::size_t i = 0; i < kPieces; ++i) {
            pieces[i] = {from[i].steps(), from[i].svalues};
        }
        const std::size_t all = (kCount + count_) / kPieces; // some have one more
        for (std::size_t steps = 0; steps < all; ++steps) {
            for (Piece& piece : pieces) {
                piece.step(svalues_, parameters_, steps);
            }
        }
        for (std::size_t i = 0; i < kPieces; ++i) {
            if (from[i].steps() + all < from[i + 1].steps()) {
                pieces[i].step(svalues_, parameters_, all);
            }
        }
    }

    void finish(Place at) {
        while (at.svalues < count_ && isNotAbove(at.svalues, at.parameters)) {
            ++at.svalues;
        }
        parameters_[at.parameters + BracketBlock::kHalf] = at.svalues;
    }

    struct WeightKernel {
        QEL_KERNEL static void run(const double* svalues, BracketBlock* block) {
            double parameters[kCount];
            std::memcpy(parameters, block->parameterBits(), sizeof parameters);
            // Apart from the divisions, as gathering in lanes is slower than reading one by one.
            double low[kCount];
            double high[kCount];
            for (std::size_t k = 0; k < kCount; ++k) {
                const double* const above = svalues + block->above(k);
                low[k] = above[-1];
                high[k] = above[0];
            }
            for (std::size_t k = 0; k < kCount; ++k) {
                block->weights()[k] = (parameters[k] - low[k]) / (high[k] - low[k]);
            }
        }
    };

    const double* svalues_;
    std::size_t count_;
    BracketBlock& block_;
    std::uint64_t* parameters_;
};

void mergeBrackets(const double* svalues, std::size_t count, const double* parameters,
                   BracketBlock& block) {
    BracketMerge(svalues, count, parameters, block).run();
}

} // namespace qel
