// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "media/Muxer.h"
#include "media/StereoBlock.h"
#include "media/audioKinds.h"

struct SwrContext;

namespace media {

/** Encodes stereo audio into a file that appears whole or not at all, a stretch at a time: memory
 *  does not grow with the length. What decoders give back begins and ends where the audio did. */
class AudioWriter {
public:
    /** @param rate  Hz, of the audio, one of those of rateFor()
     *  @throws OutputError when the file cannot be written or its kind does not take the rate */
    AudioWriter(const std::string& path, const AudioKind& kind, int rate);
    ~AudioWriter();
    AudioWriter(const AudioWriter&) = delete;
    AudioWriter& operator=(const AudioWriter&) = delete;

    /** The rate at which a kind of file takes audio of some rate: that rate itself where it can,
     *  else the highest it has. */
    static int rateFor(const AudioKind& kind, int rate);

    /** @param block  full scale ±1.0; what is louder is clipped in files of integers
     *  @throws OutputError, Interrupted */
    void write(const StereoBlock& block);

    /** Encodes what is left and puts the file in its place. @return as OutputFile::commit() */
    std::string commit();

private:
    struct EncoderFree {
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    };
    struct ConverterFree {
        void operator()(SwrContext* context) const;
    };

    void openEncoder(const AudioKind& kind, int rate);
    void openConverter();
    void beginFile(const AudioKind& kind);
    void encodeGathered();
    void encode(const AVFrame* frame);

    Muxer muxer_;
    std::unique_ptr<AVCodecContext, EncoderFree> encoder_;
    std::unique_ptr<SwrContext, ConverterFree> converter_;
    StereoBlock gathered_;       ///< what the encoder takes next
    std::size_t filled_ = 0;     ///< frames of it
    std::int64_t position_ = 0;  ///< of its first frame
};

}  // namespace media
