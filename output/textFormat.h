// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace output {

/** A length or place in a track: "3:07.25", "1:03:07.25". Cut, not rounded, to hundredths: a beat
 *  is never told as later than it is. Negative values count as 0. */
std::string clockTime(double seconds);

/** As clockTime without the hundredths: "3:07". */
std::string clockTimeInSeconds(double seconds);

/** A count with its thousands set apart: "8,487,045". */
std::string grouped(std::int64_t number);

/** BPM with their hundredths: "128.50". */
std::string bpmText(double bpm);

/** "1 beat", "2 beats". */
std::string counted(std::int64_t number, const std::string& noun);

}  // namespace output
