// Reading of curves and of points.
#include "CurveReading.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <set>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>

#include "Console.h"
#include "FileKind.h"
#include "FlowReading.h"
#include "GeoJson.h"
#include "Gpx.h"
#include "Text.h"
#include "TextTable.h"
#include "VortexScene.h"

namespace program {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// -- Columns of text files ----

std::size_t columnOf(const TextTable& table, const std::string& name) {
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        if (lower(table.header[i]) == lower(name)) {
            return i;
        }
    }
    return kNone;
}

std::size_t wantedColumn(const TextTable& table, const std::string& wanted,
                         const std::string& path) {
    std::size_t column = columnOf(table, wanted);
    if (column == kNone && !wanted.empty() &&
        std::all_of(wanted.begin(), wanted.end(), [](unsigned char c) { return isdigit(c); }) &&
        wanted.size() < 6) {
        column = std::stoul(wanted) - 1; // column 0 becomes none
    }
    if (column >= table.rows.front().size()) {
        throw UserError(path + " has no column " + wanted);
    }
    return column;
}

// The columns of x, y and z: those asked for, those with such names, or the first ones.
std::vector<std::size_t> coordinateColumns(const TextTable& table,
                                           const std::vector<std::string>& wanted,
                                           const std::string& path) {
    if (wanted.size() > 3) {
        throw UserError("at most three columns can be coordinates, not " +
                        std::to_string(wanted.size()));
    }
    std::vector<std::size_t> columns;
    columns.reserve(3);
    for (const std::string& name : wanted) {
        columns.push_back(wantedColumn(table, name, path));
    }
    if (!columns.empty()) {
        return columns;
    }
    static const std::array<std::array<const char*, 3>, 4> kNames{
        {{"x", "y", "z"},
         {"lon", "lat", ""},
         {"longitude", "latitude", ""},
         {"points:0", "points:1", "points:2"}}};
    for (const auto& names : kNames) {
        for (const char* name : names) {
            const std::size_t column = columnOf(table, name);
            if (column == kNone) {
                break;
            }
            columns.push_back(column);
        }
        if (columns.size() >= 2) {
            return columns;
        }
        columns.clear();
    }
    for (std::size_t i = 0; i < std::min<std::size_t>(table.rows.front().size(), 3); ++i) {
        columns.push_back(i);
    }
    return columns;
}

Point pointOf(const std::vector<double>& row, const std::vector<std::size_t>& columns) {
    Point point;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        point.getRef(static_cast<int>(i)) = row[columns[i]];
    }
    return point;
}

// Tables as this program writes them hold several curves, numbered in a column of their own, and
// s-values, which are computed anew.
std::vector<Line> linesOfTable(const TextTable& table, const std::vector<std::string>& wanted,
                               const std::string& path) {
    const auto coordinates = coordinateColumns(table, wanted, path);
    const std::size_t number = columnOf(table, "curve");
    Line empty;
    empty.name = table.title;
    empty.planar = coordinates.size() < 3;
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < table.rows.front().size(); ++i) {
        const bool used = std::count(coordinates.begin(), coordinates.end(), i) > 0;
        if (!used && i != number && i != columnOf(table, "s")) {
            others.push_back(i);
            const std::string name =
                table.header.empty() ? "column " + std::to_string(i + 1) : table.header[i];
            empty.columns.emplace_back(name, std::vector<double>());
        }
    }
    std::vector<Line> lines{empty};
    const std::vector<double>* before = nullptr;
    for (const std::vector<double>& row : table.rows) {
        if (number != kNone && before != nullptr && (*before)[number] != row[number]) {
            lines.push_back(empty);
        }
        lines.back().points.push_back(pointOf(row, coordinates));
        for (std::size_t i = 0; i < others.size(); ++i) {
            lines.back().columns[i].second.push_back(row[others[i]]);
        }
        before = &row;
    }
    return lines;
}

std::vector<Line> textLines(const std::string& path, const std::vector<std::string>& wanted) {
    std::vector<Line> lines;
    for (const TextTable& table : readTables(path)) {
        for (Line& line : linesOfTable(table, wanted, path)) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

// -- VTK data ----

vtkSmartPointer<vtkPolyData> linesOf(vtkDataSet* data) {
    vtkSmartPointer<vtkPolyData> lines = vtkPolyData::SafeDownCast(data);
    return lines != nullptr ? lines : surfaceOf(data);
}

std::vector<NamedCurve> vtkCurves(const std::string& path) {
    std::vector<NamedCurve> curves;
    const auto data = readVtk(path);
    for (const Leaf& leaf : leavesOf(data)) {
        for (auto& curve : vtkQELPolyline::FromPolyData(linesOf(leaf.data))) {
            double low[3];
            double high[3];
            curve.curve.getMinMax(low[0], high[0], low[1], high[1], low[2], high[2]);
            if (low[2] == 0.0 && high[2] == 0.0) {
                curve.curve =
                    qel::ParametricCurve(curve.curve.getCurve(), qel::ParametricCurve::dim2D);
            }
            curves.push_back({std::move(curve), leaf.name});
        }
    }
    return curves;
}

// -- All kinds ----

bool isFinite(const Point& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

void checkFinite(const Points& points, const std::string& of) {
    const auto bad = std::find_if_not(points.begin(), points.end(), isFinite);
    if (bad != points.end()) {
        throw UserError(of + ": point " + std::to_string(bad - points.begin() + 1) +
                        " has a coordinate that is not finite");
    }
}

void warnOfDropped(const std::string& name, const std::string& path) {
    warn(path + ": the point data " + name + " are not on all curves and are left out");
}

// Writers need the same point data on all curves.
void keepCommonData(std::vector<NamedCurve>& curves, const std::string& path) {
    const auto everyCurveHas = [&](vtkDataArray* array) {
        return std::all_of(curves.begin(), curves.end(), [&](const NamedCurve& curve) {
            vtkDataArray* other = curve.data->GetArray(array->GetName());
            return other != nullptr &&
                   other->GetNumberOfComponents() == array->GetNumberOfComponents();
        });
    };
    std::set<std::string> dropped;
    for (const NamedCurve& curve : curves) {
        for (int i = 0; i < curve.data->GetNumberOfArrays(); ++i) {
            vtkDataArray* array = curve.data->GetArray(i);
            if (array != nullptr && array->GetName() != nullptr && !everyCurveHas(array)) {
                dropped.insert(array->GetName());
            }
        }
    }
    for (const std::string& name : dropped) {
        warnOfDropped(name, path);
        for (const NamedCurve& curve : curves) {
            curve.data->RemoveArray(name.c_str());
        }
    }
}

std::vector<Line> linesOfFile(const std::string& path, const std::vector<std::string>& columns) {
    switch (recognise(path)) {
    case FileKind::json:
        return readGeoJson(path).lines;
    case FileKind::gpx:
        return readGpx(path);
    case FileKind::text:
        return textLines(path, columns);
    default:
        throw UserError(path + " is no file of curves that can be read");
    }
}

bool isVtk(const std::string& path) {
    const FileKind kind = recognise(path);
    return kind == FileKind::xmlVtk || kind == FileKind::legacyVtk ||
           kind == FileKind::partitionedLegacyVtk;
}

NamedCurve curveOf(const Line& line) {
    using Curve = qel::ParametricCurve;
    const Curve::dim dimension = line.planar ? Curve::dim2D : Curve::dim3D;
    return {{Curve(line.points, dimension), pointDataOf(line.columns)}, line.name};
}

std::vector<NamedCurve> allCurves(const std::string& path,
                                  const std::vector<std::string>& columns) {
    std::vector<NamedCurve> curves;
    if (isVtk(path)) {
        curves = vtkCurves(path);
    } else {
        std::size_t tooShort = 0;
        for (const Line& line : linesOfFile(path, columns)) {
            if (line.points.size() >= 2) {
                curves.push_back(curveOf(line));
            } else {
                ++tooShort;
            }
        }
        if (tooShort > 0) {
            warn(path + ": " + std::to_string(tooShort) +
                 " lines of fewer than two points are left out");
        }
    }
    if (curves.empty()) {
        throw UserError(path + " has no curve of at least two points");
    }
    for (std::size_t i = 0; i < curves.size(); ++i) {
        if (curves[i].name.empty()) {
            curves[i].name = curves.size() == 1 ? std::filesystem::path(path).stem().string()
                                                : "curve " + std::to_string(i + 1);
        }
    }
    return curves;
}

UserError noSuchCurve(const std::string& wanted, const std::vector<NamedCurve>& all,
                      const std::string& path) {
    return UserError(path + " has no curve \"" + wanted + "\"; it has " +
                     std::to_string(all.size()) + ", the first is \"" + all[0].name + "\"");
}

} // namespace

vtkSmartPointer<vtkPointData> pointDataOf(const Columns& columns) {
    auto data = vtkSmartPointer<vtkPointData>::New();
    for (const auto& [name, values] : columns) {
        vtkNew<vtkDoubleArray> array;
        array->SetName(name.c_str());
        for (const double value : values) {
            array->InsertNextValue(value);
        }
        data->AddArray(array);
    }
    return data;
}

std::vector<NamedCurve> readCurves(const std::string& path, const CurveSelection& selection) {
    std::vector<NamedCurve> all = allCurves(path, selection.columns);
    std::vector<NamedCurve> chosen = selection.curves.empty() ? all : std::vector<NamedCurve>();
    for (const std::string& wanted : selection.curves) {
        const std::size_t before = chosen.size();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (wanted == all[i].name || wanted == std::to_string(i + 1)) {
                chosen.push_back(all[i]);
            }
        }
        if (chosen.size() == before) {
            throw noSuchCurve(wanted, all, path);
        }
    }
    for (const NamedCurve& curve : chosen) {
        checkFinite(curve.curve.getCurve(), path + ", " + curve.name);
    }
    keepCommonData(chosen, path);
    return chosen;
}

Points readPoints(const std::string& path, const std::vector<std::string>& columns) {
    Points points;
    if (isVtk(path)) {
        const auto data = readVtk(path);
        for (const Leaf& leaf : leavesOf(data)) {
            for (vtkIdType i = 0; i < leaf.data->GetNumberOfPoints(); ++i) {
                const double* p = leaf.data->GetPoint(i);
                points.emplace_back(p[0], p[1], p[2]);
            }
        }
    } else if (recognise(path) == FileKind::json) {
        points = readGeoJson(path).points;
    } else {
        for (const Line& line : linesOfFile(path, columns)) {
            points.insert(points.end(), line.points.begin(), line.points.end());
        }
    }
    if (points.empty()) {
        throw UserError(path + " has no points");
    }
    checkFinite(points, path);
    return points;
}

} // namespace program
