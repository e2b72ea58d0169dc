// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace catalogue {

/** @name What people can correct a track to
 *  @{ */
inline constexpr double kLowestCorrectedBpm = 20.0;
inline constexpr double kHighestCorrectedBpm = 1000.0;
inline constexpr double kLongestShiftMilliseconds = 60000.0;
/** 2^31 - 1 frames at 44,100 Hz. */
inline constexpr double kLastDownbeatSeconds = 48695.0;
/** @} */

enum class EditKind {
    bpm,                ///< value: the tempo, BPM
    twice,              ///< twice as many beats
    half,               ///< half as many
    threeToTwo,         ///< three beats for two
    shiftHalf,          ///< the beats lie between the found ones
    shiftMilliseconds,  ///< value: how much later they are
    downbeat,           ///< value: seconds of a beat that begins a bar
    key,                ///< value: 0 to 23
};

/** One correction by a person. */
struct Edit {
    EditKind kind = EditKind::bpm;
    /** What it means depends on the kind; 0 where it means nothing. */
    double value = 0.0;

    bool operator==(const Edit&) const = default;
};

/** As it stands in the catalogue: "bpm", "double", "halve", "shift-half" … */
const char* editName(EditKind kind);
std::optional<EditKind> editKindOf(std::string_view name);

/** The same edits without those that the next one takes back: double and halve, two shifts by half
 *  a beat, shifts that add up to nothing, a key that another key follows. */
std::vector<Edit> simplified(const std::vector<Edit>& edits);

}  // namespace catalogue
