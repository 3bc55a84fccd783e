#include <qel/QELStream.h>

#include <qel/QELException.h>

namespace qel {
namespace {

constexpr int kWriteMode = 2;

} // namespace

QELStream::QELStream(const std::string& path, int mode, bool systemLineEnds) : path_(path) {
    if (mode != kWriteMode) {
        throw data::invalid("QELStream", "constructor",
                            "Unknown mode " + std::to_string(mode) + " for file " + path_,
                            argumentError);
    }
    const std::ios::openmode text = std::ios::out | std::ios::trunc;
    open(path_, systemLineEnds ? text : text | std::ios::binary);
    if (!is_open()) {
        throw data::invalid("QELStream", "constructor", "Cannot open file " + path_, argumentError);
    }
}

QELStream::~QELStream() = default;

void QELStream::close() {
    std::ofstream::close();
    if (fail()) {
        throw data::invalid("QELStream", "close", "Cannot write file " + path_, argumentError);
    }
}

} // namespace qel
