// SPDX-License-Identifier: MIT
#include "base/errors.h"

#include <system_error>

namespace base {

std::string systemReason(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

}  // namespace base
