#include "curve/ArcLength.h"

#include <algorithm>

#include "curve/Tolerance.h"
#include "curve/VectorLength.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 32; // steps computed before they are added

// The length of the step from point i to the next.
struct StepsInSpace {
    const Point* points;

    QEL_KERNEL double operator[](std::size_t i) const {
        const Point& from = points[i];
        const Point& to = points[i + 1];
        return vectorLength(to.x - from.x, to.y - from.y, to.z - from.z);
    }
};

struct StepsOfComponent {
    static constexpr std::size_t kStride = sizeof(Point) / sizeof(double);
    const double* first;

    QEL_KERNEL double operator[](std::size_t i) const {
        return vectorLength(first[(i + 1) * kStride] - first[i * kStride], 0.0, 0.0);
    }
};

// distances[i] = distances[i - 1] + steps[i - 1], from 0 on.
template <typename Steps>
struct CumulateKernel {
    QEL_KERNEL static void run(Steps steps, std::size_t count, double* distances) {
        double lengths[kBlock];
        double sum = 0.0;
        distances[0] = sum;
        for (std::size_t i = 1; i < count; i += kBlock) {
            const std::size_t n = std::min(kBlock, count - i);
            for (std::size_t j = 0; j < n; ++j) {
                lengths[j] = steps[i - 1 + j];
            }
            for (std::size_t j = 0; j < n; ++j) {
                distances[i + j] = sum += lengths[j];
            }
        }
    }
};

struct DivideKernel {
    QEL_KERNEL static void run(double* values, std::size_t count, double divisor) {
        for (std::size_t i = 0; i < count; ++i) {
            values[i] /= divisor;
        }
    }
};

template <typename Steps>
void calculate(Steps steps, std::size_t count, std::vector<double>& svalues, double& length) {
    svalues.resize(count);
    onVectorUnitFrom<CumulateKernel<Steps>>(count, steps, count, svalues.data());
    length = svalues.back();
    // A NaN length, or the NaN spacing of an infinite one, is insignificant.
    if (length >= insignificantAt(length)) {
        onVectorUnitFrom<DivideKernel>(count, svalues.data(), count, length);
    } else {
        std::fill(svalues.begin(), svalues.end(), 0.0);
    }
    svalues.back() = 1.0;
}

} // namespace

void calculateArcValue(const Points& points, std::vector<double>& svalues, double& length) {
    calculate(StepsInSpace{points.data()}, points.size(), svalues, length);
}

void calculateArcValue(const Points& points, double Point::*component, std::vector<double>& svalues,
                       double& length) {
    const Point& first = points[0];
    calculate(StepsOfComponent{&(first.*component)}, points.size(), svalues, length);
}

} // namespace qel
