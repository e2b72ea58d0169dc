// SPDX-License-Identifier: MIT
// The tool's decoder on damaged files of every format. Only this project's code is instrumented:
// FFmpeg is the system's.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <new>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "FuzzInput.h"
#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "media/ffmpeg.h"
#include "require.h"

namespace {

using namespace beatatlas::fuzz;

/** A damaged header may announce days of sound; decoding stops after this many frames. */
constexpr std::size_t kMostFrames = 2000000;

/** A file in memory with a path, so that it can be opened like any other. */
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t count)
        : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
        if (descriptor_ == -1 || write(descriptor_, bytes, count) != static_cast<ssize_t>(count))
            std::abort();
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    media::showFfmpegMessages(false);
    const MemoryFile file(bytes, count);
    const CheckingSink first = decode(file.path());
    const CheckingSink second = decode(file.path());
    require(first.frames == second.frames && first.sum == second.sum,
            "every pass over a file gives the same samples");
    return 0;
}
