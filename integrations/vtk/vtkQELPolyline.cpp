// Conversions between VTK's lines and parametric curves.
#include "vtkQELPolyline.h"

#include <algorithm>
#include <set>
#include <utility>

#include <vtkCellArray.h>
#include <vtkCellArrayIterator.h>
#include <vtkCleanPolyData.h>
#include <vtkDoubleArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

vtkStandardNewMacro(vtkQELPolyline);

namespace {

constexpr const char* kSvalues = "s";

using Points = std::vector<qel::TripletBase<double>>;
using PointIds = std::vector<vtkIdType>;

std::vector<PointIds> linesOf(vtkPolyData* data) {
    std::vector<PointIds> lines;
    if (data->GetLines() == nullptr) {
        return lines;
    }
    auto cell = vtk::TakeSmartPointer(data->GetLines()->NewIterator());
    for (cell->GoToFirstCell(); !cell->IsDoneWithTraversal(); cell->GoToNextCell()) {
        const vtkIdList* ids = cell->GetCurrentCell();
        lines.emplace_back(ids->begin(), ids->end());
    }
    return lines;
}

bool areSegments(const std::vector<PointIds>& lines) {
    return lines.size() > 1 && std::all_of(lines.begin(), lines.end(),
                                           [](const PointIds& line) { return line.size() == 2; });
}

Points coordinates(vtkPolyData* data, const PointIds& ids) {
    Points points;
    points.reserve(ids.size());
    for (const vtkIdType id : ids) {
        double p[3];
        data->GetPoint(id, p);
        points.emplace_back(p[0], p[1], p[2]);
    }
    return points;
}

vtkSmartPointer<vtkPointData> emptyLike(vtkPointData* source, std::size_t size) {
    auto target = vtkSmartPointer<vtkPointData>::New();
    target->CopyAllOn();
    target->InterpolateAllocate(source, static_cast<vtkIdType>(size));
    return target;
}

// -- Joining ----

// The segments at each point, and which of them are already part of a line.
class SegmentGraph {
public:
    explicit SegmentGraph(vtkPolyData* data)
        : neighbours_(static_cast<std::size_t>(data->GetNumberOfPoints())) {
        std::set<std::pair<vtkIdType, vtkIdType>> seen;
        for (const PointIds& line : linesOf(data)) {
            for (std::size_t i = 1; i < line.size(); ++i) {
                const auto ends = std::minmax(line[i - 1], line[i]);
                if (ends.first != ends.second && seen.insert(ends).second) {
                    connect(ends.first, ends.second);
                }
            }
        }
    }

    vtkIdType size() const { return static_cast<vtkIdType>(neighbours_.size()); }

    // Lines end where other than two segments meet.
    bool endsAt(vtkIdType point) const { return at(point).size() != 2; }

    // The line that leaves a point by one of its free segments; empty if it has none.
    PointIds take(vtkIdType start) {
        PointIds line{start};
        vtkIdType here = start;
        for (vtkIdType next = leave(here); next >= 0; next = leave(here)) {
            line.push_back(next);
            here = next;
            if (endsAt(here)) {
                break;
            }
        }
        return line.size() > 1 ? line : PointIds();
    }

private:
    struct Way {
        vtkIdType to;
        std::size_t segment;
    };

    const std::vector<Way>& at(vtkIdType point) const {
        return neighbours_[static_cast<std::size_t>(point)];
    }

    void connect(vtkIdType a, vtkIdType b) {
        neighbours_[static_cast<std::size_t>(a)].push_back({b, taken_.size()});
        neighbours_[static_cast<std::size_t>(b)].push_back({a, taken_.size()});
        taken_.push_back(false);
    }

    vtkIdType leave(vtkIdType point) {
        for (const Way& way : at(point)) {
            if (!taken_[way.segment]) {
                taken_[way.segment] = true;
                return way.to;
            }
        }
        return -1;
    }

    std::vector<std::vector<Way>> neighbours_;
    std::vector<bool> taken_;
};

} // namespace

// -- From and to lines ----

std::vector<vtkQELPolyline::Curve>
vtkQELPolyline::FromPolyData(vtkPolyData* lines, qel::ParametricCurve::dim dimension) {
    vtkSmartPointer<vtkPolyData> data = lines;
    std::vector<PointIds> cells = linesOf(data);
    if (areSegments(cells)) {
        data = JoinSegments(data);
        cells = linesOf(data);
    }
    std::vector<Curve> curves;
    for (const PointIds& cell : cells) {
        if (cell.size() >= 2) {
            curves.push_back({qel::ParametricCurve(coordinates(data, cell), dimension),
                              Select(data->GetPointData(), cell)});
        }
    }
    return curves;
}

vtkSmartPointer<vtkPolyData> vtkQELPolyline::ToPolyData(const std::vector<Curve>& curves) {
    std::size_t size = 0;
    for (const Curve& curve : curves) {
        size += curve.curve.getSize();
    }
    vtkNew<vtkPoints> points;
    points->SetDataTypeToDouble();
    vtkNew<vtkDoubleArray> svalues;
    svalues->SetName(kSvalues);
    vtkNew<vtkCellArray> cells;
    auto result = vtkSmartPointer<vtkPolyData>::New();
    vtkPointData* data = result->GetPointData();
    vtkDataSetAttributes::FieldList common;
    for (const Curve& curve : curves) {
        common.IntersectFieldList(curve.data);
    }
    data->CopyAllOn();
    data->CopyAllocate(common, static_cast<vtkIdType>(size));
    int input = 0;
    for (const Curve& curve : curves) {
        cells->InsertNextCell(static_cast<int>(curve.curve.getSize()));
        vtkIdType id = 0;
        for (const auto& p : curve.curve.getCurve()) {
            const vtkIdType to = points->InsertNextPoint(p.x, p.y, p.z);
            cells->InsertCellPoint(to);
            data->CopyData(common, curve.data, input, id++, to);
        }
        ++input;
        for (const double s : curve.curve.getSvalues()) {
            svalues->InsertNextValue(s);
        }
    }
    data->AddArray(svalues);
    result->SetPoints(points);
    result->SetLines(cells);
    return result;
}

vtkSmartPointer<vtkPolyData> vtkQELPolyline::JoinSegments(vtkPolyData* lines) {
    vtkNew<vtkCleanPolyData> merge;
    merge->SetInputData(lines);
    merge->ToleranceIsAbsoluteOn();
    merge->SetAbsoluteTolerance(0.0);
    merge->ConvertLinesToPointsOff();
    merge->Update();

    auto joined = vtkSmartPointer<vtkPolyData>::New();
    joined->SetPoints(merge->GetOutput()->GetPoints());
    joined->GetPointData()->ShallowCopy(merge->GetOutput()->GetPointData());
    vtkNew<vtkCellArray> cells;
    SegmentGraph graph(merge->GetOutput());
    const auto takeAll = [&](vtkIdType start) {
        for (PointIds line = graph.take(start); !line.empty(); line = graph.take(start)) {
            cells->InsertNextCell(static_cast<vtkIdType>(line.size()), line.data());
        }
    };
    for (vtkIdType point = 0; point < graph.size(); ++point) {
        if (graph.endsAt(point)) {
            takeAll(point);
        }
    }
    for (vtkIdType point = 0; point < graph.size(); ++point) {
        takeAll(point); // only loops are left
    }
    joined->SetLines(cells);
    return joined;
}

// -- Point data ----

vtkSmartPointer<vtkPointData> vtkQELPolyline::Interpolate(vtkPointData* source,
                                                          const std::vector<double>& svalues,
                                                          const std::vector<double>& newSvalues) {
    auto target = emptyLike(source, newSvalues.size());
    if (svalues.empty() || source->GetNumberOfArrays() == 0) {
        return target;
    }
    vtkIdType to = 0;
    for (const double s : newSvalues) {
        const auto above = std::upper_bound(svalues.begin(), svalues.end(), s);
        const auto last = static_cast<vtkIdType>(svalues.size()) - 1;
        const auto hi = std::min<vtkIdType>(above - svalues.begin(), last);
        const auto lo = std::max<vtkIdType>((above - svalues.begin()) - 1, 0);
        const double from = svalues[static_cast<std::size_t>(lo)];
        const double step = svalues[static_cast<std::size_t>(hi)] - from;
        const double t = step > 0.0 ? std::clamp((s - from) / step, 0.0, 1.0) : 0.0;
        if (t == 0.0) {
            target->CopyData(source, lo, to++);
        } else {
            target->InterpolateEdge(source, to++, lo, hi, t);
        }
    }
    return target;
}

vtkSmartPointer<vtkPointData> vtkQELPolyline::Select(vtkPointData* source,
                                                     const std::vector<vtkIdType>& ids) {
    auto target = emptyLike(source, ids.size());
    vtkIdType to = 0;
    for (const vtkIdType id : ids) {
        target->CopyData(source, id, to++);
    }
    return target;
}
