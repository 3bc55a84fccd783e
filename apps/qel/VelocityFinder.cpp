// Which array of a flow solution is the velocity.
#include "VelocityFinder.h"

#include <algorithm>
#include <array>
#include <set>

#include <vtkDataSetAttributes.h>

#include "Console.h"
#include "Text.h"

namespace program {
namespace {

constexpr const char* kDerivedName = "Velocity";

const std::array<const char*, 9> kVelocityNames{
    "velocity", "velocities", "vel", "u", "v", "uvw", "umean", "u_mean", "flow_velocity"};
const std::array<const char*, 4> kMomentumNames{"momentum", "rhou", "rho_u", "rhovel"};
const std::array<const char*, 3> kDensityNames{"density", "rho", "dens"};

struct Candidate {
    std::string name;
    int association;
    int components;
};

bool onPoints(int association) {
    return association == vtkDataObject::FIELD_ASSOCIATION_POINTS;
}

std::string place(int association) {
    return onPoints(association) ? "point" : "cell";
}

// Every numeric array of any leaf, those on points first, each name once.
std::vector<Candidate> candidatesOf(const std::vector<Leaf>& leaves) {
    std::vector<Candidate> all;
    std::set<std::pair<int, std::string>> seen;
    for (const int association : {static_cast<int>(vtkDataObject::FIELD_ASSOCIATION_POINTS),
                                  static_cast<int>(vtkDataObject::FIELD_ASSOCIATION_CELLS)}) {
        for (const Leaf& leaf : leaves) {
            vtkDataSetAttributes* attributes = leaf.data->GetAttributes(association);
            for (int i = 0; i < attributes->GetNumberOfArrays(); ++i) {
                vtkDataArray* array = attributes->GetArray(i);
                if (array != nullptr && array->GetName() != nullptr &&
                    seen.insert({association, array->GetName()}).second) {
                    all.push_back({array->GetName(), association, array->GetNumberOfComponents()});
                }
            }
        }
    }
    return all;
}

bool isVector(const Candidate& candidate) {
    return candidate.components == 2 || candidate.components == 3;
}

template <typename Names>
const Candidate* named(const std::vector<Candidate>& all, const Names& names, bool vector,
                       int association) {
    for (const char* name : names) {
        for (const Candidate& candidate : all) {
            if (candidate.association == association && lower(candidate.name) == name &&
                (vector ? isVector(candidate) : candidate.components == 1)) {
                return &candidate;
            }
        }
    }
    return nullptr;
}

Velocity taken(const Candidate& candidate) {
    return {candidate.name, candidate.association,
            place(candidate.association) + " array " + candidate.name, ""};
}

std::string listed(const std::vector<Candidate>& all) {
    if (all.empty()) {
        return "there are no arrays";
    }
    std::string text = "the arrays are";
    const char* separator = " ";
    for (const Candidate& candidate : all) {
        text += separator + candidate.name + " (" + place(candidate.association) + ", " +
                std::to_string(candidate.components) +
                (candidate.components == 1 ? " component)" : " components)");
        separator = ", ";
    }
    return text;
}

Velocity findNamed(const std::vector<Candidate>& all, const std::string& wanted) {
    const auto hasName = [&](const Candidate& candidate) { return candidate.name == wanted; };
    const auto fits = [&](const Candidate& candidate) {
        return hasName(candidate) && isVector(candidate);
    };
    const auto found = std::find_if(all.begin(), all.end(), fits);
    if (found != all.end()) {
        return taken(*found);
    }
    if (std::any_of(all.begin(), all.end(), hasName)) {
        throw UserError("the array " + wanted + " has not two or three components; " + listed(all));
    }
    throw UserError("there is no array " + wanted + "; " + listed(all));
}

} // namespace

Velocity findVelocity(const std::vector<Leaf>& leaves, const std::string& wanted) {
    const std::vector<Candidate> all = candidatesOf(leaves);
    if (!wanted.empty()) {
        return findNamed(all, wanted);
    }
    const std::array<int, 2> associations{vtkDataObject::FIELD_ASSOCIATION_POINTS,
                                          vtkDataObject::FIELD_ASSOCIATION_CELLS};
    for (const int association : associations) {
        if (const Candidate* found = named(all, kVelocityNames, true, association)) {
            return taken(*found);
        }
    }
    for (const int association : associations) {
        const Candidate* momentum = named(all, kMomentumNames, true, association);
        const Candidate* density = named(all, kDensityNames, false, association);
        if (momentum != nullptr && density != nullptr) {
            Velocity velocity = taken(*momentum);
            velocity.density = density->name;
            velocity.origin += " divided by " + density->name;
            return velocity;
        }
    }
    for (const int association : associations) {
        const auto isOne = [&](const Candidate& candidate) {
            return candidate.association == association && candidate.components == 3;
        };
        if (std::count_if(all.begin(), all.end(), isOne) == 1) {
            return taken(*std::find_if(all.begin(), all.end(), isOne));
        }
    }
    throw UserError("no velocity is found; name one with --velocity: " + listed(all));
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
