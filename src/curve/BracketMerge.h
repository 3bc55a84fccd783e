#ifndef QEL_CURVE_BRACKETMERGE_H
#define QEL_CURVE_BRACKETMERGE_H

/// @file
/// Fast road: the brackets of many sorted parameters at once.
///
/// To find them is to merge the parameters with the s-values. A plain merge takes a branch at each
/// of either, which for parameters at random goes wrong every other time, and each of its steps
/// waits for the one before. Here the merge is cut into pieces of equally many steps, which go on
/// side by side and without branches: several times as fast for parameters at random. Two sorted
/// lists have one order, however it is found, so the brackets are those of a search. The weights
/// are then computed in lanes, by the operations of pointBetween.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qel {

/// A block of parameters and their brackets.
class BracketBlock {
public:
    static constexpr std::size_t kCount = 256;

    /// Sets the parameters, which are in order and positive.
    void setParameters(const double* parameters) {
        std::memcpy(words_, parameters, kCount * sizeof *parameters);
    }

    /// How many of the s-values that mergeBrackets was given are not above the parameter.
    std::size_t above(std::size_t k) const { return words_[kHalf + k]; }

    /// Weight of the bracket's upper point.
    double weight(std::size_t k) const { return weights_[k]; }

private:
    friend class BracketMerge;

    static constexpr std::size_t kHalf = kCount + 1;

    // The bits of the parameters, a bound, and as many counts, so that one place serves for both.
    std::uint64_t words_[2 * kHalf];
    double weights_[kCount];
};

/// True if BracketBlock::kCount parameters are in order, but not at about even steps: among the
/// s-values of a smooth curve those have brackets that a plain walk foresees.
bool isWorthMerging(const double* parameters);

/// Finds the brackets of the block's parameters.
///
/// @param svalues  in order without repeats; the one before is not above any parameter
/// @param count    how many of them are not above the last parameter; the next is
void mergeBrackets(const double* svalues, std::size_t count, BracketBlock& block);

} // namespace qel

#endif
