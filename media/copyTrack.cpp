// SPDX-License-Identifier: MIT
#include "media/copyTrack.h"

#include <optional>

#include "base/errors.h"
#include "media/AudioWriter.h"
#include "media/FeedSink.h"
#include "media/RateConverter.h"
#include "media/TrackDecoder.h"

namespace media {

namespace {

/** From the rate of the analysis to that of the file, then changed, then encoded. */
class Rendering {
public:
    Rendering(const std::function<void(StereoBlock&)>& change, AudioWriter& writer)
        : change_(change), writer_(writer) {}

    void convert(int fromRate, int toRate) { converter_.emplace(fromRate, toRate); }

    void put(const StereoBlock& block) {
        if (converter_) return write(converter_->convert(block));
        changed_ = block;
        write(changed_);
    }

    void finish() {
        if (converter_) write(converter_->finish());
    }

private:
    void write(StereoBlock& block) {
        change_(block);
        writer_.write(block);
    }

    const std::function<void(StereoBlock&)>& change_;
    AudioWriter& writer_;
    std::optional<RateConverter> converter_;
    StereoBlock changed_;
};

}  // namespace

std::string copyTrack(const CopiedTrack& track, const std::string& outputPath,
                      const AudioKind& kind, const std::function<void(StereoBlock&)>& change,
                      const std::function<void(double)>& shown) {
    const int rate = AudioWriter::rateFor(kind, track.rate);
    AudioWriter writer(outputPath, kind, rate);
    Rendering rendering(change, writer);
    if (rate != track.rate) rendering.convert(track.rate, rate);
    FeedSink sink([&](const StereoBlock& block) { rendering.put(block); },
                  [&](std::int64_t frames) {
                      shown(static_cast<double>(frames) / static_cast<double>(track.frames));
                  });
    TrackDecoder decoder(track.path);
    decoder.run(sink);
    if (sink.frames() != track.frames || decoder.hasFileChanged())
        throw base::TrackError("has changed while it was being read");
    rendering.finish();
    return writer.commit();
}

}  // namespace media
