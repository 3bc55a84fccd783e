// The guard that turns a crash of a reader into one line.
#include "CrashGuard.h"

#include <array>
#include <cstdlib>

#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>

namespace {

using program::CrashGuard;
using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

constexpr int kCode = 7;
constexpr std::array<int, 5> kCrashes{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

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

void ownHandler(int) {}

// The handlers of all crashes and the stack that they run on.
struct InForce {
    std::array<void (*)(int), kCrashes.size()> handlers{};
    stack_t stack{};
};

InForce inForce() {
    InForce now;
    for (std::size_t i = 0; i < kCrashes.size(); ++i) {
        struct sigaction action {};
        sigaction(kCrashes[i], nullptr, &action);
        now.handlers[i] = action.sa_handler;
    }
    sigaltstack(nullptr, &now.stack);
    return now;
}

TEST(CrashGuardDeathTest, ACrashEndsTheProgramWithTheTextAndTheCode) {
    for (const int number : kCrashes) {
        SCOPED_TRACE(number);
        EXPECT_EXIT(
            {
                const CrashGuard guard("last words\n", kCode);
                std::raise(number);
            },
            ExitedWithCode(kCode), "^last words\n$");
    }
}

TEST(CrashGuardDeathTest, AnOverflowOfTheStackIsACrash) {
    EXPECT_EXIT(
        {
            const CrashGuard guard("too deep\n", kCode);
            overflowASmallStack();
        },
        ExitedWithCode(kCode), "^too deep\n$");
}

TEST(CrashGuardDeathTest, TheInnermostGuardSpeaks) {
    const CrashGuard outer("outer\n", 1);
    EXPECT_EXIT(
        {
            const CrashGuard inner("inner\n", kCode);
            std::raise(SIGSEGV);
        },
        ExitedWithCode(kCode), "^inner\n$");
    { const CrashGuard inner("inner\n", kCode); }
    EXPECT_EXIT(std::raise(SIGSEGV), ExitedWithCode(1), "^outer\n$");
}

TEST(CrashGuardDeathTest, ACrashBehindTheGuardIsNotItsOwn) {
    EXPECT_EXIT(
        {
            for (const int number : kCrashes) {
                std::signal(number, SIG_DFL);
            }
            { const CrashGuard guard("last words\n", kCode); }
            std::raise(SIGFPE);
        },
        KilledBySignal(SIGFPE), "^$");
}

TEST(CrashGuard, WhatWasInForceIsSoAgain) {
    void (*const before)(int) = std::signal(SIGFPE, ownHandler);
    const InForce first = inForce();
    {
        const CrashGuard guard("last words\n", kCode);
        const InForce guarded = inForce();
        for (std::size_t i = 0; i < kCrashes.size(); ++i) {
            EXPECT_NE(guarded.handlers[i], first.handlers[i]) << kCrashes[i];
        }
        EXPECT_NE(guarded.stack.ss_sp, first.stack.ss_sp);
    }
    const InForce last = inForce();
    EXPECT_EQ(last.handlers, first.handlers);
    EXPECT_EQ(last.stack.ss_sp, first.stack.ss_sp);
    EXPECT_EQ(last.stack.ss_flags, first.stack.ss_flags);
    std::signal(SIGFPE, before);
}

} // namespace
