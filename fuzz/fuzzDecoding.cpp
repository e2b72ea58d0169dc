// SPDX-License-Identifier: MIT
#include "fuzzDecoding.h"

#include <bit>
#include <cstdlib>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "media/ffmpeg.h"
#include "require.h"

namespace beatatlas::fuzz {

namespace {

/** A damaged header may announce days of sound; decoding stops after this many frames. */
constexpr std::size_t kMostFrames = 2000000;

/** Checks what the analysis relies on, and computes a sum of the samples to compare two passes. */
class CheckingSink : public media::TrackSink {
public:
    void put(const media::StereoBlock& block) override {
        require(block.left.size() == block.right.size(), "two channels of one length");
        frames += block.frames();
        for (const auto* channel : {&block.left, &block.right}) {
            for (const float sample : *channel) {
                sum = sum * 31U + std::bit_cast<std::uint32_t>(sample);
            }
        }
        if (frames > kMostFrames) throw base::TrackError("is longer than a fuzzer waits");
    }

    std::size_t frames = 0;
    std::uint32_t sum = 0;
};

/** Does everything that the tool does with a file before the analysis. */
CheckingSink decode(const std::string& path) {
    CheckingSink sink;
    try {
        media::TrackDecoder decoder(path);
        decoder.run(sink);
        const base::TrackFormat& format = decoder.format();
        if (sink.frames > 0)
            require(format.sessionRate == 44100 || format.sessionRate == 48000, "a session's rate");
        decoder.isCutOff();
        decoder.declaredSeconds();
    } catch (const base::TrackError& error) {
        require(std::string(error.what()) != "", "a reason");
    } catch (const std::bad_alloc&) {
        // A damaged length may need more memory than there is; the tool reports that.
    }
    return sink;
}

}  // namespace

MemoryFile::MemoryFile(const std::uint8_t* bytes, std::size_t count)
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    if (descriptor_ == -1 || write(descriptor_, bytes, count) != static_cast<ssize_t>(count))
        std::abort();
    lseek(descriptor_, 0, SEEK_SET);
}

MemoryFile::~MemoryFile() {
    close(descriptor_);
}

std::size_t decodeTwice(const std::string& path) {
    media::showFfmpegMessages(false);
    const CheckingSink first = decode(path);
    const CheckingSink second = decode(path);
    require(first.frames == second.frames && first.sum == second.sum,
            "every pass over a file gives the same samples");
    return first.frames;
}

}  // namespace beatatlas::fuzz
