// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace base {

/** Allows this process as many open files as the system lets it have. @return how many these are */
std::int64_t raiseFileLimit();

}  // namespace base
