// Prints one checksum for each operation of the library, or compares them.
//
//     qel_checksums [--unit portable|avx2|avx512] [--exact] [--against <file>]
//
// --unit     runs on this vector unit instead of the machine's widest; on a machine without it the
//            program says so and leaves with the status of a skipped test
// --exact    prints the operations alone whose bits no C library decides: the file to compare with
// --against  prints nothing; compares the exact operations with such a file, and the others with
//            the portable unit's in this run
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "Operations.h"
#include "platform/VectorUnit.h"

namespace qel_checksums {
namespace {

constexpr int kSkipped = 77;

using Sums = std::map<std::string, std::string>;

std::string hexadecimal(std::uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(value));
    return text;
}

Sums sumsOf(Arithmetic arithmetic, qel::VectorUnit unit) {
    qel::forceVectorUnit(unit);
    Sums sums;
    for (const Operation& operation : allOperations()) {
        if (operation.arithmetic == arithmetic) {
            Checksum sum;
            operation.run(sum);
            const bool isNew = sums.emplace(operation.name, hexadecimal(sum.value())).second;
            if (!isNew) {
                std::cerr << operation.name << " stands twice\n";
                std::exit(2);
            }
        }
    }
    return sums;
}

void print(const Sums& sums) {
    for (const auto& [name, sum] : sums) {
        std::cout << sum << "  " << name << "\n";
    }
}

// Lines as print() writes them; a line that starts with # is a remark.
std::optional<Sums> readSums(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        std::cerr << "cannot read " << path << "\n";
        return std::nullopt;
    }
    Sums sums;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string sum, name;
        if (line.rfind('#', 0) != 0 && words >> sum >> name) {
            sums[name] = sum;
        }
    }
    return sums;
}

// Number of operations that differ, or that only one side has.
int differences(const Sums& actual, const Sums& expected, const std::string& whose) {
    int count = 0;
    for (const auto& [name, sum] : actual) {
        const auto other = expected.find(name);
        if (other == expected.end()) {
            std::cerr << name << ": missing from " << whose << "\n";
            ++count;
        } else if (other->second != sum) {
            std::cerr << name << ": " << sum << ", but " << other->second << " in " << whose
                      << "\n";
            ++count;
        }
    }
    for (const auto& entry : expected) {
        if (actual.count(entry.first) == 0) {
            std::cerr << entry.first << ": in " << whose << " only\n";
            ++count;
        }
    }
    return count;
}

int compare(qel::VectorUnit unit, const std::string& path) {
    const std::optional<Sums> expected = readSums(path);
    if (!expected) {
        return 2;
    }
    const Sums exact = sumsOf(Arithmetic::exact, unit);
    const Sums libm = sumsOf(Arithmetic::libm, unit);
    const int count =
        differences(exact, *expected, path) +
        differences(libm, sumsOf(Arithmetic::libm, qel::VectorUnit::portable), "the portable unit");
    std::cerr << exact.size() + libm.size() << " operations, " << count << " differences\n";
    return count == 0 ? 0 : 1;
}

std::optional<qel::VectorUnit> unitOf(const std::string& name) {
    static const std::map<std::string, qel::VectorUnit> units = {
        {"portable", qel::VectorUnit::portable},
        {"avx2", qel::VectorUnit::avx2},
        {"avx512", qel::VectorUnit::avx512},
    };
    const auto unit = units.find(name);
    return unit == units.end() ? std::nullopt : std::optional(unit->second);
}

int usage() {
    std::cerr << "usage: qel_checksums [--unit portable|avx2|avx512] [--exact] "
                 "[--against <file>]\n";
    return 2;
}

int run(const std::vector<std::string>& arguments) {
    qel::VectorUnit unit = qel::vectorUnit();
    bool exactOnly = false;
    std::string reference;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool hasValue = i + 1 < arguments.size();
        if (arguments[i] == "--unit" && hasValue) {
            const auto named = unitOf(arguments[++i]);
            if (!named) {
                return usage();
            }
            unit = *named;
        } else if (arguments[i] == "--against" && hasValue) {
            reference = arguments[++i];
        } else if (arguments[i] == "--exact") {
            exactOnly = true;
        } else {
            return usage();
        }
    }
    if (!qel::hasVectorUnit(unit)) {
        std::cout << "skipped: this machine does not have the vector unit\n";
        return kSkipped;
    }
    if (!reference.empty()) {
        return compare(unit, reference);
    }
    print(sumsOf(Arithmetic::exact, unit));
    if (!exactOnly) {
        print(sumsOf(Arithmetic::libm, unit));
    }
    return 0;
}

} // namespace
} // namespace qel_checksums

int main(int argc, char** argv) {
    return qel_checksums::run({argv + 1, argv + argc});
}
