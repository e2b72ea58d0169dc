// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Beat interval in ms of each detection group that has a tempo, by group number. */
using GroupTempos = std::map<std::int32_t, float>;

inline std::int32_t groupNumber(const BeatInfo& beat) {
    return beat.group >> 8;
}

inline std::int32_t groupWeight(const BeatInfo& beat) {
    return beat.group & 0xFF;
}

/** The tempo of each group, told by its first beat.
 *
 *  Groups are numbered as they are heard, while beats stand in order of position: a group that turns up behind a
 *  higher-numbered one was heard in another band earlier. It has a tempo only when one of its beats agrees with
 *  the next group that has one. Groups without a tempo are left out. */
GroupTempos groupTempoTable(const BeatList& raw);

}  // namespace peakss
