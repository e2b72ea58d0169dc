// SPDX-License-Identifier: MIT
#include "dsp/processorYield.h"

#include <ctime>

namespace beatatlas {

namespace {

thread_local int unbrokenScopes = 0;

}  // namespace

void yieldProcessor() {
    if (unbrokenScopes > 0) return;
    const timespec nothing{};
    nanosleep(&nothing, nullptr);
}

UnbrokenWork::UnbrokenWork() {
    ++unbrokenScopes;
}

UnbrokenWork::~UnbrokenWork() {
    --unbrokenScopes;
}

}  // namespace beatatlas
