// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace output {

/** A field of CSV as RFC 4180 has it: with commas, quotes or line breaks in it, it stands in
 *  quotes, and quotes within are doubled. */
std::string csvField(const std::string& text);

/** A line of CSV as RFC 4180 has it, but for its end, which is a line feed alone. */
std::string csvLine(const std::vector<std::string>& fields);

/** With as few digits as it takes, at most so many behind the point: "0.4158", "8". What lies
 *  beyond them is noise of the arithmetic. */
std::string shortNumber(double number, int places);

/** Seconds to the microsecond, less than the distance of two samples. */
std::string csvSeconds(double seconds);

}  // namespace output
