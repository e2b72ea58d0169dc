// SPDX-License-Identifier: MIT
// The C++ header alone and first; types to the letter.
#include "beatatlas/beatatlas.hpp"

#include <type_traits>

static_assert(std::is_same_v<decltype(&BA_CreateSimple48k), void* (*)(int, int, bool, bool, bool)>);
static_assert(std::is_same_v<decltype(&BA_GetKeyPoint), int (*)(void*, double*)>);
static_assert(std::is_same_v<decltype(&BA_GetNoteEncount), int (*)(void*, int*)>);
static_assert(
    std::is_same_v<decltype(&BA_CutBeats), void (*)(void*, float*, float*, int, float, int, int)>);
