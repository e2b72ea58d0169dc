// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "beatatlas/track.h"

namespace beatatlas::track::inner {

BA_TrackOptions defaultOptions();

/** Writes the options of this version into the `size` bytes of a host's options; fields that this
 *  version does not know become 0. */
void writeOptions(const BA_TrackOptions& options, void* hosts, std::size_t size);

/** Reads the options of a host of any version.
 *  @param hosts  null: all defaults
 *  @return false if one is out of range or sets a field that this version does not know */
bool readOptions(const BA_TrackOptions* hosts, BA_TrackOptions& options);

/** The same for a source. */
bool readSource(const BA_TrackSource* hosts, BA_TrackSource& source);

/** Whether rate (Hz) and length are within the limits of the interface. */
bool isTrack(std::int32_t rate, std::int64_t frames);

}  // namespace beatatlas::track::inner
