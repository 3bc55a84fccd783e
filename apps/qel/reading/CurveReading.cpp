// Reading of curves and of points.
#include "reading/CurveReading.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <numeric>
#include <optional>

#include <vtkDataSetSurfaceFilter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "flows/Leaves.h"
#include "reading/FlowReading.h"
#include "reading/MapFiles.h"
#include "reading/TextTable.h"

namespace program {
namespace fs = std::filesystem;
namespace {

using Words = std::vector<std::string>;
using Columns = std::vector<std::size_t>;

// -- Columns of text files ----

// Those of the names that are there.
Columns columnsOf(const TextTable& table, const Words& names) {
    Columns columns;
    for (const std::string& name : names) {
        const auto found = std::find_if(table.header.begin(), table.header.end(),
                                        [&](const auto& word) { return lower(word) == name; });
        if (found != table.header.end()) {
            columns.push_back(static_cast<std::size_t>(found - table.header.begin()));
        }
    }
    return columns;
}

// By its name or by its place, from 1 on.
std::size_t wantedColumn(const TextTable& table, const std::string& wanted,
                         const std::string& path) {
    const Columns named = columnsOf(table, {lower(wanted)});
    const double place = asNumber(wanted).value_or(0.0);
    const bool isPlace = place >= 1.0 && place == std::floor(place) &&
                         place <= static_cast<double>(table.rows.front().size());
    std::string names;
    for (const std::string& name : table.header) {
        names += (names.empty() ? "; its columns are " : ", ") + name;
    }
    refuseIf(named.empty() && !isPlace, path, " has no column ", wanted, names);
    return named.empty() ? static_cast<std::size_t>(place) - 1 : named.front();
}

// The columns of x, y and z: those asked for, those with such names, or the first ones.
Columns coordinateColumns(const TextTable& table, const Words& wanted, const std::string& path) {
    refuseIf(wanted.size() > 3, "at most three columns can be coordinates, not ", wanted.size());
    Columns columns;
    for (const std::string& name : wanted) {
        columns.push_back(wantedColumn(table, name, path));
    }
    for (const Words& names :
         {Words{"x", "y", "z"}, Words{"lon", "lat"}, Words{"longitude", "latitude"},
          Words{"points:0", "points:1", "points:2"}}) {
        const Columns named = columnsOf(table, names);
        columns = columns.empty() && named.size() >= 2 ? named : columns;
    }
    if (columns.empty()) {
        columns.resize(std::min<std::size_t>(table.rows.front().size(), 3));
        std::iota(columns.begin(), columns.end(), 0);
    }
    return columns;
}

// Tables as this program writes them hold several curves, numbered in a column of their own, and
// s-values, which are computed anew.
std::vector<Polyline> polylinesOf(const TextTable& table, const Words& wanted,
                                  const std::string& path) {
    const Columns coordinates = coordinateColumns(table, wanted, path);
    const Columns numbers = columnsOf(table, {"curve"});
    Columns known = columnsOf(table, {"curve", "s"});
    known.insert(known.end(), coordinates.begin(), coordinates.end());
    Polyline empty;
    empty.name = table.title;
    empty.planar = coordinates.size() < 3;
    Columns others;
    for (std::size_t i = 0; i < table.rows.front().size(); ++i) {
        if (std::count(known.begin(), known.end(), i) == 0) {
            others.push_back(i);
            empty.columns.push_back(
                {table.header.empty() ? "column " + std::to_string(i + 1) : table.header[i], {}});
        }
    }
    std::vector<Polyline> polylines;
    std::optional<double> number;
    for (const std::vector<double>& row : table.rows) {
        const double own = numbers.empty() ? 0.0 : row[numbers.front()];
        if (number != own) {
            polylines.push_back(empty);
            number = own;
        }
        Point point;
        for (std::size_t i = 0; i < coordinates.size(); ++i) {
            point.getRef(static_cast<int>(i)) = row[coordinates[i]];
        }
        polylines.back().points.push_back(point);
        for (std::size_t i = 0; i < others.size(); ++i) {
            polylines.back().columns[i].second.push_back(row[others[i]]);
        }
    }
    return polylines;
}

// -- All kinds ----

TextTable tableOf(const Polyline& polyline) {
    TextTable table{polyline.name, {"x", "y", "z"}, {}};
    for (const auto& column : polyline.columns) {
        table.header.push_back(column.first);
    }
    for (std::size_t i = 0; i < polyline.points.size(); ++i) {
        const Point& p = polyline.points[i];
        table.rows.push_back({p.x, p.y, p.z});
        for (const auto& column : polyline.columns) {
            table.rows.back().push_back(column.second[i]);
        }
    }
    return table;
}

// Takes other columns for coordinates, if they are asked for.
std::vector<Polyline> withColumns(std::vector<Polyline> polylines, const Words& wanted,
                                  const std::string& path) {
    for (Polyline& polyline : polylines) {
        if (!wanted.empty() && !polyline.points.empty()) {
            polyline = polylinesOf(tableOf(polyline), wanted, path).front();
        }
    }
    return polylines;
}

std::vector<Polyline> readPolylines(const InputFile& file, const Words& columns) {
    if (file.kind == FileKind::json) {
        return withColumns(readGeoJson(file.path).polylines, columns, file.path);
    }
    if (file.kind == FileKind::gpx) {
        return withColumns(readGpx(file.path), columns, file.path);
    }
    refuseIf(file.kind != FileKind::text, file.path, " is no file of curves that can be read");
    std::vector<Polyline> polylines;
    for (const TextTable& table : readTables(file.path)) {
        const std::vector<Polyline> more = polylinesOf(table, columns, file.path);
        polylines.insert(polylines.end(), more.begin(), more.end());
    }
    return polylines;
}

// The leaves of VTK's data, which have no columns.
std::vector<Leaf> readLeaves(const InputFile& file, const Words& columns,
                             vtkSmartPointer<vtkDataObject>& data) {
    refuseIf(!columns.empty(), file.path,
             " is a VTK file: --columns is for tables, GeoJSON and GPX");
    data = readFlow(file, std::nullopt);
    return leavesOf(data);
}

NamedCurve curveOf(const Polyline& polyline) {
    using Curve = qel::ParametricCurve;
    auto data = vtkSmartPointer<vtkPointData>::New();
    for (const auto& [name, values] : polyline.columns) {
        vtkNew<vtkDoubleArray> array;
        array->SetName(name.c_str());
        for (const double value : values) {
            array->InsertNextValue(value);
        }
        data->AddArray(array);
    }
    return {{Curve(polyline.points, polyline.planar ? Curve::dim2D : Curve::dim3D), data},
            polyline.name};
}

void addCurves(const Leaf& leaf, Curves& curves) {
    vtkSmartPointer<vtkPolyData> lines = vtkPolyData::SafeDownCast(leaf.data);
    if (lines == nullptr) {
        vtkNew<vtkDataSetSurfaceFilter> surface;
        surface->SetInputData(leaf.data);
        run(surface, "lines");
        lines = surface->GetOutput();
    }
    for (auto& curve : vtkQELPolyline::FromPolyData(lines)) {
        const auto& points = curve.curve.getCurve();
        if (std::all_of(points.begin(), points.end(), [](const Point& p) { return p.z == 0.0; })) {
            curve.curve = qel::ParametricCurve(points, qel::ParametricCurve::dim2D);
        }
        curves.push_back({std::move(curve), leaf.name});
    }
}

void addCurves(const std::vector<Polyline>& polylines, const std::string& path, Curves& curves) {
    for (const Polyline& polyline : polylines) {
        if (polyline.points.size() >= 2) {
            curves.push_back(curveOf(polyline));
        }
    }
    if (curves.size() < polylines.size()) {
        warn(path, ": ", polylines.size() - curves.size(),
             " lines of fewer than two points are left out");
    }
}

Curves allCurves(const InputFile& file, const Words& columns) {
    Curves curves;
    if (file.isVtk()) {
        vtkSmartPointer<vtkDataObject> data;
        for (const Leaf& leaf : readLeaves(file, columns, data)) {
            addCurves(leaf, curves);
        }
    } else {
        addCurves(readPolylines(file, columns), file.path, curves);
    }
    refuseIf(curves.empty(), file.path, " has no curve of at least two points");
    for (std::size_t i = 0; i < curves.size(); ++i) {
        if (curves[i].name.empty()) {
            curves[i].name = curves.size() == 1 ? fs::path(file.path).stem().string()
                                                : "curve " + std::to_string(i + 1);
        }
    }
    return curves;
}

void checkFinite(const Points& points, const std::string& of) {
    const auto bad = std::find_if_not(points.begin(), points.end(), [](const Point& p) {
        return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    });
    refuseIf(bad != points.end(), of, ": point ", bad - points.begin() + 1,
             " has a coordinate that is not finite");
}

// Writers need the same point data on all curves.
void keepCommonData(const Curves& curves, const std::string& path) {
    std::map<std::pair<std::string, int>, std::size_t> counts; // by name and components
    for (const NamedCurve& curve : curves) {
        for (int i = 0; i < curve.data->GetNumberOfArrays(); ++i) {
            vtkDataArray* array = curve.data->GetArray(i);
            if (array != nullptr && array->GetName() != nullptr) {
                ++counts[{array->GetName(), array->GetNumberOfComponents()}];
            }
        }
    }
    for (const auto& [array, count] : counts) {
        const std::string& name = array.first;
        if (count < curves.size()) {
            warn(path, ": the point data ", name, " are not on all curves and are left out");
            for (const NamedCurve& curve : curves) {
                curve.data->RemoveArray(name.c_str());
            }
        }
    }
}

} // namespace

Curves readCurves(const std::string& path, const CurveSelection& selection) {
    const Curves all = allCurves(recognise(path), selection.columns);
    Curves chosen = selection.curves.empty() ? all : Curves();
    for (const std::string& wanted : selection.curves) {
        const std::size_t before = chosen.size();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (wanted == all[i].name || wanted == std::to_string(i + 1)) {
                chosen.push_back(all[i]);
            }
        }
        refuseIf(chosen.size() == before, path, " has no curve \"", wanted, "\"; it has ",
                 all.size(), ", the first is \"", all[0].name, "\"");
    }
    for (const NamedCurve& curve : chosen) {
        checkFinite(curve.curve.getCurve(), path + ", " + curve.name);
    }
    keepCommonData(chosen, path);
    return chosen;
}

Points readPoints(const std::string& path, const std::vector<std::string>& columns) {
    const InputFile file = recognise(path);
    Points points;
    if (file.isVtk()) {
        vtkSmartPointer<vtkDataObject> data;
        for (const Leaf& leaf : readLeaves(file, columns, data)) {
            for (vtkIdType i = 0; i < leaf.data->GetNumberOfPoints(); ++i) {
                const double* p = leaf.data->GetPoint(i);
                points.emplace_back(p[0], p[1], p[2]);
            }
        }
    } else {
        Polyline all;
        if (file.kind == FileKind::json) {
            all.points = readGeoJson(path).points;
        }
        for (const Polyline& polyline : all.points.empty() ? readPolylines(file, columns)
                                                           : withColumns({all}, columns, path)) {
            points.insert(points.end(), polyline.points.begin(), polyline.points.end());
        }
    }
    refuseIf(points.empty(), path, " has no points");
    checkFinite(points, path);
    return points;
}

} // namespace program
