// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>

namespace beatatlas::test {

/** Writes what the stand-alone utilities give on a synthesised buffer, in both rounding modes that hosts have. */
void recordUtilities(std::FILE* out);

}  // namespace beatatlas::test
