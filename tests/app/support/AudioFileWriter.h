// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "support/Sounds.h"

namespace test {

/** How a test file is to be encoded, by FFmpeg's names. */
struct FileKind {
    const char* muxer;
    const char* encoder;
    /** As "key=value:key=value". */
    const char* muxerOptions = "";
    /** A picture beside the music, as music shops put it there. */
    bool hasCover = false;
    /** As "key=value:key=value". */
    const char* tags = "";
    int bitRate = 192000;
    const char* encoderOptions = "";
};

/** Writes a sound as an audio file. @throws std::runtime_error, which says what FFmpeg could not
 *  do */
void writeAudioFile(const std::string& path, const FileKind& kind, const Sound& sound);

}  // namespace test
