// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** "0.1.0" */
std::string toolVersion();

/** What --version prints: the tool, then the libraries it decodes, converts and draws with. */
std::string versionText();

}  // namespace app
