// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>

namespace beatatlas::fuzz {

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
