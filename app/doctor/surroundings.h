// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "doctor/Check.h"
#include "doctor/libraries.h"
#include "media/ffmpeg.h"

namespace app {

/** A format of files, and what FFmpeg needs to read it. */
struct AudioFormat {
    const char* name;
    /** FFmpeg's name of the container. */
    const char* container;
    AVCodecID codec;
};

/** Those that tracks usually have. */
std::vector<AudioFormat> usualFormats();

/** @name Whether what the program leans on is there
 *  @{ */
Check checkLibraries(const std::vector<Library>& libraries);
Check checkDecoders(const std::vector<AudioFormat>& formats);
/** Pictures need a font for words; without one they have plain Latin letters. */
Check checkFonts();
/** Writes to it and reads back. */
Check checkTemporaryFolder(const std::string& folder);
/** The user's own file of settings, by every command that takes them. @param path  empty: none */
Check checkSettings(const std::string& path);
/** @} */

}  // namespace app
