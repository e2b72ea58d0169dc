// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "beatatlas/track.hpp"

namespace output {

/** Of a quarter note, which is a beat. Divisible by 32: the shortest lead-in is a 128th note. */
constexpr int kTicksPerQuarter = 960;

struct TempoEvent {
    std::int64_t tick = 0;
    int microseconds = 0;  ///< of a quarter note, 1 to 16,777,215
};

struct MetreEvent {
    std::int64_t tick = 0;
    int beats = 4;        ///< in a bar, 1 to 255
    int denominator = 4;  ///< 4: of quarter notes
};

struct ClickEvent {
    std::int64_t tick = 0;
    bool isDownbeat = false;
};

/** A beat grid in musical time: ticks, and how long they last. */
struct TempoMap {
    std::vector<TempoEvent> tempos;  ///< the first at tick 0, no two at one tick
    std::vector<MetreEvent> metres;  ///< the first at tick 0
    std::vector<ClickEvent> clicks;  ///< one for each beat
    std::int64_t endTick = 0;        ///< where the track ends
};

/** Lays a tempo map under a grid. Each beat is a quarter note; where beats are missing in the grid,
 *  the interval takes the number of quarter notes that fits its tempo. What lies before the first
 *  beat becomes a lead-in of whole quarter notes, or one shorter note, so that downbeats begin
 *  bars.
 *
 *  A tempo holds for as long as no beat is further than a quarter of a millisecond from its place;
 *  the next one starts from where the last one has come to, with its rounding to microseconds, so
 *  that errors do not add up. Beats before 0 are left out.
 *  @param endSeconds  of the track */
TempoMap layTempoMap(const std::vector<beatatlas::track::Beat>& beats, double endSeconds);

}  // namespace output
