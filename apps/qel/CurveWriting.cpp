// Writing of curves.
#include "CurveWriting.h"

#include <array>
#include <fstream>
#include <sstream>

#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataWriter.h>

#include <qel/QELException.h>

#include "Console.h"
#include "FlowWriting.h"
#include "StagedOutput.h"

namespace program {
namespace {

constexpr int kDigits = 17; // every double comes back as it was

std::string number(double value) {
    std::ostringstream stream;
    stream.precision(kDigits);
    stream << value;
    return stream.str();
}

// A name with commas would read back as several columns.
std::string columnName(const char* name) {
    std::string text = name == nullptr ? "data" : name;
    for (char& c : text) {
        c = c == ',' || c == ';' || c == '\n' ? '_' : c;
    }
    return text;
}

void addHeader(std::ostringstream& out, vtkPointData* data) {
    out << "curve,x,y,z,s";
    for (int a = 0; a < data->GetNumberOfArrays(); ++a) {
        vtkDataArray* array = data->GetArray(a);
        const int components = array == nullptr ? 0 : array->GetNumberOfComponents();
        for (int c = 0; c < components; ++c) {
            out << "," << columnName(array->GetName());
            if (components > 1) {
                out << ":" << c;
            }
        }
    }
    out << "\n";
}

void addRows(std::ostringstream& out, const NamedCurve& curve, std::size_t id) {
    const auto& points = curve.curve.getCurve();
    for (std::size_t i = 0; i < points.size(); ++i) {
        out << id << "," << number(points[i].x) << "," << number(points[i].y) << ","
            << number(points[i].z) << "," << number(curve.curve.getSvalues()[i]);
        for (int a = 0; a < curve.data->GetNumberOfArrays(); ++a) {
            vtkDataArray* array = curve.data->GetArray(a);
            const int components = array == nullptr ? 0 : array->GetNumberOfComponents();
            for (int c = 0; c < components; ++c) {
                out << "," << number(array->GetComponent(static_cast<vtkIdType>(i), c));
            }
        }
        out << "\n";
    }
}

void writeCsv(const std::vector<NamedCurve>& curves, const std::filesystem::path& target) {
    std::ostringstream out;
    addHeader(out, curves.front().data);
    for (std::size_t i = 0; i < curves.size(); ++i) {
        addRows(out, curves[i], i + 1);
    }
    writeText(target, out.str());
}

vtkSmartPointer<vtkPolyData> polyDataOf(const std::vector<NamedCurve>& curves) {
    return vtkQELPolyline::ToPolyData({curves.begin(), curves.end()});
}

void writeLegacy(const std::vector<NamedCurve>& curves, const std::filesystem::path& target) {
    vtkNew<vtkPolyDataWriter> writer;
    writer->SetInputData(polyDataOf(curves));
    writer->WriteToOutputStringOn();
    watched(writer, "writing " + target.string(), [&] { writer->Write(); });
    writeText(target, writer->GetOutputStdString());
}

void writeExport(const std::vector<NamedCurve>& curves, const std::filesystem::path& target) {
    StagedOutput part(target);
    std::ostringstream all;
    for (const NamedCurve& curve : curves) {
        try {
            curve.curve.exportToFile(part.path());
        } catch (const qel::Error&) {
            throw UserError("cannot write " + target.string() + ": the disk may be full");
        }
        all << (&curve == &curves.front() ? "" : "\n") << std::ifstream(part.path()).rdbuf();
    }
    writeText(target, all.str());
}

using Writer = void (*)(const std::vector<NamedCurve>&, const std::filesystem::path&);

Writer writerFor(const std::filesystem::path& target) {
    const std::string ending = target.extension().string();
    if (ending == ".csv") {
        return writeCsv;
    }
    if (ending == ".vtk") {
        return writeLegacy;
    }
    if (ending == ".vtp") {
        return [](const std::vector<NamedCurve>& curves, const std::filesystem::path& file) {
            writeFlow(polyDataOf(curves), file);
        };
    }
    if (ending == ".txt" || ending == ".dat") {
        return writeExport;
    }
    throw UserError("cannot write " + target.string() +
                    ": curves are written to .csv, .vtp, .vtk, .txt or .dat");
}

} // namespace

void checkCurveOutput(const std::filesystem::path& target) {
    writerFor(target);
    checkWritable(target);
}

void writeCurves(const std::vector<NamedCurve>& curves, const std::filesystem::path& target) {
    writerFor(target)(curves, target);
}

} // namespace program
