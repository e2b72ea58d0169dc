// SPDX-License-Identifier: MIT
#include "support/NearestScope.h"

#include <cfenv>

namespace beatatlas::test {

NearestScope::NearestScope() : callersMode_(std::fegetround()) {
    std::fesetround(FE_TONEAREST);
}

NearestScope::~NearestScope() {
    // A negative answer means that the mode could not be read; then there is nothing to restore.
    if (callersMode_ >= 0) std::fesetround(callersMode_);
}

}  // namespace beatatlas::test
