#include "support/Program.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>

#include "support/MeasuredLibrary.h"

namespace qel_benchmark {
namespace {

const char* const kUsage =
    "  --out <file>         results, a line of JSON for each row, appended\n"
    "  --unit <name>        portable, AVX2 or AVX-512; else the widest of the machine\n"
    "  --filter <regex>     only rows whose <work>/<shape>/<n>/ matches\n"
    "  --shape <name>       only this shape\n"
    "  --list-shapes        names the shapes, and measures nothing\n"
    "  --largest <n>        no larger sizes\n"
    "  --neighbours         sizes side by side, where a threshold would show as a step\n"
    "  --library-alone      neither plain loops nor peers\n"
    "  --rounds <k>         batches of each contender, whose median counts\n"
    "  --batch <seconds>    time of a batch\n"
    "  --budget <seconds>   time of all batches of one contender\n"
    "  --max-call <seconds> a call expected to take longer is left out\n";

// 1, 2 and powers of ten.
std::vector<std::size_t> decades() {
    return {1, 2, 10, 100, 1000, 10000, 100000, 1000000};
}

// Every size up to 20, then ever wider steps, and the powers of two between their neighbours.
std::vector<std::size_t> neighbours() {
    std::vector<std::size_t> sizes;
    for (std::size_t n = 1; n <= 20; ++n) {
        sizes.push_back(n);
    }
    for (std::size_t power = 32; power <= 65536; power *= 2) {
        sizes.insert(sizes.end(), {power / 4 * 3, power - 1, power, power + 1});
    }
    return sizes;
}

} // namespace

Program::Program(int argc, char** argv, std::string group)
    : group_(std::move(group)), sizes_(decades()) {
    std::size_t largest = decades().back();
    std::string unit;
    const std::map<std::string, std::function<void()>> flags = {
        {"--list-shapes", [&] { listsShapes_ = true; }},
        {"--neighbours", [&] { sizes_ = neighbours(); }},
        {"--library-alone", [&] { plan_.libraryAlone = true; }},
    };
    const std::map<std::string, std::function<void(const char*)>> options = {
        {"--out", [&](const char* path) { file_.open(path, std::ios::app); }},
        {"--unit", [&](const char* name) { unit = name; }},
        {"--filter", [&](const char* pattern) { filter_ = std::regex(pattern); }},
        {"--shape", [&](const char* name) { shape_ = name; }},
        {"--largest", [&](const char* n) { largest = static_cast<std::size_t>(std::atof(n)); }},
        {"--rounds", [&](const char* k) { plan_.rounds = std::atoi(k); }},
        {"--batch", [&](const char* seconds) { plan_.batchSeconds = std::atof(seconds); }},
        {"--budget", [&](const char* seconds) { plan_.budgetSeconds = std::atof(seconds); }},
        {"--max-call", [&](const char* seconds) { plan_.maxCallSeconds = std::atof(seconds); }},
    };
    for (int i = 1; i < argc; ++i) {
        if (const auto flag = flags.find(argv[i]); flag != flags.end()) {
            flag->second();
        } else if (const auto option = options.find(argv[i]);
                   option != options.end() && i + 1 < argc) {
            option->second(argv[++i]);
        } else {
            std::cerr << "unknown option " << argv[i] << "\n" << kUsage;
            std::exit(2);
        }
    }
    sizes_.erase(std::upper_bound(sizes_.begin(), sizes_.end(), largest), sizes_.end());
    unit_ = useVectorUnit(unit);
    if (unit_.empty()) {
        std::cerr << "this machine has no vector unit " << unit << "\n";
        std::exit(3);
    }
}

bool Program::isWanted(const std::string& work, const std::string& shape, std::size_t n) const {
    return std::regex_search(work + "/" + shape + "/" + std::to_string(n) + "/", filter_);
}

void Program::write(const std::string& work, const std::string& shape, const Row& row) {
    const std::string line = "{\"group\": \"" + group_ + "\", \"unit\": \"" + unit_ +
                             "\", \"work\": \"" + work + "\", \"shape\": \"" + shape +
                             "\", \"n\": " + std::to_string(row.n()) + ", " + row.json() + "}";
    (file_.is_open() ? static_cast<std::ostream&>(file_) : std::cout) << line << std::endl;
}

} // namespace qel_benchmark
