// SPDX-License-Identifier: MIT
#include "doctor/buildFacts.h"

#include <fmt/format.h>

namespace app {

std::string compilerText() {
#if defined(__clang__)
    return fmt::format("Clang {}.{}.{}", __clang_major__, __clang_minor__, __clang_patchlevel__);
#else
    return fmt::format("GCC {}.{}.{}", __GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__);
#endif
}

std::string flagsText() {
    return BEATATLAS_BUILD_FLAGS;
}

}  // namespace app
