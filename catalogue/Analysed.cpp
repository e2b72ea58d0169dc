// SPDX-License-Identifier: MIT
#include "catalogue/Analysed.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "catalogue/CatalogueError.h"
#include "catalogue/blobCodecs.h"
#include "catalogue/details.h"

namespace catalogue {

namespace {

using beatatlas::track::TrackResult;

/** No session counts further. */
constexpr std::int64_t kMostFrames = std::numeric_limits<std::int32_t>::max();
constexpr double kMostSeconds = 1.0e6;

void describeTempo(ResultRow& row, const TrackResult& result) {
    row.bpm = result.bpm;
    if (!result.judgement) return;
    row.rawBpm = result.judgement->rawBpm;
    row.isSteady = result.judgement->isSteady;
    row.confidence = result.judgement->confidence;
}

void describeKey(ResultRow& row, const TrackResult& result) {
    if (!result.key) return;
    row.key = result.key->best();
    row.keyConfidence = result.key->confidence;
    row.tuningCents = result.key->tuningCents;
}

/** Everything that works with the numbers of a result can rely on these. */
void requireSound(const TrackResult& result) {
    const auto isBeyond = [](const auto& beat) {
        return !(std::abs(beat.seconds) <= kMostSeconds);
    };
    const bool isBroken = result.rate <= 0 || result.frames < 0 || result.frames > kMostFrames ||
                          std::any_of(result.beats.begin(), result.beats.end(), isBeyond);
    if (isBroken)
        throw DamagedRecord("the length or a beat of a track in the catalogue is damaged");
}

}  // namespace

Analysed makeAnalysed(const base::TrackSource& file, const FileState& state, const AudioHash& hash,
                      const beatatlas::track::Options& options, const TrackResult& result,
                      double analysisSeconds, std::vector<std::string> warnings,
                      std::string toolVersion) {
    Analysed made;
    made.track = {file.path, state, hash, file.format, result.frames, result.seconds()};
    ResultRow& row = made.result;
    row.parameters = parametersText(options);
    row.toolVersion = std::move(toolVersion);
    row.analysisSeconds = analysisSeconds;
    row.warnings = std::move(warnings);
    describeTempo(row, result);
    describeKey(row, result);
    row.details = detailsText(file, result);
    row.beats = encodeBeats(result.beats, result.rate);
    row.loudWave = encodeWave(result.loudWave);
    row.dotsWave = encodeWave(result.dotsWave);
    row.zoomWave = encodeWave(result.zoomWave);
    return made;
}

WholeTrack wholeTrack(const Analysed& analysed) {
    const TrackRow& track = analysed.track;
    const ResultRow& row = analysed.result;
    WholeTrack whole;
    whole.source.path = track.path;
    whole.source.format = track.format;
    whole.options = optionsOf(row.parameters);
    TrackResult& result = whole.result;
    result.rate = track.format.sessionRate;
    result.frames = track.frames;
    result.bpm = row.bpm;
    if (row.isSteady)
        result.judgement = {*row.isSteady, row.rawBpm.value_or(0.0), row.confidence, {}, {}};
    if (row.key >= 0) {
        result.key.emplace();
        result.key->confidence = row.keyConfidence;
        result.key->tuningCents = row.tuningCents;
    }
    readDetails(row.details, whole.source, result);
    result.beats = decodeBeats(row.beats, result.rate);
    result.loudWave = decodeWave(row.loudWave);
    result.dotsWave = decodeWave(row.dotsWave);
    result.zoomWave = decodeWave(row.zoomWave);
    requireSound(result);
    return whole;
}

const char* failureName(FailureKind kind) {
    switch (kind) {
    case FailureKind::damaged:
        return "damaged";
    case FailureKind::notAudio:
        return "not-audio";
    case FailureKind::timeLimit:
        return "time-limit";
    case FailureKind::memoryLimit:
        return "memory-limit";
    case FailureKind::crashed:
        return "crashed";
    case FailureKind::unreadable:
        return "unreadable";
    case FailureKind::vanished:
        break;
    }
    return "vanished";
}

}  // namespace catalogue
