// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "support/Sounds.h"

namespace test {

/** How a test file is to be encoded, by FFmpeg's names. */
struct FileKind {
    const char* muxer;
    const char* encoder;
    const char* muxerOptions = "";  ///< "key=value:key=value"
    bool hasCover = false;          ///< a picture beside the music, as music shops put it there
    const char* tags = "";          ///< "key=value:key=value"
    int bitRate = 192000;
    const char* encoderOptions = "";
};

/** Writes a sound as an audio file. @throws std::runtime_error, which says what FFmpeg could not
 *  do */
void writeAudioFile(const std::string& path, const FileKind& kind, const Sound& sound);

}  // namespace test
