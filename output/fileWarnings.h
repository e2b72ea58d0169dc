// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/TrackSource.h"

namespace output {

/** The warnings about a track's file, each a sentence without its subject: "is cut off; only its
 *  beginning was taken". Of many gaps only the first few are listed. */
std::vector<std::string> fileWarnings(const base::TrackSource& file);

}  // namespace output
