// The child process, whose parent turns a crash of a reader into one line.
#include "console/ChildProcess.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <stdexcept>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "console/Messages.h"

namespace {

namespace fs = std::filesystem;
using program::kExitBadInput;
using program::kExitInterrupted;
using program::runInChild;
using program::whileReading;
using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

constexpr const char* kDamaged =
    "^qel: error: reading flow.vtu: the reader fails, the file is damaged\n$";

constexpr const char* kInterrupted = "^qel: error: interrupted\n$";

[[noreturn]] void crash(int number) {
    std::raise(number);
    std::_Exit(EXIT_FAILURE);
}

// Runs work in a child of this process, which is one of the test.
template <typename Work>
[[noreturn]] void run(Work work) {
    std::exit(runInChild([&] {
        work();
        return 0;
    }));
}

template <typename Work>
[[noreturn]] void runReading(Work work) {
    run([&] { whileReading("flow.vtu", work); });
}

// Calls itself until the stack, a small one, has run out.
int overflow(int depth) {
    volatile char room[4096];
    room[depth % 4096] = static_cast<char>(depth);
    return depth < 0 ? 0 : overflow(depth + 1) + room[depth % 4096];
}

void overflowASmallStack() {
    rlimit limit{};
    getrlimit(RLIMIT_STACK, &limit);
    limit.rlim_cur = 1024 * 1024;
    setrlimit(RLIMIT_STACK, &limit);
    std::exit(overflow(0));
}

std::string refusalOf(const std::function<void()>& work) {
    try {
        whileReading("flow.vtu", work);
    } catch (const program::UserError& error) {
        return error.what();
    }
    return "none";
}

TEST(ChildProcessDeathTest, ItsExitCodeIsTheResult) {
    for (const int code : {0, 1, kExitBadInput, 130}) {
        EXPECT_EXIT(std::exit(runInChild([&] { return code; })), ExitedWithCode(code), "^$");
    }
}

TEST(ChildProcessDeathTest, ACrashWhileReadingIsTheFaultOfTheFile) {
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        SCOPED_TRACE(number);
        EXPECT_EXIT(runReading([&] { crash(number); }), ExitedWithCode(kExitBadInput), kDamaged);
    }
}

TEST(ChildProcessDeathTest, AnOverflowOfTheStackIsACrash) {
    EXPECT_EXIT(runReading(overflowASmallStack), ExitedWithCode(kExitBadInput), kDamaged);
}

TEST(ChildProcessDeathTest, AReaderThatEndsTheProgramFails) {
    EXPECT_EXIT(runReading([] { std::exit(0); }), ExitedWithCode(kExitBadInput), kDamaged);
}

TEST(ChildProcessDeathTest, AKillWhileReadingIsALackOfMemory) {
    EXPECT_EXIT(runReading([] { std::raise(SIGKILL); }), ExitedWithCode(kExitBadInput),
                "^qel: error: reading flow.vtu: there is not enough memory, or it is damaged\n$");
}

TEST(ChildProcessDeathTest, ARequestToEndWhileReadingIsNoFaultOfTheFile) {
    EXPECT_EXIT(runReading([] { crash(SIGTERM); }), KilledBySignal(SIGTERM), "^$");
}

TEST(ChildProcessDeathTest, ACrashAfterReadingEndsThisProcessLikewise) {
    for (const int number : {SIGFPE, SIGABRT}) {
        EXPECT_EXIT(run([&] {
                        whileReading("flow.vtu", [] {});
                        crash(number);
                    }),
                    KilledBySignal(number), "^$");
    }
}

// Sends a signal to the parent once that waits, and goes on for a while.
void signalParent(int number) {
    sleep(1);
    kill(getppid(), number);
    sleep(60);
}

TEST(ChildProcessDeathTest, RequestsToEndStopTheWorkAtOnce) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(number);
        EXPECT_EXIT(run([&] { signalParent(number); }), ExitedWithCode(kExitInterrupted),
                    kInterrupted);
        EXPECT_EXIT(runReading([&] { signalParent(number); }), ExitedWithCode(kExitInterrupted),
                    kInterrupted);
    }
}

TEST(ChildProcessDeathTest, WithNohupAClosedTerminalHasNoEffect) {
    std::signal(SIGHUP, SIG_IGN);
    EXPECT_EXIT(run([] {
                    sleep(1);
                    kill(getppid(), SIGHUP);
                    sleep(1);
                }),
                ExitedWithCode(0), "^$");
    std::signal(SIGHUP, SIG_DFL);
}

TEST(ChildProcessDeathTest, WhatMustNotBeInterruptedIsDoneBefore) {
    EXPECT_EXIT(run([] {
                    program::withoutInterrupt([] {
                        sleep(1);
                        kill(getppid(), SIGINT);
                        sleep(1);
                        std::fputs("done\n", stderr);
                    });
                    std::fputs("too far\n", stderr);
                }),
                ExitedWithCode(kExitInterrupted), "^done\nqel: error: interrupted\n$");
}

TEST(ChildProcessDeathTest, UnfinishedOutputIsRemovedHoweverTheChildEnds) {
    const fs::path folder = fs::temp_directory_path() / "qel-test-unfinished";
    for (const int number : {SIGTERM, SIGSEGV, SIGKILL}) {
        fs::create_directories(folder / "pieces");
        EXPECT_EXIT(run([&] {
                        program::removeAtKill(folder.string());
                        crash(number);
                    }),
                    KilledBySignal(number), "^$");
        EXPECT_FALSE(fs::exists(folder)) << number;
    }
}

TEST(ChildProcess, RunningOutOfMemoryWhileReadingIsAnErrorOfTheUser) {
    const std::string text = "reading flow.vtu: there is not enough memory, or it is damaged";
    EXPECT_EQ(refusalOf([] { throw std::bad_alloc(); }), text);
    EXPECT_EQ(refusalOf([] { throw std::length_error("vector::reserve"); }), text);
    EXPECT_EQ(refusalOf([] { program::refuse("no grid"); }), "no grid");
    EXPECT_EQ(refusalOf([] {}), "none");
    EXPECT_THROW(whileReading("flow.vtu", [] { throw std::logic_error("other"); }),
                 std::logic_error);
}

} // namespace
