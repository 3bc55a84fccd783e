#ifndef QEL_BENCHMARKS_SUPPORT_PROGRAM_H
#define QEL_BENCHMARKS_SUPPORT_PROGRAM_H

// The program of a group of works: which are measured, at which sizes, and where results go.

#include <cstddef>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "support/Row.h"

namespace qel_benchmark {

// Options of the command line; see usage() in Program.cpp.
class Program {
public:
    // Ends the program on options that it does not know.
    Program(int argc, char** argv, std::string group);

    const Plan& plan() const { return plan_; }
    const std::vector<std::size_t>& sizes() const { return sizes_; }
    // True for the program that only names its shapes.
    bool listsShapes() const { return listsShapes_; }
    bool isWanted(const std::string& shape) const { return shape_.empty() || shape == shape_; }
    bool isWanted(const std::string& work, const std::string& shape, std::size_t n) const;
    // Writes the row as a line of JSON, at once: a peer that crashes takes no earlier row with it.
    void write(const std::string& work, const std::string& shape, const Row& row);

private:
    std::string group_;
    std::string unit_;
    Plan plan_;
    std::vector<std::size_t> sizes_;
    std::string shape_;
    bool listsShapes_ = false;
    std::regex filter_{""};
    std::ofstream file_;
};

// The works of a group, each measured on every shape at every size.
//
// Input(shape, n) holds what they share; it is made once for each shape and n.
template <typename Shape, typename Input>
class Works {
public:
    using Run = std::function<void(Row&, const Input&)>;

    // smallest and largest: the sizes at which it makes sense.
    bool add(const std::string& name, Run run, std::size_t smallest = 1,
             std::size_t largest = std::numeric_limits<std::size_t>::max()) {
        works_.push_back({name, std::move(run), smallest, largest});
        return true;
    }

    void measure(Program& program, const std::vector<Shape>& shapes) const {
        for (const Shape& shape : shapes) {
            if (program.listsShapes()) {
                std::cout << shape.name << "\n";
            }
            if (program.listsShapes() || !program.isWanted(shape.name)) {
                continue;
            }
            std::vector<CostHistory> costs(works_.size());
            for (const std::size_t n : program.sizes()) {
                std::unique_ptr<const Input> input;
                for (std::size_t k = 0; k < works_.size(); ++k) {
                    measureWork(program, shape, n, input, works_[k], costs[k]);
                }
            }
        }
    }

private:
    struct Work {
        std::string name;
        Run run;
        std::size_t smallest;
        std::size_t largest;
    };

    static void measureWork(Program& program, const Shape& shape, std::size_t n,
                            std::unique_ptr<const Input>& input, const Work& work,
                            CostHistory& costs) {
        if (n < work.smallest || n > work.largest || !program.isWanted(work.name, shape.name, n)) {
            return;
        }
        if (!input) {
            input = std::make_unique<const Input>(shape, n);
        }
        Row row(program.plan(), costs, n);
        row.setItems(n);
        work.run(row, *input);
        if (row.isMeasured()) {
            program.write(work.name, shape.name, row);
        }
    }

    std::vector<Work> works_;
};

} // namespace qel_benchmark

#endif
