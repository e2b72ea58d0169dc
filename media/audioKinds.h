// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "media/ffmpeg.h"

namespace media {

/** A kind of audio file that can be written. All of them keep where the music begins and ends: the
 *  file states what its encoder put before and behind it, and decoders drop that. */
struct AudioKind {
    const char* ending;  ///< of the file's name, with its dot
    const char* muxer;   ///< these two by FFmpeg's names
    const char* encoder;
    AVSampleFormat samples;    ///< what the encoder is given
    std::int64_t bitRate;      ///< bits a second; 0: lossless
    const char* muxerOptions;  ///< "key=value:key=value"
    const char* rateOption;    ///< the muxer counts time in the unit that this one sets; or null
};

/** Those that the FFmpeg at hand can write, in the order in which people are told of them. */
std::vector<AudioKind> audioKinds();

}  // namespace media
