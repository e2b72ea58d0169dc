// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace app {

/** Bytes, as people write them: a number from 1 byte on, whole or with a decimal point, followed by
 *  nothing or by one of K M G T, alone or with iB for powers of 1,024 and with B for powers of
 *  1,000; case does not matter. */
std::optional<std::int64_t> parseMemorySize(const std::string& text);

/** Why the text is not such a size; empty when it is one. */
std::string requireMemorySize(const std::string& text);

}  // namespace app
