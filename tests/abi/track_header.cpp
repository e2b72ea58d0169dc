// SPDX-License-Identifier: MIT
// The header of whole tracks as C++ sees it, alone and first; types to the letter.
#include "beatatlas/track.h"

#include <cstdint>
#include <type_traits>

static_assert(std::is_same_v<decltype(&BA_TrackAnalyze),
                             int (*)(const BA_TrackOptions*, std::int32_t, std::int64_t,
                                     const BA_TrackSource*, BA_Track**)>);
static_assert(std::is_same_v<decltype(&BA_TrackBeats),
                             std::size_t (*)(const BA_Track*, BA_TrackBeat*, std::size_t)>);
static_assert(std::is_same_v<decltype(&BA_TrackSessionKey), std::int32_t (*)(const BA_Track*)>);
static_assert(std::is_same_v<decltype(&BA_TrackStatusText), const char* (*)(int)>);
static_assert(std::is_trivially_copyable_v<BA_TrackOptions> &&
              std::is_trivially_copyable_v<BA_TrackSource>);
