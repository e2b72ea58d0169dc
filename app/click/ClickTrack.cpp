// SPDX-License-Identifier: MIT
#include "click/ClickTrack.h"

#include <cmath>
#include <optional>
#include <utility>

#include "base/errors.h"
#include "media/AudioWriter.h"
#include "media/FeedSink.h"
#include "media/RateConverter.h"
#include "media/TrackDecoder.h"

namespace app {

namespace {

/** From the rate of the analysis to that of the file, then mixed, then encoded. */
class Rendering {
public:
    Rendering(ClickMixer mixer, media::AudioWriter& writer)
        : mixer_(std::move(mixer)), writer_(writer) {}

    void convert(int fromRate, int toRate) { converter_.emplace(fromRate, toRate); }

    void put(const media::StereoBlock& block) {
        if (converter_) return write(converter_->convert(block));
        mixed_ = block;
        write(mixed_);
    }

    void finish() {
        if (converter_) write(converter_->finish());
    }

private:
    void write(media::StereoBlock& block) {
        mixer_.mix(block);
        writer_.write(block);
    }

    ClickMixer mixer_;
    media::AudioWriter& writer_;
    std::optional<media::RateConverter> converter_;
    media::StereoBlock mixed_;
};

}  // namespace

std::vector<Click> ClickTrack::clicksAt(int rate) const {
    std::vector<Click> clicks;
    clicks.reserve(analysis_.beats.size());
    for (const beatatlas::track::Beat& beat : analysis_.beats) {
        const std::int64_t frame = (beat.frame * rate + analysis_.rate / 2) / analysis_.rate;
        clicks.push_back({frame, beat.isDownbeat()});
    }
    return clicks;
}

std::string ClickTrack::write(const std::string& trackPath, const std::string& outputPath,
                              const media::AudioKind& kind,
                              const std::function<void(double)>& shown) {
    const int rate = media::AudioWriter::rateFor(kind, analysis_.rate);
    ClickMixer mixer(clicksAt(rate), rate, peak_, options_.levelDb, options_.place);
    loweredDb_ = -20.0 * std::log10(mixer.musicGain());
    media::AudioWriter writer(outputPath, kind, rate);
    Rendering rendering(std::move(mixer), writer);
    if (rate != analysis_.rate) rendering.convert(analysis_.rate, rate);
    media::FeedSink sink([&](const media::StereoBlock& block) { rendering.put(block); },
                         [&](std::int64_t frames) {
                             shown(static_cast<double>(frames) /
                                   static_cast<double>(analysis_.frames));
                         });
    media::TrackDecoder decoder(trackPath);
    decoder.run(sink);
    if (sink.frames() != analysis_.frames || decoder.hasFileChanged())
        throw base::TrackError("has changed while it was being read");
    rendering.finish();
    return writer.commit();
}

}  // namespace app
