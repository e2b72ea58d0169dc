// SPDX-License-Identifier: MIT
#include "serve/soundReply.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include <sys/stat.h>

#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "media/TrackSink.h"
#include "scan/fileState.h"
#include "serve/fileReply.h"

namespace app {

namespace {

constexpr std::int64_t kFrameBytes = 4;
constexpr std::int64_t kHeaderBytes = 44;
constexpr float kFullScale = 32767.0F;

/** The client takes no more, or has got all. */
struct Enough {};

void append(std::string& bytes, std::int64_t value, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
}

std::string waveHeader(std::int64_t dataBytes, int rate) {
    std::string header = "RIFF";
    append(header, dataBytes + kHeaderBytes - 8, 4);
    header += "WAVEfmt ";
    append(header, 16, 4);
    append(header, 1, 2);  // integers
    append(header, 2, 2);  // channels
    append(header, rate, 4);
    append(header, rate * kFrameBytes, 4);
    append(header, kFrameBytes, 2);
    append(header, 16, 2);  // bits
    header += "data";
    append(header, dataBytes, 4);
    return header;
}

/** NaN is silence, as it is for the analysis. */
void appendSample(std::string& bytes, float sample) {
    const float bounded = std::isnan(sample) ? 0.0F : std::clamp(sample, -1.0F, 1.0F);
    append(bytes, std::lround(bounded * kFullScale), 2);
}

/** Sends as many frames as were promised: a file that has changed may have others. */
class PromisedFrames : public media::TrackSink {
public:
    PromisedFrames(std::int64_t frames, const ByteSink& sink) : left_(frames), sink_(sink) {}

    void put(const media::StereoBlock& block) override {
        const auto frames = std::min(left_, static_cast<std::int64_t>(block.frames()));
        std::string bytes;
        for (std::int64_t i = 0; i < frames; ++i) {
            appendSample(bytes, block.left[static_cast<std::size_t>(i)]);
            appendSample(bytes, block.right[static_cast<std::size_t>(i)]);
        }
        left_ -= frames;
        if (!sink_(bytes) || left_ == 0) throw Enough();
    }

    std::int64_t left() const { return left_; }

private:
    std::int64_t left_;
    const ByteSink& sink_;
};

bool sendSound(media::TrackDecoder& decoder, std::int64_t frames, const ByteSink& sink) {
    PromisedFrames promised(frames, sink);
    try {
        decoder.run(promised);
    } catch (const Enough&) {
    }
    return promised.left() == 0;
}

catalogue::FileState stateOf(const media::TrackDecoder& decoder) {
    const media::FileState& state = decoder.fileState();
    struct stat status {};
    status.st_size = state.size;
    status.st_mtim.tv_sec = state.changedSeconds;
    status.st_mtim.tv_nsec = state.changedNanoseconds;
    return fileStateOf(status);
}

}  // namespace

HttpReply soundReply(const catalogue::TrackRow& track) {
    const std::int64_t dataBytes = track.frames * kFrameBytes;
    if (dataBytes > std::numeric_limits<std::int32_t>::max())
        throw base::TrackError("is too long to be sent whole");
    // What cannot be decoded is found out before the answer begins, and what is sent is the file
    // that was found unchanged.
    const auto decoder = std::make_shared<media::TrackDecoder>(track.path);
    requireUnchanged(stateOf(*decoder), track.state);
    HttpReply reply;
    reply.type = "audio/wav";
    reply.length = static_cast<std::uint64_t>(dataBytes + kHeaderBytes);
    reply.write = [decoder, frames = track.frames,
                   header = waveHeader(dataBytes, track.format.sessionRate)](const ByteSink& sink) {
        return sink(header) && (frames == 0 || sendSound(*decoder, frames, sink));
    };
    return reply;
}

}  // namespace app
