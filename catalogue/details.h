// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"

namespace catalogue {

/** What of a result has no column and no blob of its own, as JSON: docs/catalogue.md names the
 *  members. */
std::string detailsText(const base::TrackSource& file, const beatatlas::track::TrackResult& result);

/** Back into a file's state and a result, all else of which is left as it is.
 *  @throws DamagedRecord when the text is not one of detailsText() */
void readDetails(const std::string& text, base::TrackSource& file,
                 beatatlas::track::TrackResult& result);

}  // namespace catalogue
