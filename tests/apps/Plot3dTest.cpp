// PLOT3D files in every layout, told apart by the program.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Program.h"

namespace {

struct Layout {
    bool bigEndian;
    bool records;
    bool multiGrid;
    bool doublePrecision;
    bool blanking;
    bool planar;
    bool text = false;
};

std::string nameOf(const Layout& layout) {
    return std::string(layout.bigEndian ? "big" : "little") + (layout.records ? ", records" : "") +
           (layout.multiGrid ? ", two grids" : "") + (layout.doublePrecision ? ", double" : "") +
           (layout.blanking ? ", iblank" : "") + (layout.planar ? ", planar" : "") +
           (layout.text ? ", text" : "");
}

class Writer {
public:
    explicit Writer(const Layout& layout) : layout_(layout) {}

    void number(int value) {
        if (layout_.text) {
            record_ += std::to_string(value) + " ";
        } else {
            bytes(&value, 4);
        }
    }
    void real(double value) {
        if (layout_.text) {
            char word[32];
            std::snprintf(word, sizeof word, "%.9E\n", value);
            record_ += word;
        } else if (layout_.doublePrecision) {
            bytes(&value, 8);
        } else {
            const auto narrow = static_cast<float>(value);
            bytes(&narrow, 4);
        }
    }
    void endRecord() {
        if (layout_.records) {
            const auto size = static_cast<int>(record_.size());
            const std::string inner = std::move(record_);
            record_.clear();
            number(size);
            const std::string mark = std::move(record_);
            file_ += mark + inner + mark;
        } else {
            file_ += record_ + (layout_.text ? "\n" : "");
        }
        record_.clear();
    }
    const std::string& file() const { return file_; }

private:
    void bytes(const void* value, std::size_t size) {
        std::string raw(static_cast<const char*>(value), size);
        if (layout_.bigEndian) {
            raw.assign(raw.rbegin(), raw.rend());
        }
        record_ += raw;
    }

    Layout layout_;
    std::string record_;
    std::string file_;
};

using Size = std::array<int, 3>;

// One point of the first grid is blanked where there is blanking.
constexpr int kBlanked = 17;

void writeHeader(Writer& writer, const Layout& layout, const std::vector<Size>& sizes) {
    if (layout.multiGrid) {
        writer.number(static_cast<int>(sizes.size()));
        writer.endRecord();
    }
    for (const Size& size : sizes) {
        for (std::size_t axis = 0; axis < (layout.planar ? 2U : 3U); ++axis) {
            writer.number(size[axis]);
        }
    }
    writer.endRecord();
}

template <typename Visit>
void forEachPoint(const Size& size, Visit&& visit) {
    for (int k = 0; k < size[2]; ++k) {
        for (int j = 0; j < size[1]; ++j) {
            for (int i = 0; i < size[0]; ++i) {
                visit(0.5 * i, 0.25 * j, 0.5 * k);
            }
        }
    }
}

std::string gridFile(const Layout& layout, const std::vector<Size>& sizes) {
    Writer writer(layout);
    writeHeader(writer, layout, sizes);
    for (const Size& size : sizes) {
        forEachPoint(size, [&](double x, double, double) { writer.real(x); });
        forEachPoint(size, [&](double, double y, double) { writer.real(y); });
        if (!layout.planar) {
            forEachPoint(size, [&](double, double, double z) { writer.real(z); });
        }
        int point = 0;
        if (layout.blanking) {
            forEachPoint(size, [&](double, double, double) {
                writer.number(point++ == kBlanked && &size == &sizes[0] ? 0 : 1);
            });
        }
        writer.endRecord();
    }
    return writer.file();
}

// Density 2 and a rotation about z at the rate 1, thus a momentum of (-2 y, 2 x, 0).
std::string solutionFile(const Layout& layout, const std::vector<Size>& sizes) {
    Writer writer(layout);
    writeHeader(writer, layout, sizes);
    for (const Size& size : sizes) {
        for (const double freestream : {0.5, 0.0, 1000.0, 0.0}) {
            writer.real(freestream);
        }
        writer.endRecord();
        forEachPoint(size, [&](double, double, double) { writer.real(2.0); });
        forEachPoint(size, [&](double, double y, double) { writer.real(-2.0 * y); });
        forEachPoint(size, [&](double x, double, double) { writer.real(2.0 * x); });
        if (!layout.planar) {
            forEachPoint(size, [&](double, double, double) { writer.real(0.0); });
        }
        forEachPoint(size, [&](double, double, double) { writer.real(9.0); });
        writer.endRecord();
    }
    return writer.file();
}

class Plot3d : public qel_test::Program {
protected:
    // Writes files of a layout and has the program find it out.
    void expectRecognised(const Layout& layout, const std::string& order) const {
        SCOPED_TRACE(nameOf(layout));
        const int layers = layout.planar ? 1 : 3;
        std::vector<Size> sizes{{5, 4, layers}};
        if (layout.multiGrid) {
            sizes.push_back({3, 6, layers});
        }
        write("grid.xyz", gridFile(layout, sizes));
        write("solution.q", solutionFile(layout, sizes));
        const auto run = qel("vortex " + order + " --fields vorticity --stats -");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.err.find("Momentum divided by Density"), std::string::npos) << run.err;
        const auto vorticity = statistics(run.out).at("Vorticity magnitude");
        EXPECT_NEAR(vorticity.minimum, 2.0, 1e-4);
        EXPECT_NEAR(vorticity.maximum, 2.0, 1e-4);
        EXPECT_EQ(vorticity.valid + vorticity.undefined,
                  (layout.multiGrid ? 20 + 18 : 20) * layers);
        EXPECT_EQ(vorticity.undefined, layout.blanking ? 1 : 0);
    }
};

TEST_F(Plot3d, EveryLayoutIsRecognised) {
    for (unsigned bits = 0; bits < 64; ++bits) {
        // The order of the two files does not matter.
        expectRecognised({(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0, (bits & 8U) != 0,
                          (bits & 16U) != 0, (bits & 32U) != 0},
                         bits % 2 == 0 ? "grid.xyz solution.q" : "solution.q grid.xyz");
    }
}

TEST_F(Plot3d, TextIsRecognised) {
    for (unsigned bits = 0; bits < 8; ++bits) {
        expectRecognised(
            {false, false, (bits & 1U) != 0, false, (bits & 2U) != 0, (bits & 4U) != 0, true},
            bits % 2 == 0 ? "grid.xyz solution.q" : "solution.q grid.xyz");
    }
}

TEST_F(Plot3d, TextKeepsDoublePrecision) {
    const Layout layout{false, false, false, false, false, false, true};
    const std::vector<Size> sizes{{5, 4, 3}};
    write("grid.xyz", gridFile(layout, sizes));
    write("solution.q", solutionFile(layout, sizes));
    ASSERT_EQ(qel("vortex grid.xyz solution.q --fields q -o out.vts").status, 0);
    EXPECT_NE(text("out.vts").find("<DataArray type=\"Float64\" Name=\"Velocity\""),
              std::string::npos);
}

TEST_F(Plot3d, DamagedTextIsRefused) {
    const Layout layout{false, false, false, false, false, false, true};
    const std::vector<Size> sizes{{5, 4, 3}};
    const std::string grid = gridFile(layout, sizes);
    const std::string solution = solutionFile(layout, sizes);
    write("grid.xyz", grid);
    write("solution.q", solution);
    write("short.xyz", grid.substr(0, grid.size() / 2));
    write("short.q", solution.substr(0, solution.size() / 2));
    // Counts of repeated values, as some programs write them.
    write("repeated.q", solution.substr(0, solution.size() / 2) + "60*9.0\n");
    write("words.xyz", "5 4 3\nthree words here\n");
    expectRefused("vortex short.xyz solution.q", "is a PLOT3D grid, or they are damaged");
    expectRefused("vortex words.xyz solution.q", "is a PLOT3D grid, or they are damaged");
    expectRefused("vortex grid.xyz short.q", "reading grid.xyz and short.q: ");
    expectRefused("vortex grid.xyz repeated.q", "reading grid.xyz and repeated.q: ");
    expectRefused("vortex grid.xyz", "name its solution file as well");
}

TEST_F(Plot3d, DamagedFilesAreRefused) {
    const Layout layout{false, false, false, false, false, false};
    const std::vector<Size> sizes{{5, 4, 3}};
    const std::string grid = gridFile(layout, sizes);
    const std::string solution = solutionFile(layout, sizes);
    write("grid.xyz", grid);
    write("solution.q", solution);
    write("short.xyz", grid.substr(0, grid.size() - 4));
    write("short.q", solution.substr(0, solution.size() - 4));
    write("other.q", solutionFile(layout, {{4, 4, 3}}));
    expectRefused("vortex short.xyz solution.q -o out", "is a PLOT3D grid, or they are damaged");
    expectRefused("vortex grid.xyz short.q -o out", "reading grid.xyz and short.q: ");
    expectRefused("vortex grid.xyz other.q -o out", "dimensions do not match");
    expectRefused("vortex grid.xyz -o out", "name its solution file as well");
}

} // namespace
