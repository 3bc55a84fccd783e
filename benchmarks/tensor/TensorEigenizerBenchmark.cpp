// The library's operations, each on two vector units, and the time of copying as many bytes as each
// reads and writes.

#include <map>
#include <memory>
#include <random>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "platform/VectorUnit.h"
#include "support/Bandwidth.h"
#include "tensor/TensorField.h"

namespace qel_benchmark {
namespace {

using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

struct Arrays {
    TripletQELVector row1, row2, row3, velocity;
};

Arrays& arraysOf(std::size_t n) {
    static std::map<std::size_t, std::unique_ptr<Arrays>> built;
    std::unique_ptr<Arrays>& arrays = built[n];
    if (!arrays) {
        arrays = std::make_unique<Arrays>();
        std::mt19937 random(1);
        std::normal_distribution<float> normal;
        const auto fill = [&](TripletQELVector& triplets) {
            triplets.resize(n);
            std::size_t k = 0;
            for (auto& t : triplets) {
                t = k < 65536
                        ? qel::TripletBase<float>(normal(random), normal(random), normal(random))
                        : *(triplets.begin() + static_cast<std::ptrdiff_t>(k - 65521));
                ++k;
            }
        };
        fill(arrays->row1), fill(arrays->row2), fill(arrays->row3), fill(arrays->velocity);
        for (std::size_t k = 0; k < n; ++k) {
            arrays->row3[k].z = -arrays->row1[k].x - arrays->row2[k].y;
        }
    }
    return *arrays;
}

// The object, the inputs of the operations that build on the swirl strength, and outputs.
struct Setting {
    explicit Setting(std::size_t n)
        : arrays(arraysOf(n)), eigenizer(n, arrays.row1, arrays.row2, arrays.row3) {
        eigenizer.getSwirlStrength(swirl, eigenvalue);
        out.resize(n);
        triplets.resize(n);
    }
    Arrays& arrays;
    TensorEigenizer eigenizer;
    FloatQELVectorConcrete swirl, eigenvalue, out;
    TripletQELVector triplets;
};

// On the machine's widest vector unit, and on AVX2 if that is another.
template <typename Operation>
void addOwn(const char* work, Operation operation) {
    add(work, "qel", [operation](const TensorField& field) {
        auto setting = std::make_shared<Setting>(field.n);
        return [operation, setting] { operation(*setting); };
    });
    if (qel::vectorUnit() != qel::VectorUnit::avx512) {
        return;
    }
    add(work, "qel_on_AVX2", [operation](const TensorField& field) {
        auto setting = std::make_shared<Setting>(field.n);
        return [operation, setting] {
            qel::forceVectorUnit(qel::VectorUnit::avx2);
            operation(*setting);
            qel::restoreVectorUnit();
        };
    });
}

// A copy that moves as many bytes as the work reads and writes at each point: half of them are
// read and half written.
template <std::size_t bytes>
int addCopy(const char* work) {
    struct Item {
        char content[bytes / 2];
    };
    for (const std::size_t n : kSizes) {
        const std::string name = std::string(work) + "/copy/" + std::to_string(n);
        benchmark::RegisterBenchmark(name.c_str(), [n](benchmark::State& state) {
            measureCopy(state, std::vector<Item>(n));
        });
    }
    return 0;
}

const bool registered = [] {
    addOwn("q", [](Setting& s) { s.eigenizer.getInvariantQ(s.out); });
    addCopy<40>("q");
    addOwn("divergence", [](Setting& s) { s.eigenizer.getDivergence(s.out); });
    addCopy<40>("divergence");
    addOwn("vorticity", [](Setting& s) { s.eigenizer.getVorticity(s.triplets); });
    addCopy<48>("vorticity");
    addOwn("helicity", [](Setting& s) { s.eigenizer.getHelicity(s.arrays.velocity, s.out); });
    addCopy<52>("helicity");
    addOwn("discriminant", [](Setting& s) { s.eigenizer.getDiscrim(s.out); });
    addOwn("lambda2", [](Setting& s) { s.eigenizer.get2ndEValSymmTT(s.out); });
    addOwn("swirl", [](Setting& s) { s.eigenizer.getSwirlStrength(s.swirl, s.eigenvalue); });
    addOwn("eigenvector",
           [](Setting& s) { s.eigenizer.getEVecReal(s.swirl, s.eigenvalue, s.triplets); });
    addOwn("normal",
           [](Setting& s) { s.eigenizer.getSwirlNormal(s.swirl, s.eigenvalue, s.triplets); });
    addOwn("eigenvector_helicity",
           [](Setting& s) { s.eigenizer.getRealEigenHelicity(s.swirl, s.eigenvalue, s.out); });
    addOwn("normal_helicity",
           [](Setting& s) { s.eigenizer.getNormEigenHelicity(s.swirl, s.eigenvalue, s.out); });
    addOwn("stretch_rate",
           [](Setting& s) { s.eigenizer.getSwirlStretchRate(s.swirl, s.eigenvalue, s.out); });
    return true;
}();

} // namespace

TensorField tensorField(std::size_t n) {
    const Arrays& a = arraysOf(n);
    return {n, &a.row1.front().x, &a.row2.front().x, &a.row3.front().x, &a.velocity.front().x};
}

} // namespace qel_benchmark
