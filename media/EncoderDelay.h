// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "media/ffmpeg.h"

namespace media {

class Container;
class FileInput;

/** What an encoder puts before the first frame of music, where FFmpeg does not drop it by itself.
 *
 *  Most files state their encoder's delay (LAME's header, MP4's edit list, Opus' pre-skip), and
 *  FFmpeg drops it. Where the container states it and FFmpeg does not look (Matroska's CodecDelay,
 *  CAF's packet table), that figure is taken. Where the container has no place for it (bare AAC,
 *  transport streams, FLV, MP4 in fragments …), a table has the delay of the codec's usual
 *  encoders: most of it is what the codec's own filters need, whoever wrote the encoder. */
class EncoderDelay {
public:
    EncoderDelay(const Container& container, const FileInput& input);

    /** For WMA written by FFmpeg itself the decoder drops one block too many: it is told to keep
     *  its hands off. Call before the codec is opened. */
    void prepare(AVCodecContext& context) const;

    /** Looks what the stream holds, and how much it tells FFmpeg to drop; where that is known to be
     *  wrong, it is put right.
     *  @param first  the stream's first packet */
    void look(AVPacket& first);

    /** @param blockFrames  length of the first decoded block
     *  @param rate         of that block
     *  @return frames to be dropped from the decoded start */
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
    bool beginsWithHeader_ = false;  ///< an MP3's own, which is decoded as a block of silence
    std::int64_t told_ = 0;          ///< frames that FFmpeg drops by the file's word
    std::int64_t firstTime_ = AV_NOPTS_VALUE;  ///< of the first packet, in ticks of the stream
    bool isFirstLeftOut_ = false;              ///< by the file's word, whole
};

}  // namespace media
