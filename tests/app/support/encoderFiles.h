// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "support/AudioFileWriter.h"

namespace test {

/** A container as a muxer of FFmpeg's writes it with some options. */
struct ContainerKind {
    const char* name;  // for people
    const char* muxer;
    const char* options = "";
};

/** Every container that the tool reads and FFmpeg writes, those of MP4 also as streaming services
 *  and players that know no edit lists want them. */
const std::vector<ContainerKind>& everyContainer();

/** Every encoder of music or speech that this FFmpeg has, by name. */
std::vector<std::string> everyEncoder();

/** Rates at which an encoder is worth a look: those of music, and those of telephones. */
std::vector<int> ratesOf(const std::string& encoder);

/** Writes the click pattern, in stereo where the encoder can.
 *  @return false where the encoder does not take the rate, or the container not the codec */
bool writeClickPattern(const std::string& path, const ContainerKind& container,
                       const std::string& encoder, int rate);

}  // namespace test
