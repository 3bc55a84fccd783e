// The bar that shows how far the work has come.
#include "Flows.h"
#include "Program.h"
#include "PseudoTerminal.h"

#include <cstdlib>

#include <vtkXMLImageDataWriter.h>

namespace {

const std::string kWipe = "\r\033[K";

class Progress : public qel_test::Program {
protected:
    // Works on ten curves of which it prints more than a pipe holds to one who lets it wait for a
    // second, so that the work takes longer than half a second however fast the machine is.
    void printToASlowReader(const std::string& options) const {
        std::string table = "x,y,curve\n";
        for (int curve = 0; curve < 10; ++curve) {
            for (int i = 0; i < 500; ++i) {
                table += std::to_string(i) + ",0," + std::to_string(curve) + "\n";
            }
        }
        write("curves.csv", table);
        const auto run = shell("{ qel curve curves.csv --print " + options +
                               "; echo $? >status; } | { read -r line; sleep 1; wc -c; }");
        EXPECT_EQ(text("status"), "0\n");
        EXPECT_GT(std::strtod(run.out.c_str(), nullptr), 100e3);
        write("errors", run.err);
    }

    static std::string bar(const std::string& label, int percent) {
        const auto full = static_cast<std::size_t>(40 * percent / 100);
        return kWipe + label + " [" + std::string(full, '#') + std::string(40 - full, '.') + "] " +
               std::to_string(percent) + " %";
    }
};

TEST_F(Progress, IsShownOnATerminalIfTheWorkTakesLong) {
    const qel_test::PseudoTerminal terminal;
    printToASlowReader("2>" + terminal.device());
    const std::string seen = terminal.shown();
    const std::size_t last = seen.rfind(bar("curves", 100));
    ASSERT_NE(last, std::string::npos) << seen;
    EXPECT_EQ(seen.substr(last), bar("curves", 100) + kWipe);
}

// Even quick work takes long now and then on a busy machine, but not each time.
TEST_F(Progress, IsNotShownForQuickWork) {
    write("curve.csv", "0,0\n1,1\n");
    const qel_test::PseudoTerminal terminal;
    int quick = 0;
    for (int run = 0; run < 10 && quick == 0; ++run) {
        ASSERT_EQ(qel("curve curve.csv --reverse 2>" + terminal.device()).status, 0);
        quick += terminal.shown().empty() ? 1 : 0;
    }
    EXPECT_EQ(quick, 1);
}

TEST_F(Progress, IsShownOnNothingButATerminal) {
    printToASlowReader("");
    EXPECT_EQ(text("errors"), "");
}

TEST_F(Progress, IsNeverShownIfNotWanted) {
    const qel_test::PseudoTerminal terminal;
    printToASlowReader("--progress never 2>" + terminal.device());
    EXPECT_EQ(terminal.shown(), "");
}

TEST_F(Progress, IsAlwaysShownIfWanted) {
    printToASlowReader("--progress always");
    std::string all;
    for (int percent = 10; percent <= 100; percent += 10) {
        all += bar("curves", percent) + kWipe; // before the next curve is printed
    }
    EXPECT_EQ(text("errors"), all);
}

TEST_F(Progress, DoesNotMixWithWhatIsPrinted) {
    write("curves.csv", "x,y,curve\n0,0,1\n1,0,1\n0,0,2\n2,0,2\n");
    for (const std::string step :
         {"--print", "--simplify 2", "--project probe.csv", "--intersect probe.csv"}) {
        SCOPED_TRACE(step);
        write("probe.csv", "x,y\n0.5,-1\n0.5,1\n");
        const auto run = shell("qel curve curves.csv --dim 2 --progress always " + step + " 2>&1");
        EXPECT_EQ(run.status, 0);
        const std::size_t between = run.out.find(bar("curves", 50));
        ASSERT_NE(between, std::string::npos) << run.out;
        EXPECT_EQ(run.out.compare(between + bar("curves", 50).size(), kWipe.size(), kWipe), 0)
            << run.out;
    }
}

TEST_F(Progress, ComesFromVtk) {
    writeData<vtkXMLImageDataWriter>("flow.vti", qel_test::rotation(9, 9, 9));
    const auto run = qel("vortex flow.vti --progress always");
    EXPECT_EQ(run.status, 0);
    for (const char* work : {"reading flow.vti", "analysis"}) {
        EXPECT_NE(run.err.find(bar(work, 100)), std::string::npos) << run.err;
    }
    // A bar is gone before the next line comes.
    EXPECT_NE(run.err.find(bar("reading flow.vti", 100) + kWipe + "qel: the velocity"),
              std::string::npos)
        << run.err;
}

TEST_F(Progress, RefusesOtherChoices) {
    write("curve.csv", "0,0\n1,1\n");
    expectRefused("curve curve.csv --progress sometimes", "--progress: sometimes not in");
}

} // namespace
