// Every output of the tensor operations, compared with the formulas written once more.

#include <cstddef>
#include <utility>
#include <vector>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "Input.h"
#include "support/Bits.h"
#include "tensor/Fields.h"
#include "tensor/Operations.h"

namespace {

using namespace qel_fuzz;
using namespace qel_test;

std::vector<Tensor> tensorsOf(Input& input) {
    const bool isTame = input.flag();
    return input.list(0, 40, [&] {
        Tensor t;
        for (float& v : t) {
            v = isTame ? input.moderate<float>() : input.number<float>();
        }
        if (input.integer(0, 3) == 0) {
            t[8] = -t[0] - t[4]; // without divergence
        }
        return t;
    });
}

template <typename Operation, typename Output>
void checkOperation(const Operation& operation, const std::vector<Tensor>& tensors,
                    const qel::TensorEigenizer& t, const Inputs& in, Output& out) {
    std::vector<PointInputs> points;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        points.push_back({in.swirl[k], in.eigenvalue[k], in.velocity[k]});
    }
    operation.run(t, in, out);
    require(out.size() == tensors.size(), "there is a result for each tensor");
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        require(sameBits(std::as_const(out)[k], operation.reference(tensors[k], points[k])),
                operation.name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::vector<Tensor> tensors = tensorsOf(input);
    const Field field(tensors);
    const qel::TensorEigenizer t = field.eigenizer();
    qel::TripletQELVector velocity(input.triplets<float>(tensors.size(), tensors.size()));
    qel::FloatQELVectorConcrete swirl, eigenvalue;
    t.getSwirlStrength(swirl, eigenvalue);
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const reference::Swirl expected = reference::swirl(tensors[k]);
        require(sameBits(std::as_const(swirl)[k], expected.strength) &&
                    sameBits(std::as_const(eigenvalue)[k], expected.eigenvalue),
                "the swirl is that of the reference");
        if (input.integer(0, 7) == 0) {
            swirl[k] = input.number<float>();
        }
    }
    const Inputs in = {swirl, eigenvalue, velocity};
    for (const auto& operation : kFloatOperations) {
        qel::FloatQELVectorConcrete out;
        checkOperation(operation, tensors, t, in, out);
        qel::TripletQELVector triplets;
        qel::FloatQELVectorComponent component(triplets, input.integer(0, 2));
        checkOperation(operation, tensors, t, in, static_cast<qel::FloatQELVector&>(component));
    }
    for (const auto& operation : kTripletOperations) {
        qel::TripletQELVector out;
        checkOperation(operation, tensors, t, in, out);
    }
    return 0;
}
