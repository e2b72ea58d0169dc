// SPDX-License-Identifier: MIT
#include "dsp/RoundingMode.h"

#include <cfenv>

namespace beatatlas {

void setRoundTowardZero() {
    std::fesetround(FE_TOWARDZERO);
}

TowardZeroScope::TowardZeroScope() : callersMode_(std::fegetround()) {
    setRoundTowardZero();
}

TowardZeroScope::~TowardZeroScope() {
    if (callersMode_ >= 0) std::fesetround(callersMode_);
}

}  // namespace beatatlas
