// SPDX-License-Identifier: MIT
#include "media/audioKinds.h"

#include <algorithm>
#include <iterator>

namespace media {

namespace {

// An MP4 file tells the end of the music in the time of the film, in milliseconds unless told.
// Vorbis tells in two pages how far the encoder's delay goes: they must not hold a whole track.
// Above 4 GB a WAV file becomes RF64. What is 16 bits here is rounded from floats.
constexpr AudioKind kKinds[] = {
    {".wav", "wav", "pcm_s16le", AV_SAMPLE_FMT_S16, 0, "rf64=auto", nullptr},
    {".flac", "flac", "flac", AV_SAMPLE_FMT_S16, 0, "", nullptr},
    {".wv", "wv", "wavpack", AV_SAMPLE_FMT_S16P, 0, "", nullptr},
    {".mp3", "mp3", "libmp3lame", AV_SAMPLE_FMT_FLTP, 256000, "", nullptr},
    {".m4a", "ipod", "aac", AV_SAMPLE_FMT_FLTP, 256000, "", "movie_timescale"},
    {".ogg", "ogg", "libvorbis", AV_SAMPLE_FMT_FLTP, 192000, "page_duration=100000", nullptr},
    {".oga", "ogg", "libvorbis", AV_SAMPLE_FMT_FLTP, 192000, "page_duration=100000", nullptr},
    {".opus", "opus", "libopus", AV_SAMPLE_FMT_FLT, 160000, "", nullptr},
};

bool isThere(const AudioKind& kind) {
    return avcodec_find_encoder_by_name(kind.encoder) != nullptr &&
           av_guess_format(kind.muxer, nullptr, nullptr) != nullptr;
}

}  // namespace

std::vector<AudioKind> audioKinds() {
    std::vector<AudioKind> kinds;
    std::copy_if(std::begin(kKinds), std::end(kKinds), std::back_inserter(kinds), isThere);
    return kinds;
}

}  // namespace media
