// A curve as text in a file.

#include <cstdio>
#include <filesystem>
#include <memory>

#include "curve/CurveInput.h"

namespace qel_benchmark {
namespace {

void exportByLoop(const Points& points, const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"),
                                                               std::fclose);
    for (const Point& p : points) {
        std::fprintf(file.get(), "%15.9e %15.9e %15.9e\n", p.x, p.y, p.z);
    }
}

void exportToFile(Row& row, const CurveInput& in) {
    const std::string folder = std::filesystem::temp_directory_path().string();
    const std::string a = folder + "/qel_benchmark_library.txt";
    const std::string b = folder + "/qel_benchmark_loop.txt";
    row.add(kLibrary, [&] { in.curve.exportToFile(a); });
    row.add(kPlain, [&] { exportByLoop(in.points, b); });
    row.measure();
    std::filesystem::remove(a);
    std::filesystem::remove(b);
}

const bool registered = addCurveWork("export_to_file", exportToFile, 100000);

} // namespace
} // namespace qel_benchmark
