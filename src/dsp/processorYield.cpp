// SPDX-License-Identifier: MIT
#include "dsp/processorYield.h"

#include <ctime>

namespace beatatlas {

namespace {

thread_local bool yields = true;

}  // namespace

void yieldProcessor() {
    if (!yields) return;
    const timespec nothing{};
    nanosleep(&nothing, nullptr);
}

NoYields::NoYields() : before_(yields) {
    yields = false;
}

NoYields::~NoYields() {
    yields = before_;
}

}  // namespace beatatlas
