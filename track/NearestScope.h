// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>

namespace beatatlas::track::inner {

/** Rounds to nearest while it lives, then restores the thread's rounding mode. Used where numbers
 *  of a session are converted to units for people, so that 128.01 BPM is the double nearest to
 *  128.01, and in the arithmetic that is not the core's. */
class NearestScope {
public:
    NearestScope() { std::fesetround(FE_TONEAREST); }
    ~NearestScope() {
        if (callersMode_ >= 0) std::fesetround(callersMode_);
    }
    NearestScope(const NearestScope&) = delete;
    NearestScope& operator=(const NearestScope&) = delete;

private:
    int callersMode_ = std::fegetround();
};

}  // namespace beatatlas::track::inner
