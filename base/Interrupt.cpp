// SPDX-License-Identifier: MIT
#include "base/Interrupt.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace base {

namespace {

// Written by the thread that receives the signal, read by all.
std::atomic<int> requestedSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler cannot wait");

void remember(int signalNumber) {
    requestedSignal = signalNumber;
}

void catchUnlessIgnored(int signalNumber) {
    struct sigaction before = {};
    sigaction(signalNumber, nullptr, &before);
    if (before.sa_handler == SIG_IGN) return;
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signalNumber, &action, nullptr);
}

}  // namespace

void Interrupt::install() {
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) catchUnlessIgnored(signalNumber);
    for (const int signalNumber : {SIGPIPE, SIGXFSZ}) std::signal(signalNumber, SIG_IGN);
    // A program that ignores how its children end leaves this to those that it starts.
    std::signal(SIGCHLD, SIG_DFL);
}

bool Interrupt::isRequested() {
    return requestedSignal != 0;
}

void Interrupt::check() {
    if (isRequested()) throw Interrupted(requestedSignal);
}

}  // namespace base
