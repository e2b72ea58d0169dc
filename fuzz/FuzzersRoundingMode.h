// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>

namespace beatatlas::fuzz {

/** Restores the fuzzer's rounding mode after each input, since the fuzzer computes with floats
 *  itself. */
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
