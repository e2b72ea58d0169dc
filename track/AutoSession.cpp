// SPDX-License-Identifier: MIT
#include "track/AutoSession.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/RoundingMode.h"
#include "track/BeatSession.h"
#include "track/NearestScope.h"

namespace beatatlas::track::inner {

namespace {

// The local tempo is measured over this many beats on either side: two bars in all.
constexpr std::size_t kBeatsAround = 4;

double inHundredths(double bpm) {
    return std::round(100.0 * bpm) / 100.0;
}

double localBpm(const std::vector<double>& beats, std::size_t i) {
    const std::size_t from = i < kBeatsAround ? 0 : i - kBeatsAround;
    const std::size_t to = std::min(i + kBeatsAround, beats.size() - 1);
    return 60.0 * static_cast<double>(to - from) / (beats[to] - beats[from]);
}

/** How another reading relates to the chosen one. Both count in twelfths of the same beats, so
 *  their ratio is exact up to rounding. */
std::int32_t kindOf(const TempoAlternative& other) {
    const auto isRatio = [&](double ratio) { return std::abs(other.tempoRatio - ratio) < 1e-6; };
    if (isRatio(2.0)) return BA_TRACK_READING_DOUBLE;
    if (isRatio(0.5)) return BA_TRACK_READING_HALF;
    if (isRatio(1.0)) return BA_TRACK_READING_SHIFTED;
    if (isRatio(1.5)) return BA_TRACK_READING_THREE_TO_TWO;
    if (isRatio(2.0 / 3.0)) return BA_TRACK_READING_TWO_TO_THREE;
    return BA_TRACK_READING_OTHER;
}

}  // namespace

AutoSession::AutoSession(const BA_TrackOptions& options, int rate, int frames)
    : tempo_(rate, frames, options.wants_waves != 0,
             {options.lowest_bpm, options.highest_bpm, options.beats_per_bar}) {}

void AutoSession::hear(const Block& block) {
    tempo_.hear(block);
}

void AutoSession::close() {
    answer_ = tempo_.finish();
}

void AutoSession::addTo(TrackResult& result) {
    {
        const NearestScope mode;
        addBeatsTo(result);
        addReadingsTo(result);
    }
    addWavesTo(result);
}

void AutoSession::addBeatsTo(TrackResult& result) const {
    const std::vector<double>& beats = answer_.beats;
    if (beats.size() < 2) return;
    result.bpm = inHundredths(answer_.bpm);
    result.rawBpm = inHundredths(answer_.rawBpm);
    result.isSteady = answer_.isSteady ? 1 : 0;
    result.beats.reserve(beats.size());
    const auto last = static_cast<double>(result.frames - 1);
    for (std::size_t i = 0; i < beats.size(); ++i) {
        const double bpm = answer_.isSteady ? result.bpm : inHundredths(localBpm(beats, i));
        const double frame = std::clamp(std::round(beats[i] * result.rate), 0.0, last);
        result.beats.push_back(
            {beats[i], bpm, static_cast<std::int64_t>(frame), answer_.bars.numbers[i], 0});
    }
}

void AutoSession::addReadingsTo(TrackResult& result) const {
    if (result.isSteady < 0) return;
    const TempoConfidence& confidence = answer_.confidence;
    result.confidence = {confidence.pulse, confidence.level, confidence.phase, confidence.bars};
    for (const TempoAlternative& other : answer_.alternatives)
        result.readings.push_back(
            {inHundredths(other.bpm), other.share, other.shiftBeats, kindOf(other), 0});
    for (const TempoStretch& stretch : answer_.stretches)
        result.stretches.push_back({stretch.from, stretch.to, inHundredths(stretch.bpm)});
}

// The getters compute the colours, so they need the session's rounding.
void AutoSession::addWavesTo(TrackResult& result) {
    const TowardZeroScope mode;
    SessionPair& sessions = tempo_.sessions();
    result.waves[BA_TRACK_WAVE_LOUD] = toWave(sessions.loudWave(), sessions.loudNum());
    result.waves[BA_TRACK_WAVE_DOTS] = toWave(sessions.dotsWave(), sessions.dotsNum());
    result.waves[BA_TRACK_WAVE_ZOOM] = toWave(sessions.zoomWave(), sessions.zoomNum());
}

std::unique_ptr<BeatFinder> makeBeatFinder(const BA_TrackOptions& options, int rate, int frames) {
    if (options.tempo == BA_TRACK_TEMPO_AUTO)
        return std::make_unique<AutoSession>(options, rate, frames);
    return std::make_unique<BeatSession>(options, rate, frames);
}

}  // namespace beatatlas::track::inner
