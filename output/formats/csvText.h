// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace output {

/** A line of CSV as RFC 4180 has it, but for its end, which is a line feed alone: fields with
 *  commas, quotes or line breaks in them stand in quotes, quotes within are doubled. */
std::string csvLine(const std::vector<std::string>& fields);

/** Seconds to the microsecond, less than the distance of two samples. */
std::string csvSeconds(double seconds);

}  // namespace output
