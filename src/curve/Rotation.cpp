#include "curve/Rotation.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/Lanes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

struct PlainKernel {
    QEL_KERNEL static void run(Point* points, std::size_t n, Rotation rotation) {
        for (std::size_t i = 0; i < n; ++i) {
            points[i] = rotatedPoint(rotation, points[i]);
        }
    }
};

#if defined(QEL_SHUFFLES)

constexpr std::size_t kDimensions = 3;

/// Three registers hold as many points as one has lanes. Coordinates stay in the lanes that they
/// are read into: each lane computes the coordinate that it holds, of its point.
template <std::size_t width>
struct RowsKernel {
    using Numbers = Lanes<double, width>;
    using LaneIndices = std::make_index_sequence<width>;

    QEL_KERNEL static void run(Point* points, std::size_t n, Rotation rotation) {
        static_assert(sizeof(Point) == kDimensions * sizeof(double), "points lie side by side");
        std::size_t i = std::min(pointsBeforeLine(points), n);
        PlainKernel::run(points, i, rotation);
        const Factors<0> factors0(rotation);
        const Factors<1> factors1(rotation);
        const Factors<2> factors2(rotation);
        for (; n - i >= width; i += width) {
            char* const group = reinterpret_cast<char*>(points + i);
            const Numbers d0 = Numbers::read(group) - factors0.centre;
            const Numbers d1 = Numbers::read(group + Numbers::kBytes) - factors1.centre;
            const Numbers d2 = Numbers::read(group + 2 * Numbers::kBytes) - factors2.centre;
            factors0.rotated(d0, d1, d2).write(group);
            factors1.rotated(d0, d1, d2).write(group + Numbers::kBytes);
            factors2.rotated(d0, d1, d2).write(group + 2 * Numbers::kBytes);
        }
        PlainKernel::run(points + i, n - i, rotation);
    }

private:
    /// How many points lie before the first cache line that begins with one: less than eight, as
    /// three has an inverse among the eight numbers of a line. Writing across lines costs more than
    /// writing whole ones.
    QEL_KERNEL static std::size_t pointsBeforeLine(const Point* points) {
        constexpr std::uintptr_t kNumbersOfLine = 8;
        constexpr std::uintptr_t kMinusInverseOf3 = 5;
        const std::uintptr_t numbers = reinterpret_cast<std::uintptr_t>(points) / sizeof(double);
        return numbers * kMinusInverseOf3 % kNumbersOfLine;
    }

    /// What the lanes of one of the three registers take of the rotation.
    template <std::size_t which>
    struct Factors {
        Numbers centre;
        Numbers ofX;
        Numbers ofY;
        Numbers ofZ;

        QEL_KERNEL explicit Factors(const Rotation& rotation) {
            for (std::size_t lane = 0; lane < width; ++lane) {
                const std::size_t coordinate = (which * width + lane) % kDimensions;
                const Point& c = rotation.centre;
                const Point& row = rotation.rows[coordinate];
                centre.value[lane] = coordinate == 0 ? c.x : coordinate == 1 ? c.y : c.z;
                ofX.value[lane] = row.x;
                ofY.value[lane] = row.y;
                ofZ.value[lane] = row.z;
            }
        }

        QEL_KERNEL Numbers rotated(const Numbers& d0, const Numbers& d1, const Numbers& d2) const {
            const Numbers x = spread<0>(d0, d1, d2, LaneIndices());
            const Numbers y = spread<1>(d0, d1, d2, LaneIndices());
            const Numbers z = spread<2>(d0, d1, d2, LaneIndices());
            return centre + (ofX * x + ofY * y + ofZ * z);
        }

    private:
        /// Where, among the numbers of the three registers, a coordinate of the lane's point is.
        static constexpr std::size_t placeOf(std::size_t coordinate, std::size_t lane) {
            return (which * width + lane) / kDimensions * kDimensions + coordinate;
        }

        /// The same among the numbers of two registers, of which the first begins at a number; the
        /// nearest there is, if it is in neither.
        static constexpr int placeInTwo(std::size_t coordinate, std::size_t lane,
                                        std::size_t first) {
            const std::size_t place = std::max(placeOf(coordinate, lane), first) - first;
            return static_cast<int>(std::min(place, 2 * width - 1));
        }

        /// Brings the coordinate of each lane's point into the lane.
        template <std::size_t coordinate, std::size_t... lane>
        QEL_KERNEL static Numbers spread(const Numbers& d0, const Numbers& d1, const Numbers& d2,
                                         std::index_sequence<lane...>) {
            constexpr bool kUsesFirst = placeOf(coordinate, 0) < width;
            constexpr bool kUsesLast = placeOf(coordinate, width - 1) >= 2 * width;
            if constexpr (!kUsesLast) {
                return {__builtin_shufflevector(d0.value, d1.value,
                                                placeInTwo(coordinate, lane, 0)...)};
            } else if constexpr (!kUsesFirst) {
                return {__builtin_shufflevector(d1.value, d2.value,
                                                placeInTwo(coordinate, lane, width)...)};
            } else {
                const Numbers two = {__builtin_shufflevector(d0.value, d1.value,
                                                             placeInTwo(coordinate, lane, 0)...)};
                return {__builtin_shufflevector(
                    two.value, d2.value,
                    static_cast<int>(placeOf(coordinate, lane) < 2 * width
                                         ? lane
                                         : placeOf(coordinate, lane) - width)...)};
            }
        }
    };
};

#endif

} // namespace

void rotatePoints(Point* points, std::size_t count, const Rotation& rotation) noexcept {
#if defined(QEL_SHUFFLES)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return runAvx512<RowsKernel<8>>(points, count, rotation);
    case VectorUnit::avx2:
        return runAvx2<RowsKernel<4>>(points, count, rotation);
    case VectorUnit::portable:
        break;
    }
#endif
    runPortable<PlainKernel>(points, count, rotation);
}

} // namespace qel
