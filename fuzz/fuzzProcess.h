// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>
#include <cstdio>

namespace beatatlas::fuzz {

/** The library's progress lines lead nowhere; standard error stays the fuzzer's. */
inline void silenceStandardOutput() {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::perror("/dev/null");
}

/** Gives the fuzzer its rounding mode back after each input: it computes with floats itself. */
class FuzzersRoundingMode {
public:
    FuzzersRoundingMode() = default;
    ~FuzzersRoundingMode() { std::fesetround(mode_); }
    FuzzersRoundingMode(const FuzzersRoundingMode&) = delete;
    FuzzersRoundingMode& operator=(const FuzzersRoundingMode&) = delete;

private:
    int mode_ = std::fegetround();
};

}  // namespace beatatlas::fuzz
