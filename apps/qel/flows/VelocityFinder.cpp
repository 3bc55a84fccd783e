// Which array of a flow solution is the velocity.
#include "flows/VelocityFinder.h"

#include <algorithm>

#include <vtkDataSetAttributes.h>

#include "console/Messages.h"
#include "console/Text.h"

namespace program {
namespace {

constexpr const char* kDerivedName = "Velocity";

using Names = std::vector<std::string>;
const Names kVelocityNames{"velocity", "velocities", "vel",          "u", "v", "uvw",
                           "umean",    "u_mean",     "flow_velocity"};
const Names kMomentumNames{"momentum", "rhou", "rho_u", "rhovel"};
const Names kDensityNames{"density", "rho", "dens"};

constexpr std::array<int, 2> kAssociations{vtkDataObject::FIELD_ASSOCIATION_POINTS,
                                           vtkDataObject::FIELD_ASSOCIATION_CELLS};

struct Candidate {
    std::string name;
    int association;
    int components;

    bool isVector() const { return components == 2 || components == 3; }
    std::string place() const { return association == kAssociations[0] ? "point" : "cell"; }
    Velocity asVelocity() const { return {name, association, place() + " array " + name, ""}; }
};
using Candidates = std::vector<Candidate>;

// Every numeric array of any leaf, those on points first, each name once.
Candidates candidatesOf(const std::vector<Leaf>& leaves) {
    Candidates all;
    for (const int association : kAssociations) {
        for (const Leaf& leaf : leaves) {
            vtkDataSetAttributes* attributes = leaf.data->GetAttributes(association);
            for (int i = 0; i < attributes->GetNumberOfArrays(); ++i) {
                vtkDataArray* array = attributes->GetArray(i);
                const char* name = array == nullptr ? nullptr : array->GetName();
                const auto isKnown = [&](const Candidate& candidate) {
                    return candidate.association == association && candidate.name == name;
                };
                if (name != nullptr && std::none_of(all.begin(), all.end(), isKnown)) {
                    all.push_back({name, association, array->GetNumberOfComponents()});
                }
            }
        }
    }
    return all;
}

std::string listed(const Candidates& all) {
    std::string text;
    for (const Candidate& one : all) {
        text += joined(text.empty() ? "the arrays are " : ", ", one.name, " (", one.place(), ", ",
                       one.components, one.components == 1 ? " component)" : " components)");
    }
    return text.empty() ? "there are no arrays" : text;
}

Velocity findNamed(const Candidates& all, const std::string& wanted) {
    bool isThere = false;
    for (const Candidate& candidate : all) {
        if (candidate.name == wanted && candidate.isVector()) {
            return candidate.asVelocity();
        }
        isThere = isThere || candidate.name == wanted;
    }
    refuseIf(isThere, "the array ", wanted, " has not two or three components; ", listed(all));
    refuse("there is no array ", wanted, "; ", listed(all));
}

// The first of the names, in their order, that is there; null if none is.
const Candidate* firstOf(const Names& names, bool vector, const Candidates& all, int association) {
    for (const std::string& name : names) {
        for (const Candidate& candidate : all) {
            if (candidate.association == association && lower(candidate.name) == name &&
                (vector ? candidate.isVector() : candidate.components == 1)) {
                return &candidate;
            }
        }
    }
    return nullptr;
}

} // namespace

Velocity findVelocity(const std::vector<Leaf>& leaves, const std::string& wanted) {
    const Candidates all = candidatesOf(leaves);
    if (!wanted.empty()) {
        return findNamed(all, wanted);
    }
    for (const int association : kAssociations) {
        if (const Candidate* velocity = firstOf(kVelocityNames, true, all, association)) {
            return velocity->asVelocity();
        }
    }
    for (const int association : kAssociations) {
        const Candidate* momentum = firstOf(kMomentumNames, true, all, association);
        const Candidate* density = firstOf(kDensityNames, false, all, association);
        if (momentum != nullptr && density != nullptr) {
            Velocity velocity = momentum->asVelocity();
            velocity.density = density->name;
            velocity.origin += " divided by " + density->name;
            return velocity;
        }
    }
    for (const int association : kAssociations) {
        const auto isOne = [&](const Candidate& candidate) {
            return candidate.association == association && candidate.components == 3;
        };
        if (std::count_if(all.begin(), all.end(), isOne) == 1) {
            return std::find_if(all.begin(), all.end(), isOne)->asVelocity();
        }
    }
    refuse("no velocity is found; name one with --velocity: ", listed(all));
}

vtkSmartPointer<vtkDataArray> velocityOf(vtkDataSet* data, const Velocity& velocity) {
    vtkDataSetAttributes* attributes = data->GetAttributes(velocity.association);
    vtkDataArray* array = attributes->GetArray(velocity.name.c_str());
    if (array == nullptr || velocity.density.empty()) {
        return array;
    }
    vtkDataArray* density = attributes->GetArray(velocity.density.c_str());
    if (density == nullptr) {
        return nullptr;
    }
    // Whole numbers would be cut off.
    const int type = array->GetDataType() == VTK_FLOAT ? VTK_FLOAT : VTK_DOUBLE;
    auto result = vtk::TakeSmartPointer(vtkDataArray::CreateDataArray(type));
    result->SetName(kDerivedName);
    result->SetNumberOfComponents(array->GetNumberOfComponents());
    result->SetNumberOfTuples(array->GetNumberOfTuples());
    for (vtkIdType i = 0; i < array->GetNumberOfTuples(); ++i) {
        const double rho = density->GetComponent(i, 0);
        for (int c = 0; c < array->GetNumberOfComponents(); ++c) {
            result->SetComponent(i, c, array->GetComponent(i, c) / rho);
        }
    }
    return result;
}

} // namespace program
