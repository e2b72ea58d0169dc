// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "media/EncoderDelay.h"
#include "media/ffmpeg.h"

namespace media {

/** Decodes the packets of one stream. FFmpeg drops the encoder's delay and padding as far as the
 *  container states them. Runs in one thread: the same file yields the same samples in every
 *  pass. */
class StreamDecoder {
public:
    /** @throws TrackError when there is no decoder for the stream (an exotic or encrypted one) */
    StreamDecoder(const AVStream& stream, const EncoderDelay& delay);

    /** Takes a packet; null means that no more follow. @return false when the packet cannot be
     *  decoded */
    bool send(const AVPacket* packet);

    enum class Outcome { frame, needsPacket, damaged };

    /** The next decoded frame, if there is one. */
    Outcome receive(AVFrame& frame);

    /** FFmpeg's short name of the codec: "mp3", "aac", "vorbis" … */
    std::string codec() const;

    /** Whether decoding restores exactly the samples that were encoded, in value and number. */
    bool isLossless() const;

private:
    struct ContextFree {
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    };

    std::unique_ptr<AVCodecContext, ContextFree> context_;
};

}  // namespace media
