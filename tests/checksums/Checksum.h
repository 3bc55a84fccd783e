#ifndef QEL_TESTS_CHECKSUMS_CHECKSUM_H
#define QEL_TESTS_CHECKSUMS_CHECKSUM_H

// One number for any amount of results.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <qel/QELException.h>
#include <qel/TripletBase.h>

namespace qel_checksums {

/// FNV-1a with 64 bits (Fowler, Noll and Vo) over the bits of the results, lowest byte first
/// whatever the machine. Every NaN counts as the same one: no operation fixes its sign or payload.
class Checksum {
public:
    std::uint64_t value() const { return hash_; }

    template <typename T>
    std::enable_if_t<std::is_integral<T>::value || std::is_enum<T>::value> add(T value) {
        addWord(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    }
    void add(float value) { addFloat<std::uint32_t>(value, 0x7fc00000U); }
    void add(double value) { addFloat<std::uint64_t>(value, 0x7ff8000000000000U); }

    void add(const std::string& text) {
        add(text.size());
        for (const char c : text) {
            addByte(static_cast<unsigned char>(c));
        }
    }

    template <typename T>
    void add(const qel::TripletBase<T>& t) {
        add(t.x);
        add(t.y);
        add(t.z);
    }

    template <typename A, typename B>
    void add(const std::pair<A, B>& pair) {
        add(pair.first);
        add(pair.second);
    }

    template <typename T>
    void add(const std::vector<T>& values) {
        add(values.size());
        for (const T& value : values) {
            add(value);
        }
    }

    template <typename First, typename Second, typename... More>
    void add(const First& first, const Second& second, const More&... more) {
        add(first);
        add(second);
        (add(more), ...);
    }

    /// Runs a step. An error that it raises is its result, with all that the error says.
    template <typename Step>
    void addOutcome(Step&& step) {
        try {
            step();
        } catch (const qel::Error& error) {
            add(error.getClassName(), error.getMethodName(), error.getMessage(), error.getType());
        }
    }

private:
    template <typename Bits, typename T>
    void addFloat(T value, Bits nan) {
        static_assert(sizeof(Bits) == sizeof(T), "all bits of the value");
        Bits bits = nan;
        if (value == value) {
            std::memcpy(&bits, &value, sizeof(bits));
        }
        addWord(bits);
    }

    void addWord(std::uint64_t word) {
        for (int shift = 0; shift < 64; shift += 8) {
            addByte(static_cast<unsigned char>((word >> shift) & 0xffU));
        }
    }

    void addByte(unsigned char byte) { hash_ = (hash_ ^ byte) * 0x100000001b3U; }

    std::uint64_t hash_ = 0xcbf29ce484222325U;
};

} // namespace qel_checksums

#endif
