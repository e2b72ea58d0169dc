// SPDX-License-Identifier: MIT
#include "dsp/processorYield.h"

#include <ctime>

namespace beatatlas {

void yieldProcessor() {
    const timespec nothing{};
    nanosleep(&nothing, nullptr);
}

}  // namespace beatatlas
