// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "beatatlas/track.h"

namespace beatatlas::track::inner {

BA_TrackOptions defaultOptions();

/** Writes the options of this version over the first `size` bytes of a host's and zeros after
 *  them. */
void writeOptions(const BA_TrackOptions& options, void* hosts, std::size_t size);

/** Reads the options of a host of any version.
 *  @param hosts  null: all defaults
 *  @return false when they are out of range or ask for what this version does not know */
bool readOptions(const BA_TrackOptions* hosts, BA_TrackOptions& options);

/** The same for a source. */
bool readSource(const BA_TrackSource* hosts, BA_TrackSource& source);

bool isTrack(std::int32_t rate, std::int64_t frames);

}  // namespace beatatlas::track::inner
