// Joining of the pieces of a partitioned unstructured grid into one grid.
#include "reading/PieceJoining.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkDataArray.h>
#include <vtkFieldData.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkSMPTools.h>
#include <vtkUnsignedCharArray.h>
#include <vtkXMLPUnstructuredGridReader.h>

namespace program {
namespace {

// Gives access to what its base knows of the pieces.
class PartitionedGridReader : public vtkXMLPUnstructuredGridReader {
public:
    static PartitionedGridReader* New();

    std::vector<vtkIdType> pointsOfPieces() {
        std::vector<vtkIdType> counts(static_cast<std::size_t>(this->NumberOfPieces));
        int piece = 0;
        for (vtkIdType& count : counts) {
            count = this->GetNumberOfPointsInPiece(piece++);
        }
        return counts;
    }
};

vtkStandardNewMacro(PartitionedGridReader);

using Ids = std::vector<vtkIdType>;
using Place = std::array<double, 3>;

Ids numbersTo(vtkIdType count) {
    Ids ids(static_cast<std::size_t>(count));
    std::iota(ids.begin(), ids.end(), 0);
    return ids;
}

std::size_t at(vtkIdType id) {
    return static_cast<std::size_t>(id);
}

// Values of an array of ids; empty without the array.
Ids valuesOf(vtkDataArray* array) {
    Ids values(array == nullptr ? 0 : at(array->GetNumberOfTuples()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] =
            static_cast<vtkIdType>(array->GetVariantValue(static_cast<vtkIdType>(i)).ToLongLong());
    }
    return values;
}

// Numbers of points or cells by rising keys; equal ones by their number.
template <typename Keys>
Ids orderOf(const Keys& keys) {
    Ids order = numbersTo(static_cast<vtkIdType>(keys.size()));
    vtkSMPTools::Sort(order.begin(), order.end(), [&keys](vtkIdType a, vtkIdType b) {
        return keys[at(a)] != keys[at(b)] ? keys[at(a)] < keys[at(b)] : a < b;
    });
    return order;
}

// Of the diagonal of the grid: points of one id may be rounded differently in their pieces.
constexpr double kPlaceTolerance = 1e-6;

class Joining {
public:
    Joining(vtkUnstructuredGrid* grid, const Ids& pieces) : grid_(grid) {
        for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
            pieceOf_.insert(pieceOf_.end(), at(pieces[piece]), piece);
        }
        representative_ = numbersTo(grid->GetNumberOfPoints());
    }

    JoinedGrid join() {
        const Ids ids = valuesOf(grid_->GetPointData()->GetGlobalIds());
        Ids order = ids.empty() ? numbersTo(grid_->GetNumberOfPoints()) : orderOf(ids);
        result_.byGlobalIds = !ids.empty() && areGlobal(ids, order);
        if (result_.byGlobalIds) {
            joinEqual(ids, order);
        } else {
            result_.wrongGlobalIds = !ids.empty();
            order = numbersTo(grid_->GetNumberOfPoints());
            const std::vector<Place> places = finitePlaces();
            joinEqual(places, orderOf(places));
        }
        chooseCells();
        choosePoints(order);
        build();
        return result_;
    }

private:
    // Ids that each piece counts for itself give one id to points far apart.
    bool areGlobal(const Ids& ids, const Ids& order) const {
        const double tolerance = kPlaceTolerance * grid_->GetLength();
        const auto wrong = std::adjacent_find(order.begin(), order.end(), [&](auto a, auto b) {
            return ids[at(a)] == ids[at(b)] &&
                   (pieceOf_[at(a)] == pieceOf_[at(b)] || distance(a, b) > tolerance);
        });
        return wrong == order.end();
    }

    double distance(vtkIdType a, vtkIdType b) const {
        Place first;
        Place second;
        grid_->GetPoint(a, first.data());
        grid_->GetPoint(b, second.data());
        return std::hypot(first[0] - second[0], first[1] - second[1], first[2] - second[2]);
    }

    // Where a coordinate is not finite, a place that no other point has or is taken for.
    std::vector<Place> finitePlaces() {
        std::vector<Place> places(representative_.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            grid_->GetPoint(static_cast<vtkIdType>(i), places[i].data());
            apart_.push_back(!std::all_of(places[i].begin(), places[i].end(),
                                          [](double x) { return std::isfinite(x); }));
            if (apart_.back()) {
                places[i] = {};
            }
        }
        return places;
    }

    template <typename Keys>
    void joinEqual(const Keys& keys, Ids order) {
        if (!apart_.empty()) {
            order.erase(std::remove_if(order.begin(), order.end(),
                                       [this](vtkIdType id) { return bool{apart_[at(id)]}; }),
                        order.end());
        }
        for (auto first = order.begin(); first != order.end();) {
            const auto last = std::find_if(
                first, order.end(), [&](vtkIdType id) { return keys[at(id)] != keys[at(*first)]; });
            joinGroup(first, last);
            first = last;
        }
    }

    // Points of one group follow in the order of their pieces.
    void joinGroup(Ids::const_iterator first, Ids::const_iterator last) {
        if (pieceOf_[at(*first)] == pieceOf_[at(*(last - 1))]) {
            return;
        }
        const auto twice = std::adjacent_find(first, last, [this](vtkIdType a, vtkIdType b) {
            return pieceOf_[at(a)] == pieceOf_[at(b)];
        });
        if (twice != last) {
            result_.ambiguousPoints += last - first;
            return;
        }
        const auto owned = std::find_if(first, last, [this](vtkIdType id) {
            return !isDuplicate(grid_->GetPointGhostArray(), id,
                                vtkDataSetAttributes::DUPLICATEPOINT);
        });
        for (auto id = first; id != last; ++id) {
            representative_[at(*id)] = owned == last ? *first : *owned;
        }
        result_.joinedPoints += last - first - 1;
    }

    static bool isDuplicate(vtkUnsignedCharArray* ghosts, vtkIdType id, unsigned char flag) {
        return ghosts != nullptr && (ghosts->GetValue(id) & flag) != 0;
    }

    void chooseCells() {
        const Ids ids = valuesOf(grid_->GetCellData()->GetGlobalIds());
        for (const vtkIdType cell :
             ids.empty() ? numbersTo(grid_->GetNumberOfCells()) : orderOf(ids)) {
            if (isDuplicate(grid_->GetCellGhostArray(), cell,
                            vtkDataSetAttributes::DUPLICATECELL)) {
                ++result_.ghostCells;
            } else {
                cells_.push_back(cell);
            }
        }
    }

    // A ghost that only ghosts use goes with these.
    void choosePoints(const Ids& order) {
        std::vector<bool> used(representative_.size());
        vtkNew<vtkIdList> corners;
        for (const vtkIdType cell : cells_) {
            grid_->GetCellPoints(cell, corners);
            for (const vtkIdType corner : *corners) {
                used[at(representative_[at(corner)])] = true;
            }
        }
        newNumber_.assign(representative_.size(), -1);
        for (const vtkIdType id : order) {
            const bool ghost =
                isDuplicate(grid_->GetPointGhostArray(), id, vtkDataSetAttributes::DUPLICATEPOINT);
            if (representative_[at(id)] == id && (used[at(id)] || !ghost)) {
                newNumber_[at(id)] = static_cast<vtkIdType>(points_.size());
                points_.push_back(id);
            }
        }
    }

    void build() {
        result_.grid = vtkSmartPointer<vtkUnstructuredGrid>::New();
        vtkNew<vtkPoints> places;
        places->SetDataType(grid_->GetPoints()->GetDataType());
        places->SetNumberOfPoints(static_cast<vtkIdType>(points_.size()));
        grid_->GetPoints()->GetPoints(listOf(points_), places);
        result_.grid->SetPoints(places);
        copyCells();
        copyArrays(grid_->GetPointData(), points_, result_.grid->GetPointData(),
                   vtkDataSetAttributes::DUPLICATEPOINT);
        copyArrays(grid_->GetCellData(), cells_, result_.grid->GetCellData(),
                   vtkDataSetAttributes::DUPLICATECELL);
        result_.grid->GetFieldData()->ShallowCopy(grid_->GetFieldData());
    }

    static vtkSmartPointer<vtkIdList> listOf(const Ids& ids) {
        auto list = vtkSmartPointer<vtkIdList>::New();
        list->SetNumberOfIds(static_cast<vtkIdType>(ids.size()));
        std::copy(ids.begin(), ids.end(), list->begin());
        return list;
    }

    void copyCells() {
        result_.grid->Allocate(static_cast<vtkIdType>(cells_.size()));
        vtkNew<vtkIdList> corners;
        for (const vtkIdType cell : cells_) {
            const int type = grid_->GetCellType(cell);
            if (type == VTK_POLYHEDRON) {
                grid_->GetFaceStream(cell, corners);
                renumberFaces(corners);
            } else {
                grid_->GetCellPoints(cell, corners);
                for (vtkIdType& corner : *corners) {
                    corner = renumbered(corner);
                }
            }
            result_.grid->InsertNextCell(type, corners);
        }
    }

    vtkIdType renumbered(vtkIdType point) const {
        return newNumber_[at(representative_[at(point)])];
    }

    // The number of faces, and for each face its number of points and these.
    void renumberFaces(vtkIdList* stream) const {
        vtkIdType next = 1;
        for (vtkIdType face = 0; face < stream->GetId(0); ++face) {
            const vtkIdType end = next + 1 + stream->GetId(next);
            while (++next < end) {
                stream->SetId(next, renumbered(stream->GetId(next)));
            }
        }
    }

    static void copyArrays(vtkDataSetAttributes* from, const Ids& ids, vtkDataSetAttributes* to,
                           unsigned char duplicate) {
        to->CopyAllOn();
        to->CopyAllocate(from, static_cast<vtkIdType>(ids.size()));
        to->CopyData(from, listOf(ids), listOf(numbersTo(static_cast<vtkIdType>(ids.size()))));
        const char* const name = vtkDataSetAttributes::GhostArrayName();
        auto* ghosts = vtkUnsignedCharArray::SafeDownCast(to->GetArray(name));
        if (ghosts == nullptr) {
            return;
        }
        bool any = false;
        for (vtkIdType i = 0; i < ghosts->GetNumberOfValues(); ++i) {
            const auto kept = static_cast<unsigned char>(ghosts->GetValue(i) & ~duplicate);
            ghosts->SetValue(i, kept);
            any = any || kept != 0;
        }
        if (!any) {
            to->RemoveArray(name);
        }
    }

    vtkUnstructuredGrid* grid_;
    std::vector<std::size_t> pieceOf_;
    std::vector<bool> apart_; // points to join with none; empty if there is none such
    Ids representative_;      // of each point, that which stands for it
    Ids cells_;               // those that stay, in their new order
    Ids points_;
    Ids newNumber_;
    JoinedGrid result_;
};

} // namespace

vtkSmartPointer<vtkXMLReader> partitionedGridReader() {
    return vtk::TakeSmartPointer<vtkXMLReader>(PartitionedGridReader::New());
}

std::vector<vtkIdType> pointsOfPieces(vtkAlgorithm* reader) {
    auto* partitioned = dynamic_cast<PartitionedGridReader*>(reader);
    return partitioned == nullptr ? Ids() : partitioned->pointsOfPieces();
}

JoinedGrid joinPieces(vtkUnstructuredGrid* grid, const std::vector<vtkIdType>& pieces) {
    return Joining(grid, pieces).join();
}

} // namespace program
