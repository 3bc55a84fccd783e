// Writing of curves.
#include "writing/CurveWriting.h"

#include <fstream>

#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataWriter.h>

#include <qel/QELException.h>

#include "console/Messages.h"
#include "console/VtkRun.h"
#include "writing/FlowWriting.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

constexpr int kDigits = 17; // every double comes back as it was

// A name with commas would read back as several columns.
std::string columnName(const char* name) {
    std::string text = name == nullptr ? "data" : name;
    for (char& c : text) {
        c = c == ',' || c == ';' || c == '\n' ? '_' : c;
    }
    return text;
}

// Calls visit(array, component) for each column that the point data of a curve have in a table.
template <typename Visit>
void forEachColumn(vtkPointData* data, const Visit& visit) {
    for (int a = 0; a < data->GetNumberOfArrays(); ++a) {
        vtkDataArray* array = data->GetArray(a);
        for (int c = 0; array != nullptr && c < array->GetNumberOfComponents(); ++c) {
            visit(array, c);
        }
    }
}

void writeCsv(const Curves& curves, const fs::path& target) {
    std::ostringstream out;
    out.precision(kDigits);
    out << "curve,x,y,z,s";
    forEachColumn(curves.front().data, [&](vtkDataArray* array, int c) {
        out << "," << columnName(array->GetName());
        if (array->GetNumberOfComponents() > 1) {
            out << ":" << c;
        }
    });
    int id = 0;
    for (const NamedCurve& curve : curves) {
        const auto& points = curve.curve.getCurve();
        ++id;
        for (std::size_t i = 0; i < points.size(); ++i) {
            out << "\n" << id << "," << points[i].x << "," << points[i].y << "," << points[i].z;
            out << "," << curve.curve.getSvalues()[i];
            forEachColumn(curve.data, [&](vtkDataArray* array, int c) {
                out << "," << array->GetComponent(static_cast<vtkIdType>(i), c);
            });
        }
    }
    writeText(target, out.str() + "\n");
}

vtkSmartPointer<vtkPolyData> polyDataOf(const Curves& curves) {
    return vtkQELPolyline::ToPolyData({curves.begin(), curves.end()});
}

void writeXml(const Curves& curves, const fs::path& target) {
    writeFlow(polyDataOf(curves), target);
}

void writeLegacy(const Curves& curves, const fs::path& target) {
    vtkNew<vtkPolyDataWriter> writer;
    writer->SetInputData(polyDataOf(curves));
    writer->WriteToOutputStringOn();
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

using Writer = void (*)(const Curves&, const fs::path&);

Writer writerFor(const fs::path& target) {
    const std::string ending = target.extension().string();
    const Writer writer = ending == ".csv"                       ? writeCsv
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
    checkWritable(target);
}

void writeCurves(const Curves& curves, const fs::path& target) {
    writerFor(target)(curves, target);
}

} // namespace program
