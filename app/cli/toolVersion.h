// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** "0.1.0" */
std::string toolVersion();

/** What --version prints: the tool alone on the first line; its compiler and the vectors with which
 *  it computes on this machine; the libraries it runs with, each on a line. */
std::string versionText();

}  // namespace app
