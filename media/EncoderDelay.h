// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "media/ffmpeg.h"

namespace media {

class Container;
class FileInput;

/** The delay that an encoder puts before the first frame of music, where FFmpeg does not drop it.
 *
 *  Most files state their encoder's delay (LAME's header, MP4's edit list, Opus' pre-skip), and
 *  FFmpeg drops it. Where the container states it but FFmpeg does not read it (Matroska's
 *  CodecDelay, CAF's packet table), that figure is taken. Where the container has no place for it
 *  (bare AAC, transport streams, FLV, MP4 in fragments …), a table gives the delay of the codec's
 *  usual encoders: most of it is due to the codec's filters and the same for every encoder. */
class EncoderDelay {
public:
    EncoderDelay(const Container& container, const FileInput& input);

    /** For WMA written by FFmpeg itself the decoder drops one block too many: this switches its
     *  dropping off. Call before the codec is opened. */
    void prepare(AVCodecContext& context) const;

    /** Finds out what the stream contains and how much it makes FFmpeg drop; corrects the latter
     *  where it is known to be wrong.
     *  @param first  the stream's first packet */
    void look(AVPacket& first);

    /** @param blockFrames  length of the first decoded block, in frames
     *  @param rate         of that block
     *  @return frames to be dropped from the start of what was decoded */
    std::int64_t framesToDrop(int blockFrames, int rate) const;

    /** What FFmpeg has dropped before the first decoded frame by then, in frames of its rate: told
     *  by the stream's times, which FFmpeg moves on with what it drops.
     *  @param first  as FFmpeg handed it out, with its time in ticks of the stream */
    std::int64_t framesDroppedByFfmpeg(const AVFrame& first) const;

private:
    bool isTagOfCopy() const;
    std::int64_t usualFrames(int rate) const;

    const Container& container_;
    const FileInput& input_;
    AVCodecID codec_;
    bool beginsWithHeader_ = false;  // an MP3's own, which is decoded as a block of silence
    std::int64_t stated_ = 0;        // frames that FFmpeg drops because the file states them
    // Of the first packet, in ticks of the stream.
    std::int64_t firstTime_ = AV_NOPTS_VALUE;
    bool isFirstLeftOut_ = false;  // because the file states it, whole
};

}  // namespace media
