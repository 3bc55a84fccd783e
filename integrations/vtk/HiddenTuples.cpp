// Which points or cells of a data set have no value of their own.
#include "HiddenTuples.h"

#include <algorithm>

#include <vtkCellData.h>
#include <vtkDataSet.h>
#include <vtkDataSetAttributes.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkUnsignedCharArray.h>

namespace vtkQELVortex {
namespace {

constexpr const char* kBlanking = "IBlank";

std::vector<unsigned char> flagged(vtkUnsignedCharArray* ghosts, vtkIdType count, int flags) {
    std::vector<unsigned char> hidden;
    if (ghosts == nullptr || ghosts->GetNumberOfValues() != count) {
        return hidden;
    }
    hidden.resize(static_cast<std::size_t>(count));
    const unsigned char* ghost = ghosts->GetPointer(0);
    std::transform(ghost, ghost + count, hidden.begin(), [flags](unsigned char value) {
        return static_cast<unsigned char>((value & flags) != 0);
    });
    return hidden;
}

void addBlanked(vtkDataArray* blanking, vtkIdType count, std::vector<unsigned char>& hidden) {
    if (blanking == nullptr || blanking->GetNumberOfComponents() != 1 ||
        blanking->GetNumberOfTuples() != count) {
        return;
    }
    hidden.resize(static_cast<std::size_t>(count));
    for (vtkIdType i = 0; i < count; ++i) {
        if (blanking->GetComponent(i, 0) == 0.0) {
            hidden[static_cast<std::size_t>(i)] = 1;
        }
    }
}

// Points that are not drawn: unlike ghosts, they hide the cells at them.
std::vector<unsigned char> hiddenPoints(vtkDataSet* data, int flags) {
    const vtkIdType count = data->GetNumberOfPoints();
    auto hidden = flagged(data->GetPointGhostArray(), count, flags);
    addBlanked(data->GetPointData()->GetArray(kBlanking), count, hidden);
    return hidden;
}

void addCellsAt(vtkDataSet* data, const std::vector<unsigned char>& points,
                std::vector<unsigned char>& hidden) {
    hidden.resize(static_cast<std::size_t>(data->GetNumberOfCells()));
    vtkNew<vtkIdList> corners;
    for (std::size_t cell = 0; cell < hidden.size(); ++cell) {
        data->GetCellPoints(static_cast<vtkIdType>(cell), corners);
        for (const vtkIdType corner : *corners) {
            hidden[cell] = hidden[cell] | points[static_cast<std::size_t>(corner)];
        }
    }
}

} // namespace

std::vector<unsigned char> hiddenTuples(vtkDataSet* data, int association) {
    using Attributes = vtkDataSetAttributes;
    std::vector<unsigned char> hidden;
    if (association == vtkDataObject::FIELD_ASSOCIATION_POINTS) {
        hidden = hiddenPoints(data, Attributes::HIDDENPOINT | Attributes::DUPLICATEPOINT);
    } else {
        const vtkIdType count = data->GetNumberOfCells();
        hidden =
            flagged(data->GetCellGhostArray(), count,
                    Attributes::HIDDENCELL | Attributes::DUPLICATECELL | Attributes::REFINEDCELL);
        addBlanked(data->GetCellData()->GetArray(kBlanking), count, hidden);
        const auto points = hiddenPoints(data, Attributes::HIDDENPOINT);
        if (!points.empty()) {
            addCellsAt(data, points, hidden);
        }
    }
    const bool any = std::any_of(hidden.begin(), hidden.end(), [](auto flag) { return flag != 0; });
    return any ? hidden : std::vector<unsigned char>();
}

} // namespace vtkQELVortex
