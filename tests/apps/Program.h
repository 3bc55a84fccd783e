#ifndef QEL_TESTS_APPS_PROGRAM_H
#define QEL_TESTS_APPS_PROGRAM_H

// Runs the program in a folder of its own and reads back what it leaves.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>

#include <gtest/gtest.h>

#include <vtkDataObject.h>
#include <vtkNew.h>

namespace qel_test {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

struct StatisticsLine {
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    long long valid = 0;
    long long undefined = 0;
};

class Program : public ::testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "qel-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    void TearDown() override { fs::remove_all(folder); }

    // Runs a shell command in the folder; "qel" in it is the program.
    Outcome shell(const std::string& command) const {
        const std::string streams = " >stdout.log 2>stderr.log";
        const int status =
            std::system(("cd " + folder.string() + " && { qel() { '" QEL_PROGRAM "' \"$@\"; }; " +
                         command + "; }" + streams)
                            .c_str());
        Outcome run;
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.out = text("stdout.log");
        run.err = text("stderr.log");
        fs::remove(folder / "stdout.log");
        fs::remove(folder / "stderr.log");
        return run;
    }
    Outcome qel(const std::string& arguments) const { return shell("qel " + arguments); }

    std::string text(const std::string& file) const {
        std::ifstream stream(folder / file, std::ios::binary);
        std::ostringstream content;
        content << stream.rdbuf();
        return content.str();
    }

    void write(const std::string& file, const std::string& content) const {
        std::ofstream(folder / file, std::ios::binary) << content;
    }

    // Writes data by one of VTK's writers.
    template <typename Writer>
    void writeData(const std::string& file, vtkDataObject* data) const {
        vtkNew<Writer> writer;
        writer->SetInputDataObject(data);
        writer->SetFileName((folder / file).c_str());
        ASSERT_EQ(writer->Write(), 1);
    }

    // Names of what is in the folder.
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // Numbers of a CSV file below its header.
    static std::vector<std::vector<double>> rows(const std::string& csv) {
        std::vector<std::vector<double>> all;
        std::istringstream lines(csv);
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            std::vector<double> row;
            std::istringstream words(line);
            for (std::string word; std::getline(words, word, ',');) {
                row.push_back(std::strtod(word.c_str(), nullptr));
            }
            all.push_back(row);
        }
        return all;
    }

    // What --stats writes, by field.
    static std::map<std::string, StatisticsLine> statistics(const std::string& csv) {
        std::map<std::string, StatisticsLine> all;
        std::istringstream lines(csv);
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, "field,unit,minimum,maximum,mean,valid,undefined");
        const auto numbers = rows(csv);
        for (const auto& row : numbers) {
            std::getline(lines, line);
            if (row.size() == 7) {
                all[line.substr(0, line.find(','))] = {row[2], row[3], row[4],
                                                       static_cast<long long>(row[5]),
                                                       static_cast<long long>(row[6])};
            }
        }
        return all;
    }

    // One line on standard error, exit code 2, and no new file.
    void expectRefused(const std::string& arguments, const std::string& message) const {
        SCOPED_TRACE("qel " + arguments);
        const auto before = files();
        const Outcome run = qel(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
        EXPECT_EQ(run.err.rfind("qel: ", 0), 0U) << run.err;
        std::istringstream lines(run.err);
        int errors = 0;
        for (std::string line; std::getline(lines, line);) {
            EXPECT_EQ(line.rfind("qel: ", 0), 0U) << line;
            errors += line.rfind("qel: error: ", 0) == 0 ? 1 : 0;
        }
        EXPECT_EQ(errors, 1) << run.err;
        EXPECT_EQ(files(), before);
    }

    fs::path folder;
};

} // namespace qel_test

// Skips the test where the real data are not there.
#define QEL_NEED_DATA(path)                                                                        \
    const std::string data = QEL_TEST_DATA_DIR;                                                    \
    if (!std::filesystem::exists(data + "/" + (path))) {                                           \
        GTEST_SKIP() << "no real data in " << data << " (set QEL_TEST_DATA_DIR)";                  \
    }

#endif
