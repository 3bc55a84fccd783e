#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <qel/QuadtreeBucket.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

// A query writes what it found, so queries from several threads take turns.
class NearestPoints {
public:
    NearestPoints(const std::vector<TripletBase<float>>& points, int maxDepth, int bucketCapacity)
        : bucket_(maxDepth, bucketCapacity), size_(points.size()) {
        bucket_.construct(points);
    }

    std::size_t size() const { return size_; }

    template <typename Use>
    void use(const Use& use) {
        const std::lock_guard<std::mutex> guard(mutex_);
        use(bucket_);
    }

private:
    QuadtreeBucket bucket_;
    std::size_t size_;
    std::mutex mutex_;
};

TripletView<const float> floatPoints(const py::array& array, const char* name) {
    requireShape(array, name, {-1, 3});
    if (!holds<float>(array)) {
        refuseDtype(array, name, "float32");
    }
    return triplets<float>(array);
}

std::unique_ptr<NearestPoints> makeNearestPoints(const py::object& points, int maxDepth,
                                                 int bucketCapacity) {
    const py::array array = requireArray(points, "points");
    const TripletView<const float> view = floatPoints(array, "points");
    const py::gil_scoped_release unlocked;
    std::vector<TripletBase<float>> copy(view.size());
    for (std::size_t i = 0; i < copy.size(); ++i) {
        copy[i] = view[i];
    }
    return std::make_unique<NearestPoints>(copy, maxDepth, bucketCapacity);
}

py::array_t<std::int64_t> nearest(NearestPoints& index, const py::object& probes) {
    const py::array array = requireArray(probes, "probes");
    const TripletView<const float> view = floatPoints(array, "probes");
    py::array_t<std::int64_t> found(static_cast<py::ssize_t>(view.size()));
    std::int64_t* const out = found.mutable_data();
    {
        const py::gil_scoped_release unlocked;
        index.use([&](QuadtreeBucket& bucket) {
            for (std::size_t i = 0; i < view.size(); ++i) {
                out[i] = static_cast<std::int64_t>(bucket.findNearestPoint(view[i]));
            }
        });
    }
    return found;
}

} // namespace

void bindQuadtreeBucket(py::module_& module) {
    py::class_<NearestPoints>(module, "QuadtreeBucket",
                              "An index that finds the nearest of many points in the x-y plane, in "
                              "single precision; z is carried and never used.")
        .def(py::init(&makeNearestPoints), py::arg("points"), py::arg("max_depth") = 10,
             py::arg("bucket_capacity") = 10,
             "points: (n, 3) float32, copied. Raises qel.InternalError for no points. O(n log n).")
        .def("__len__", &NearestPoints::size)
        .def("nearest", &nearest, py::arg("probes"),
             "Index (int64) of the point nearest to each of the probes (m, 3) float32. Raises "
             "qel.DataInvalid for a probe that is NaN, infinite or too far away. O(m log n).");
}

} // namespace qel::python
