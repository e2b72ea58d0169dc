// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/TrackSource.h"

namespace output {

/** What there is to warn of in the file that a track came from, a sentence without its subject
 *  each: "is cut off; only its beginning was taken". Of many gaps the first few are named. */
std::vector<std::string> fileWarnings(const base::TrackSource& file);

}  // namespace output
