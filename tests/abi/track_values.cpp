// SPDX-License-Identifier: MIT
// The header of values in C++17, alone and first, and beside both headers of whole tracks.
#include "beatatlas/track.hpp"

#include "beatatlas/track.h"

#include <type_traits>

static_assert(__cplusplus < 202002L, "C++17 has to do");
static_assert(std::is_copy_constructible_v<beatatlas::track::TrackResult>);
static_assert(std::is_base_of_v<std::runtime_error, beatatlas::track::Error>);
