// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace output {

/** A length or a time in a track: "3:07.25", "1:03:07.25". Rounded to hundredths: 59.996 s are
 *  "1:00.00". Negative values count as 0. */
std::string clockTime(double seconds);

/** As clockTime, rounded to seconds: "3:07". */
std::string clockTimeInSeconds(double seconds);

/** A count with thousands separators: "8,487,045". */
std::string grouped(std::int64_t number);

/** BPM to hundredths: "128.50". */
std::string bpmText(double bpm);

/** "1 beat", "2 beats". */
std::string counted(std::int64_t number, const std::string& noun);

/** Any bytes as UTF-8: as they are if they are UTF-8, else as base::displayName() shows them. */
std::string utf8Text(const std::string& text);

/** A path as a part of an address: "a%20b/c". @param path  any bytes */
std::string addressPath(const std::string& path);

/** The address of a file, for lines that cannot hold its name: "file:///a%20b". @param path
 *  absolute, any bytes */
std::string fileAddress(const std::string& path);

}  // namespace output
