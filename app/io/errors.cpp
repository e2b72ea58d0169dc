// SPDX-License-Identifier: MIT
#include "io/errors.h"

#include <system_error>

namespace app {

std::string systemReason(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

}  // namespace app
