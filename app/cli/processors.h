// SPDX-License-Identifier: MIT
#pragma once

namespace app {

/** How many processors the caller lets this process use; at least 1. */
int processors();

}  // namespace app
