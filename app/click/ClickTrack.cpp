// SPDX-License-Identifier: MIT
#include "click/ClickTrack.h"

#include <cmath>

#include "media/AudioWriter.h"
#include "media/copyTrack.h"

namespace app {

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
    return media::copyTrack(
        {trackPath, analysis_.rate, analysis_.frames}, outputPath, kind,
        [&](media::StereoBlock& block) { mixer.mix(block); }, shown);
}

}  // namespace app
