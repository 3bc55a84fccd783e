#ifndef QEL_BENCHMARKS_NEAREST_LOCATORS_H
#define QEL_BENCHMARKS_NEAREST_LOCATORS_H

// The structures compared, all with the same members: prepare() makes a structure's own form of the
// points, outside the time taken; the constructor builds; nearest(query) answers.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <qel/QuadtreeBucket.h>

#include "support/CloudShapes.h"

#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
#include <nanoflann.hpp>
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSMPTools.h>
#include <vtkStaticPointLocator2D.h>
#endif

namespace qel_benchmark {

using Point = qel_test::CloudPoint;
using Points = qel_test::CloudPoints;

// With the default limits.
class LibraryLocator {
public:
    using Input = Points;
    static Input prepare(const Points& points) { return points; }

    explicit LibraryLocator(const Input& points) { bucket_.construct(points); }
    LibraryLocator(const Input& points, int maxDepth, int capacity) : bucket_(maxDepth, capacity) {
        bucket_.construct(points);
    }
    std::size_t nearest(const Point& q) { return bucket_.findNearestPoint(q); }

private:
    qel::QuadtreeBucket bucket_;
};

// With more and smaller leaves.
class DeepLibraryLocator : public LibraryLocator {
public:
    explicit DeepLibraryLocator(const Input& points) : LibraryLocator(points, 24, 16) {}
};

#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
class NanoflannLocator {
public:
    struct Input {
        const Points* points;
        std::size_t kdtree_get_point_count() const { return points->size(); }
        float kdtree_get_pt(std::size_t i, std::size_t axis) const {
            return axis == 0 ? (*points)[i].x : (*points)[i].y;
        }
        template <typename Box>
        bool kdtree_get_bbox(Box&) const {
            return false;
        }
    };
    static Input prepare(const Points& points) { return {&points}; }

    explicit NanoflannLocator(const Input& input) : tree_(2, input, {10}) { tree_.buildIndex(); }
    std::size_t nearest(const Point& q) {
        const float query[2] = {q.x, q.y};
        std::uint32_t index = 0;
        float distance = 0.0f;
        tree_.knnSearch(query, 1, &index, &distance);
        return index;
    }

private:
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<float, Input>, Input, 2,
                                        std::uint32_t>
        tree_;
};
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
class BoostLocator {
public:
    using Place = boost::geometry::model::point<float, 2, boost::geometry::cs::cartesian>;
    using Value = std::pair<Place, std::uint32_t>;
    using Input = std::vector<Value>;
    static Input prepare(const Points& points) {
        Input input;
        for (const Point& p : points) {
            input.emplace_back(Place(p.x, p.y), static_cast<std::uint32_t>(input.size()));
        }
        return input;
    }

    explicit BoostLocator(const Input& input) : tree_(input) {} // packed
    std::size_t nearest(const Point& q) {
        std::size_t index = 0;
        const auto hit = boost::geometry::index::nearest(Place(q.x, q.y), 1);
        for (auto it = tree_.qbegin(hit); it != tree_.qend(); ++it) {
            index = it->second;
        }
        return index;
    }

private:
    boost::geometry::index::rtree<Value, boost::geometry::index::rstar<16>> tree_;
};
#endif

#if defined(QEL_BENCHMARK_HAS_VTK)
class VtkLocator {
public:
    using Input = vtkSmartPointer<vtkPolyData>;
    static Input prepare(const Points& points) {
        vtkNew<vtkPoints> places;
        places->SetDataTypeToFloat();
        places->SetNumberOfPoints(static_cast<vtkIdType>(points.size()));
        for (std::size_t i = 0; i < points.size(); ++i) {
            places->SetPoint(static_cast<vtkIdType>(i), points[i].x, points[i].y, 0.0);
        }
        Input input = vtkSmartPointer<vtkPolyData>::New();
        input->SetPoints(places);
        return input;
    }

    explicit VtkLocator(const Input& input) {
        vtkSMPTools::Initialize(1); // one thread, as everything else here
        locator_->SetDataSet(input);
        locator_->BuildLocator();
    }
    std::size_t nearest(const Point& q) {
        const double query[3] = {q.x, q.y, 0.0};
        return static_cast<std::size_t>(locator_->FindClosestPoint(query));
    }

private:
    vtkNew<vtkStaticPointLocator2D> locator_;
};
#endif

} // namespace qel_benchmark

#endif
