// Reading of curves and of points.
#include "reading/CurveReading.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>

#include <vtkCellData.h>
#include <vtkDataSetSurfaceFilter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkStringArray.h>

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
    refuseIf(named.empty() && !isPlace, path, " has no column ", wanted,
             table.header.empty() ? "" : "; its columns are ", listed(table.header));
    const std::size_t column = named.empty() ? static_cast<std::size_t>(place) - 1 : named.front();
    refuseIf(table.isText(column), path, ": the column ", wanted, " holds words, no coordinates");
    return column;
}

bool holdsNumbers(const TextTable& table, std::size_t column) {
    return std::any_of(table.rows.begin(), table.rows.end(),
                       [column](const auto& row) { return !std::isnan(row[column]); });
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
          Words{"points:0", "points:1", "points:2"},
          Words{"axial", "radial", "theta", "theta_rad"}}) {
        const Columns named = columnsOf(table, names);
        columns = columns.empty() && named.size() >= 2 ? named : columns;
    }
    const bool named = !columns.empty();
    for (std::size_t i = 0; wanted.empty() && !named && i < table.texts.size(); ++i) {
        if (columns.size() < 3 && holdsNumbers(table, i)) {
            columns.push_back(i);
        }
    }
    refuseIf(columns.empty(), path, " has no columns of numbers");
    return columns;
}

// The columns of a table that are no coordinates, in a polyline without points.
Polyline emptyLine(const TextTable& table, const Columns& coordinates, const Columns& others) {
    Polyline line;
    line.name = table.title;
    line.planar = coordinates.size() < 3;
    for (const std::size_t i : coordinates) {
        if (!table.header.empty()) {
            line.axes.push_back(table.header[i]);
        }
    }
    for (const std::size_t i : others) {
        const std::string name =
            table.header.empty() ? "column " + std::to_string(i + 1) : table.header[i];
        if (table.isText(i)) {
            line.texts.push_back({name, {}});
        } else {
            line.columns.push_back({name, {}});
        }
    }
    return line;
}

void addRow(Polyline& line, const TextTable& table, std::size_t row, const Columns& coordinates,
            const Columns& others) {
    Point point;
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        point.getRef(static_cast<int>(i)) = table.rows[row][coordinates[i]];
    }
    line.points.push_back(point);
    std::size_t numbers = 0;
    std::size_t texts = 0;
    for (const std::size_t i : others) {
        if (table.isText(i)) {
            line.texts[texts++].second.push_back(table.texts[i][row]);
        } else {
            line.columns[numbers++].second.push_back(table.rows[row][i]);
        }
    }
}

// Tables as this program writes them hold several curves, numbered in a column of their own, with
// their names in another one, and s-values, which are computed anew.
std::vector<Polyline> polylinesOf(const TextTable& table, const Words& wanted,
                                  const std::string& path) {
    const Columns coordinates = coordinateColumns(table, wanted, path);
    const Columns curves = columnsOf(table, {"curve"});
    const bool numbered = !curves.empty() && !table.isText(curves.front());
    Columns known = coordinates;
    Columns names;
    if (numbered) {
        names = columnsOf(table, {kNameColumn});
        const Columns own = columnsOf(table, {"curve", "s", kNameColumn});
        known.insert(known.end(), own.begin(), own.end());
    }
    Columns others;
    for (std::size_t i = 0; i < table.texts.size(); ++i) {
        if (std::count(known.begin(), known.end(), i) == 0) {
            others.push_back(i);
        }
    }
    std::vector<Polyline> polylines;
    std::optional<double> number;
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        const double own = numbered ? table.rows[row][curves.front()] : 0.0;
        if (number != own) {
            polylines.push_back(emptyLine(table, coordinates, others));
            number = own;
            if (!names.empty() && table.isText(names.front())) {
                polylines.back().name = table.texts[names.front()][row];
            }
        }
        addRow(polylines.back(), table, row, coordinates, others);
    }
    return polylines;
}

// -- All kinds ----

TextTable tableOf(const Polyline& polyline) {
    TextTable table{polyline.name, {"x", "y", "z"}, {}, {}};
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
    table.texts.resize(table.header.size());
    for (const auto& [name, words] : polyline.texts) {
        table.header.push_back(name);
        table.texts.push_back(words);
        for (std::vector<double>& row : table.rows) {
            row.push_back(std::numeric_limits<double>::quiet_NaN());
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
        return withColumns(readGeoJson(file.path).polylines, columns, file.name());
    }
    if (file.kind == FileKind::gpx) {
        return withColumns(readGpx(file.path), columns, file.name());
    }
    refuseIf(file.kind != FileKind::text, file.name(), " is no file of curves that can be read");
    std::vector<Polyline> polylines;
    for (const TextTable& table : readTables(file)) {
        const std::vector<Polyline> more = polylinesOf(table, columns, file.name());
        polylines.insert(polylines.end(), more.begin(), more.end());
    }
    return polylines;
}

// The leaves of VTK's data, which have no columns.
std::vector<Leaf> readLeaves(const InputFile& file, const Words& columns,
                             vtkSmartPointer<vtkDataObject>& data) {
    refuseIf(!columns.empty(), file.name(),
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
    for (const auto& [name, words] : polyline.texts) {
        vtkNew<vtkStringArray> array;
        array->SetName(name.c_str());
        for (const std::string& word : words) {
            array->InsertNextValue(word);
        }
        data->AddArray(array);
    }
    return {{Curve(polyline.points, polyline.planar ? Curve::dim2D : Curve::dim3D), data},
            polyline.name,
            !polyline.name.empty(),
            polyline.axes};
}

void addCurves(const Leaf& leaf, Curves& curves) {
    vtkSmartPointer<vtkPolyData> lines = vtkPolyData::SafeDownCast(leaf.data);
    if (lines == nullptr) {
        vtkNew<vtkDataSetSurfaceFilter> surface;
        surface->SetInputData(leaf.data);
        run(surface, "lines");
        lines = surface->GetOutput();
    }
    auto read = vtkQELPolyline::FromPolyData(lines);
    auto* names = vtkStringArray::SafeDownCast(lines->GetCellData()->GetAbstractArray(kNameColumn));
    const bool named = names != nullptr &&
                       names->GetNumberOfValues() == lines->GetNumberOfLines() &&
                       lines->GetNumberOfLines() == static_cast<vtkIdType>(read.size());
    vtkIdType id = 0;
    for (auto& curve : read) {
        const auto& points = curve.curve.getCurve();
        if (std::all_of(points.begin(), points.end(), [](const Point& p) { return p.z == 0.0; })) {
            curve.curve = qel::ParametricCurve(points, qel::ParametricCurve::dim2D);
        }
        curve.data->RemoveArray("s"); // computed anew
        const std::string name = named ? names->GetValue(id++) : leaf.name;
        curves.push_back({std::move(curve), name, named && !name.empty()});
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

std::string stemOf(const InputFile& file) {
    return file.isStandardInput ? "curve" : fs::path(file.path).stem().string();
}

Curves allCurves(const InputFile& file, const Words& columns) {
    Curves curves;
    if (file.isVtk()) {
        vtkSmartPointer<vtkDataObject> data;
        for (const Leaf& leaf : readLeaves(file, columns, data)) {
            addCurves(leaf, curves);
        }
    } else {
        addCurves(readPolylines(file, columns), file.name(), curves);
    }
    refuseIf(curves.empty(), file.name(), " has no curve of at least two points");
    for (std::size_t i = 0; i < curves.size(); ++i) {
        if (curves[i].name.empty()) {
            curves[i].name = curves.size() == 1 ? stemOf(file) : "curve " + std::to_string(i + 1);
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
            vtkAbstractArray* array = curve.data->GetAbstractArray(i);
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

Curves chosenCurves(const std::string& path, const CurveSelection& selection) {
    const InputFile file = recognise(path);
    const Curves all = allCurves(file, selection.columns);
    Curves chosen = selection.curves.empty() ? all : Curves();
    for (const std::string& wanted : selection.curves) {
        const std::size_t before = chosen.size();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (wanted == all[i].name || wanted == std::to_string(i + 1)) {
                chosen.push_back(all[i]);
            }
        }
        refuseIf(chosen.size() == before, file.name(), " has no curve \"", wanted, "\"; it has ",
                 all.size(), ", the first is \"", all[0].name, "\"");
    }
    for (const NamedCurve& curve : chosen) {
        checkFinite(curve.curve.getCurve(), file.name() + ", " + curve.name);
    }
    return chosen;
}

// In the plane if all have z = 0.
Polyline pointsOfVtk(const InputFile& file, const Words& columns) {
    Polyline all;
    all.planar = true;
    vtkSmartPointer<vtkDataObject> data;
    for (const Leaf& leaf : readLeaves(file, columns, data)) {
        for (vtkIdType i = 0; i < leaf.data->GetNumberOfPoints(); ++i) {
            const double* p = leaf.data->GetPoint(i);
            all.points.emplace_back(p[0], p[1], p[2]);
            all.planar = all.planar && p[2] == 0.0;
        }
    }
    return all;
}

PointCloud joinedPoints(const std::vector<Polyline>& parts) {
    PointCloud all{{}, {}, true};
    bool labelled = false;
    for (const Polyline& part : parts) {
        all.planar = all.planar && (part.planar || part.points.empty());
        all.points.insert(all.points.end(), part.points.begin(), part.points.end());
        if (!part.texts.empty()) {
            const Words& words = part.texts.front().second;
            all.labels.insert(all.labels.end(), words.begin(), words.end());
            labelled = true;
        }
        all.labels.resize(all.points.size());
    }
    if (!labelled) {
        all.labels.clear();
    }
    return all;
}

} // namespace

Curves readCurves(const Words& paths, const CurveSelection& selection) {
    Curves chosen;
    for (const std::string& path : paths) {
        for (NamedCurve& curve : chosenCurves(path, selection)) {
            // A number alone would not tell in which file.
            const bool tell = paths.size() > 1 && curve.name.rfind("curve ", 0) == 0;
            curve.name = (tell ? fs::path(path).stem().string() + " " : "") + curve.name;
            curve.named = curve.named || paths.size() > 1;
            chosen.push_back(std::move(curve));
        }
    }
    keepCommonData(chosen, paths.size() == 1 ? paths[0] : "the files");
    return chosen;
}

PointCloud readPoints(const std::string& path, const std::vector<std::string>& columns) {
    const InputFile file = recognise(path);
    const std::vector<Polyline> parts =
        file.isVtk() ? std::vector<Polyline>{pointsOfVtk(file, columns)}
        : file.kind == FileKind::json
            ? withColumns({readGeoJson(file.path).positions}, columns, file.name())
            : readPolylines(file, columns);
    PointCloud cloud = joinedPoints(parts);
    refuseIf(cloud.points.empty(), file.name(), " has no points");
    checkFinite(cloud.points, file.name());
    return cloud;
}

} // namespace program
