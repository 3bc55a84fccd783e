#ifndef QEL_CURVE_BRACKETSEARCH_H
#define QEL_CURVE_BRACKETSEARCH_H

/// @file
/// Fast path: the s-values below many parameters, a block at a time.
///
/// One binary search after the other mispredicts a branch at every other step, and each step waits
/// for the one before. Here many binary searches go on side by side, and choose by arithmetic.
/// Where parameters are in order and about as close as the s-values, a walk is shorter, but its
/// branches are mispredicted as often: the block is cut into pieces that are walked through side by
/// side, a group of parameters at a time, by counting in lanes the s-values of a window that are
/// not above each. Among s-values in order there is one last s-value that is not above a parameter,
/// however it is found.

#include <cstddef>
#include <vector>

namespace qel {

/// What all steps of a list of numbers are; false where there is a NaN.
struct Steps {
    bool areInOrder;  ///< not negative
    bool areDistinct; ///< greater than a number
};

/// O(n).
Steps stepsOf(const double* values, std::size_t count, double distinctStep);

/// Searches one list of s-values for block after block of parameters.
class BracketSearch {
public:
    static constexpr std::size_t kBlock = 256; ///< parameters of a block, at most

    /// @param svalues  two or more, in order; equal ones may follow each other
    explicit BracketSearch(const std::vector<double>& svalues)
        : s_(svalues.data()), last_(svalues.size() - 1) {}

    /// Finds for each parameter the last s-value that is not above it; the first, if all are above
    /// it, and the last but one, if none is. Of a NaN, any but the last.
    ///
    /// @param      count  at most kBlock
    /// @param[out] lower  count indices
    /// @return whether all parameters lie strictly between the first and the last s-value
    bool find(const double* parameters, std::size_t count, std::size_t* lower);

private:
    // Indices of parameters in order, all less than the last s-value.
    void findInOrder(const double* parameters, std::size_t count, std::size_t* lower);

    const double* s_;
    std::size_t last_;
    std::size_t place_ = 0; // below the last parameter found in order
};

} // namespace qel

#endif
