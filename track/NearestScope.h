// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>

namespace beatatlas::track::inner {

/** Rounds to nearest while it lives, then gives the thread its own mode back. Where numbers of a
 *  session are put into units for people, so that 128.01 BPM is the double that reads so. */
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
