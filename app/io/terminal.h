// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace app {

/** Columns of the terminal that standard error leads to; 80 where it does not say. */
std::size_t terminalColumns();

/** Puts a text in place of the line that was written over last; an empty one wipes it. */
void writeOver(std::string_view text);

}  // namespace app
