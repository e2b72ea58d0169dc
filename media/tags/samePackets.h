// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace media {

/** Whether two files hold the same encoded music: byte for byte the same packets, with the same
 *  header for the decoder, however long they are and whatever else is in the files.
 *  @throws TrackError when one of them is no audio file, Interrupted */
bool haveSamePackets(const std::string& one, const std::string& other);

}  // namespace media
