// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace app {

/** Whether a file's name has this extension; case does not matter. @param ending  lower case, with
 *  its dot */
bool hasEnding(std::string_view path, std::string_view ending);

}  // namespace app
