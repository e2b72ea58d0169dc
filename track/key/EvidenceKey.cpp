// SPDX-License-Identifier: MIT
// Method: peaks of the spectrum are folded into pitch classes relative to the track's own tuning.
// Their mean is correlated with the profile of each key, as in C. Krumhansl, "Cognitive Foundations
// of Musical Pitch" (1990), chapter 4. Added to this are the share of time in which the triad on
// the tonic sounds, and the triad with which the track begins.
#include "track/key/EvidenceKey.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "track/NearestScope.h"
#include "track/evidence/mixToMono.h"
#include "track/key/KeyFrames.h"
#include "track/key/PeakFinder.h"
#include "track/key/keyConfidence.h"
#include "track/key/keySegments.h"
#include "track/key/scoreKeys.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kCentsOfSemitone = 100.0;

/** All keys, the likeliest first; of equal keys the one with the smaller number comes first. */
std::vector<BA_TrackKeyCandidate> rankKeys(const KeyValues& scores) {
    const KeyValues probabilities = keyProbabilities(scores);
    std::vector<BA_TrackKeyCandidate> ranking;
    ranking.reserve(kKeys);
    for (std::size_t key = 0; key < kKeys; ++key)
        ranking.push_back({static_cast<std::int32_t>(key), 0, scores[key], probabilities[key]});
    std::sort(ranking.begin(), ranking.end(),
              [](const BA_TrackKeyCandidate& a, const BA_TrackKeyCandidate& b) {
                  return a.score > b.score || (a.score == b.score && a.key < b.key);
              });
    return ranking;
}

std::vector<BA_TrackKeySegment> toRecords(const std::vector<KeySegment>& segments) {
    std::vector<BA_TrackKeySegment> records;
    records.reserve(segments.size());
    for (const KeySegment& segment : segments)
        records.push_back(
            {segment.from, segment.to,
             confidenceOfKey(segment.probabilities[segment.key], segment.to - segment.from),
             static_cast<std::int32_t>(segment.key), 0});
    return records;
}

}  // namespace

EvidenceKey::EvidenceKey(int rate) {
    const NearestScope mode;
    stream_.emplace(rate);
}

void EvidenceKey::hear(const Block& block) {
    const NearestScope mode;
    mixToMono(block, mono_);
    stream_->put(mono_.data(), block.frames);
}

void EvidenceKey::addTo(TrackResult& result) {
    const NearestScope mode;
    stream_->finish();
    const double tuning = stream_->tuning();
    const KeyFrames frames = foldFrames(stream_->peaks(), tuning, stream_->secondsPerFrame());
    if (frames.size() == 0) return;
    const FrameRange whole{0, frames.size()};
    const KeyValues scores = scoreKeys(frames, whole);
    const ChromaSum chroma = meanChroma(frames, whole);
    result.tuningCents = kCentsOfSemitone * tuning;
    result.tuningHz = hzOfPitch(kPitchOfA4 + tuning);
    result.chroma.assign(chroma.begin(), chroma.end());
    result.keys = rankKeys(scores);
    const double seconds = static_cast<double>(result.frames) / static_cast<double>(result.rate);
    result.keySegments =
        toRecords(findKeySegments(frames, keyWindows(result.beats, seconds), scores));
    const double heard = static_cast<double>(frames.size()) * stream_->secondsPerFrame();
    result.keyConfidence = confidenceOfKey(result.keys.front().probability, heard);
}

}  // namespace beatatlas::track::inner
