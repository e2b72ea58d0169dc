// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVCodecContext;
struct AVPacket;

namespace media {

class Container;

/** What an encoder puts before the first frame of music, where FFmpeg does not drop it by itself.
 *
 *  Most files tell their encoder's delay (LAME's header, MP4's edit list, Opus' pre-skip), and
 *  FFmpeg follows. MP3 files without LAME's header and bare AAC streams have no place to tell it:
 *  then the delay of the commonest encoders is taken. A wrong guess is a matter of some 20 ms; no
 *  guess at all is wrong by as much on every such file. */
class EncoderDelay {
public:
    explicit EncoderDelay(const Container& container);

    /** For WMA written by FFmpeg itself the decoder drops one block too many: it is told to keep
     *  its hands off. Call before the codec is opened. */
    void prepare(AVCodecContext& context) const;

    /** Looks whether the stream tells its delay. @param first  the stream's first packet */
    void look(const AVPacket& first);

    /** @param blockFrames  length of the first decoded block
     *  @return frames to be dropped from the decoded start */
    std::int64_t framesToDrop(int blockFrames) const;

private:
    const Container& container_;
    bool isTold_ = false;
};

}  // namespace media
