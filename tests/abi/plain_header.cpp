// SPDX-License-Identifier: MIT
// The plain header as C++ sees it, alone and first; types to the letter.
#include "beatatlas/beatatlas.h"

#include <type_traits>

static_assert(std::is_same_v<decltype(&BA_Analyzed), bool (*)(void*)>);
static_assert(std::is_same_v<decltype(&BA_SetSample), void (*)(void*, float*, float*, int)>);
static_assert(std::is_same_v<decltype(&BA_Resample),
                             void (*)(void*, float*, long, float*, long, float, int, long)>);
static_assert(
    std::is_same_v<decltype(&BA_PitchDetect), float (*)(void*, float*, int, float, int, int)>);
static_assert(
    std::is_same_v<decltype(&BA_GetKey), int (*)(void*, float*, long, float, float, int, int)>);
