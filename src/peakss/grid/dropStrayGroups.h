// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Beat interval in ms of each detection group that has a tempo, by group number. */
using GroupTempos = std::map<std::int32_t, float>;

/** The tempo of each group: that of its first beat.
 *
 *  Groups are numbered as they are heard, while beats stand in order of position: a group that
 *  turns up behind a higher-numbered one was heard in another band earlier. It has a tempo only
 *  when one of its beats agrees with the next group that has one. Groups without a tempo are left
 *  out. */
GroupTempos measureGroupTempos(const BeatList& raw);

/** Removes the beats of the groups that do not carry on a tempo, and of those that have none. */
void dropStrayGroups(BeatList& raw, const GroupTempos& tempos);

}  // namespace peakss
