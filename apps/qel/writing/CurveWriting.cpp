// Writing of curves.
#include "writing/CurveWriting.h"

#include <algorithm>
#include <fstream>

#include <vtkCellData.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataWriter.h>
#include <vtkStringArray.h>
#include <vtkVariant.h>

#include <qel/QELException.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "curves/Arguments.h"
#include "curves/Axes.h"
#include "writing/FlowWriting.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

bool anyNamed(const Curves& curves) {
    return std::any_of(curves.begin(), curves.end(), [](const auto& curve) { return curve.named; });
}

std::string nameOf(const NamedCurve& curve) {
    return curve.named ? curve.name : "";
}

std::string headerOf(const Curves& curves) {
    std::string line = "curve," + coordinateNames(curves.front()) + ",s";
    vtkPointData* data = curves.front().data;
    for (int a = 0; a < data->GetNumberOfArrays(); ++a) {
        vtkAbstractArray* array = data->GetAbstractArray(a);
        const int components = array->GetNumberOfComponents();
        for (int c = 0; c < components; ++c) {
            const std::string name = array->GetName() == nullptr ? "data" : array->GetName();
            line += "," + quoted(components > 1 ? joined(name, ":", c) : name);
        }
    }
    return line + (anyNamed(curves) ? joined(",", kNameColumn) : "");
}

std::string cellsOf(vtkPointData* data, vtkIdType point) {
    std::string cells;
    for (int a = 0; a < data->GetNumberOfArrays(); ++a) {
        vtkDataArray* numbers = data->GetArray(a);
        vtkAbstractArray* array = data->GetAbstractArray(a);
        for (int c = 0; c < array->GetNumberOfComponents(); ++c) {
            cells +=
                numbers == nullptr
                    ? "," +
                          quoted(array->GetVariantValue(point * array->GetNumberOfComponents() + c)
                                     .ToString())
                    : "," + shortest(numbers->GetComponent(point, c));
        }
    }
    return cells;
}

std::string csvOf(const Curves& curves) {
    std::string table = headerOf(curves);
    int id = 0;
    for (const NamedCurve& curve : curves) {
        const auto& points = curve.curve.getCurve();
        const std::string start = joined("\n", ++id, ",");
        const std::string end = anyNamed(curves) ? "," + quoted(nameOf(curve)) : "";
        for (std::size_t i = 0; i < points.size(); ++i) {
            table += start;
            table += text(points[i]) + "," + shortest(curve.curve.getSvalues()[i]);
            table += cellsOf(curve.data, static_cast<vtkIdType>(i));
            table += end;
        }
    }
    return table + "\n";
}

void writeCsv(const Curves& curves, const fs::path& target) {
    writeText(target, csvOf(curves));
}

void printCsv(const Curves& curves, const fs::path&) {
    out() << csvOf(curves) << std::flush;
}

vtkSmartPointer<vtkPolyData> polyDataOf(const Curves& curves) {
    auto data = vtkQELPolyline::ToPolyData({curves.begin(), curves.end()});
    if (anyNamed(curves)) {
        vtkNew<vtkStringArray> names;
        names->SetName(kNameColumn);
        for (const NamedCurve& curve : curves) {
            names->InsertNextValue(nameOf(curve));
        }
        data->GetCellData()->AddArray(names);
    }
    return data;
}

void writeXml(const Curves& curves, const fs::path& target) {
    writeFlow(polyDataOf(curves), target);
}

void writeLegacy(const Curves& curves, const fs::path& target) {
    vtkNew<vtkPolyDataWriter> writer;
    writer->SetInputData(polyDataOf(curves));
    writer->WriteToOutputStringOn();
    writer->SetFileTypeToBinary(); // VTK does not read undefined numbers from text
    run(writer, "writing " + target.string(), [&] { writer->Write(); });
    writeText(target, writer->GetOutputStdString());
}

void writeExport(const Curves& curves, const fs::path& target) {
    StagedOutput staged(target);
    std::ostringstream all;
    for (const NamedCurve& curve : curves) {
        try {
            curve.curve.exportToFile(staged.path());
        } catch (const qel::Error&) {
            refuse("cannot write ", target.string(), ": the disk may be full");
        }
        all << (&curve == &curves.front() ? "" : "\n") << std::ifstream(staged.path()).rdbuf();
    }
    staged.commit(all.str());
}

constexpr const char* kStandardOutput = "-";

using Writer = void (*)(const Curves&, const fs::path&);

Writer writerFor(const fs::path& target) {
    const std::string ending = target.extension().string();
    const Writer writer = target == kStandardOutput              ? printCsv
                          : ending == ".csv"                     ? writeCsv
                          : ending == ".vtp"                     ? writeXml
                          : ending == ".vtk"                     ? writeLegacy
                          : ending == ".txt" || ending == ".dat" ? writeExport
                                                                 : nullptr;
    refuseIf(writer == nullptr, "cannot write ", target.string(),
             ": curves are written to .csv, .vtp, .vtk, .txt or .dat");
    return writer;
}

} // namespace

void checkCurveOutput(const fs::path& target) {
    writerFor(target);
    if (target != kStandardOutput) {
        checkWritable(target);
    }
}

void writeCurves(const Curves& curves, const fs::path& target) {
    writerFor(target)(curves, target);
}

} // namespace program
