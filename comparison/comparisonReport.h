// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "comparison/Comparison.h"

namespace comparison {

/** One side of a comparison, under the name by which people know it. */
struct Side {
    std::string path;
    BeatSheet sheet;
};

/** A few lines for a person. Ends with a line feed. */
std::string comparisonText(const Side& a, const Side& b);

/** The same as a JSON document, in one line. @param toolVersion  of this program */
std::string comparisonJson(const Side& a, const Side& b, const std::string& toolVersion);

}  // namespace comparison
