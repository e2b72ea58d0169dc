// SPDX-License-Identifier: MIT
#include "track/BeatSession.h"

#include <algorithm>
#include <cmath>

#include "dsp/RoundingMode.h"
#include "dsp/processorYield.h"
#include "session/tempoHundredths.h"
#include "track/NearestScope.h"

namespace beatatlas::track::inner {

namespace {

/** How many frames a simple session senses. The core takes one minute for 0 and for more frames
 *  than the track has. */
int sensedFrames(const BA_TrackOptions& options, int rate, int frames) {
    // Set before the option is read, so that the compiler cannot multiply in the old mode.
    const NearestScope mode;
    if (options.range_seconds == 0.0) return 0;
    const double range = std::floor(options.range_seconds * static_cast<double>(rate));
    if (range >= static_cast<double>(frames)) return frames;
    return std::max(1, static_cast<int>(range));
}

double inBpm(int hundredths) {
    return static_cast<double>(hundredths) / 100.0;
}

}  // namespace

BeatSession::BeatSession(const BA_TrackOptions& options, int rate, int frames)
    : framesLeft_(frames) {
    const TowardZeroScope mode;
    const bool waves = options.wants_waves != 0;
    analyzer_.setQuiet(true);
    if (options.tempo == BA_TRACK_TEMPO_SIMPLE) {
        analyzer_.createSimple(rate, frames, 0, sensedFrames(options, rate, frames), waves, waves,
                               false);
        return;
    }
    const int beats = options.tempo == BA_TRACK_TEMPO_OFF ? 0 : options.section_beats;
    analyzer_.create(rate, frames, beats, options.tempo == BA_TRACK_TEMPO_VARIED, waves, waves,
                     false);
}

void BeatSession::hear(const Block& block) {
    const TowardZeroScope mode;
    const UnbrokenWork unbroken;
    framesLeft_ -= block.frames;
    const int count = framesLeft_ == 0 ? block.frames - 1 : block.frames;
    lastLeft_ = block.left[block.frames - 1];
    lastRight_ = block.right[block.frames - 1];
    analyzer_.setSample(block.left, block.right, count);
}

void BeatSession::close() {
    const TowardZeroScope mode;
    const UnbrokenWork unbroken;
    analyzer_.setSample(&lastLeft_, &lastRight_, 1);
}

void BeatSession::addTo(TrackResult& result) {
    const int hundredths = analyzer_.getBpm();
    {
        const NearestScope mode;
        result.bpm = result.rawBpm = inBpm(hundredths);
    }
    addBeatsTo(result);
    addWavesTo(result);
}

void BeatSession::addBeatsTo(TrackResult& result) const {
    const peakss::BeatList& beats = analyzer_.getBeatList();
    std::vector<int> hundredths;
    hundredths.reserve(beats.size());
    {
        const TowardZeroScope mode;
        for (const peakss::BeatInfo& beat : beats)
            hundredths.push_back(tempoHundredths(60000.0F / beat.interval));
    }
    const NearestScope mode;
    const double rate = result.rate;
    result.beats.reserve(beats.size());
    for (std::size_t i = 0; i < beats.size(); ++i) {
        const std::int32_t frame = beats[i].pos;
        result.beats.push_back(
            {static_cast<double>(frame) / rate, inBpm(hundredths[i]), frame, beats[i].group, 0});
    }
}

// The getters compute the colours, so they need the session's rounding.
void BeatSession::addWavesTo(TrackResult& result) {
    const TowardZeroScope mode;
    result.waves[BA_TRACK_WAVE_LOUD] = toWave(analyzer_.getLoudWave(), analyzer_.getLoudNum());
    result.waves[BA_TRACK_WAVE_DOTS] = toWave(analyzer_.getDotsWave(), analyzer_.getDotsNum());
    result.waves[BA_TRACK_WAVE_ZOOM] = toWave(analyzer_.getZoomWave(), analyzer_.getZoomNum());
}

}  // namespace beatatlas::track::inner
