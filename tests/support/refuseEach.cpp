// SPDX-License-Identifier: MIT
#include "support/refuseEach.h"

#include <cstdio>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace beatatlas::test {

namespace {

constexpr long kMostRequests = 100000;

enum Verdict : int { kRefused = 0, kNeedsNoMore = 1, kBroken = 2 };

struct Attempt {
    bool threw = false;
    bool wasRefused = false;
};

Attempt attempt(const RequestsFailAfter& shortage, const std::function<void()>& work) {
    Attempt result;
    try {
        work();
    } catch (const std::bad_alloc&) {
        result.threw = true;
    }
    result.wasRefused = shortage.refusals() > 0;
    return result;
}

/** Runs the function in a process of its own and returns its exit status. */
int inProcess(const std::function<int()>& function) {
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process == -1) throw std::runtime_error("no process");
    if (process == 0) {
        const int verdict = function();
        std::fflush(nullptr);
        _exit(verdict);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : kBroken;
}

}  // namespace

long refuseEach(Requests requests, Shortage shortage, const std::function<void()>& work,
                const std::function<void(bool threw, long granted)>& aftermath) {
    for (long granted = 0; granted < kMostRequests; ++granted) {
        const int verdict = inProcess([&]() -> int {
            Attempt result;
            {
                const RequestsFailAfter limit(granted, shortage, requests);
                result = attempt(limit, work);
            }
            if (!result.wasRefused) return kNeedsNoMore;
            aftermath(result.threw, granted);
            return ::testing::Test::HasFailure() ? kBroken : kRefused;
        });
        if (verdict == kNeedsNoMore) return granted;
        if (verdict == kRefused) continue;
        ADD_FAILURE() << "after " << granted << " granted requests";
        return granted;
    }
    ADD_FAILURE() << "there is no end to the requests";
    return kMostRequests;
}

}  // namespace beatatlas::test
