// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include "output/TrackReport.h"
#include "output/picture/PictureOptions.h"

namespace output {

/** Receives the bytes of a picture in parts. May throw. */
using ByteSink = std::function<void(const void* bytes, std::size_t count)>;

/** Draws the picture of a track. @throws OutputError when it cannot be drawn, and what the sink
 *  throws */
void writePicture(const TrackReport& report, const PictureOptions& options, PictureFormat format,
                  const ByteSink& write);

}  // namespace output
