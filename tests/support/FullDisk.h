#ifndef QEL_TESTS_SUPPORT_FULLDISK_H
#define QEL_TESTS_SUPPORT_FULLDISK_H

// A full disk, as far as this process can tell.

#include <csignal>
#include <stdexcept>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace qel_test {

#if defined(_WIN32)

// Windows has no limit to the size of a process's files.
class FullDisk {
public:
    static constexpr bool isAvailable = false;
};

#else

// While one lives files can be opened, but not a byte be written to them: a limit to their size
// stands in for the disk.
class FullDisk {
public:
    static constexpr bool isAvailable = true;

    FullDisk() : signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limitBefore_);
        rlimit nothing = limitBefore_;
        nothing.rlim_cur = 0;
        if (setrlimit(RLIMIT_FSIZE, &nothing) != 0) {
            std::signal(SIGXFSZ, signalBefore_);
            throw std::runtime_error("the size of files cannot be limited");
        }
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limitBefore_);
        std::signal(SIGXFSZ, signalBefore_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*signalBefore_)(int);
    rlimit limitBefore_{};
};

#endif

} // namespace qel_test

#endif
