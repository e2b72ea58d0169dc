// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace catalogue {

/** Whether something is at the path. True also where the system does not say, so that a disk that
 *  cannot be read for a while loses no track. */
bool fileExists(const std::string& path);

}  // namespace catalogue
