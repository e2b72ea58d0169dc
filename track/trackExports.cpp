// SPDX-License-Identifier: MIT
// The C interface: checks arguments and lets no exception out.
#include <algorithm>
#include <memory>

#include "beatatlas/track.h"
#include "track/MemorySource.h"
#include "track/Outcome.h"
#include "track/TrackAnalysis.h"
#include "track/TrackResult.h"
#include "track/arguments.h"

struct BA_Track {
    beatatlas::track::inner::TrackResult result;
};

namespace {

using namespace beatatlas::track::inner;

int analyze(const BA_TrackOptions& options, std::int32_t rate, std::int64_t frames,
            const BA_TrackSource& source, BA_Track** track) {
    Outcome outcome;
    outcome.guard([&] {
        TrackAnalysis analysis(options, rate, static_cast<int>(frames), source, outcome);
        *track = new BA_Track{analysis.run()};
    });
    return outcome.status();
}

template <class Record>
std::size_t copyOut(const std::vector<Record>& records, Record* out, std::size_t room) {
    if (out != nullptr) std::copy_n(records.begin(), std::min(room, records.size()), out);
    return records.size();
}

template <class Record>
std::size_t copyOut(const BA_Track* track, std::vector<Record> TrackResult::*records, Record* out,
                    std::size_t room) {
    return track == nullptr ? 0 : copyOut(track->result.*records, out, room);
}

template <class Value>
Value valueOf(const BA_Track* track, Value TrackResult::*value) {
    return track == nullptr ? Value() : track->result.*value;
}

}  // namespace

const char* BA_TrackStatusText(int status) {
    switch (status) {
    case BA_TRACK_OK:
        return "The track has been analysed.";
    case BA_TRACK_BAD_ARGUMENT:
        return "An argument is out of its range.";
    case BA_TRACK_NO_MEMORY:
        return "There is not enough memory.";
    case BA_TRACK_STOPPED:
        return "The analysis was asked to stop.";
    case BA_TRACK_WRONG_LENGTH:
        return "The audio is shorter or longer than was stated.";
    default:
        return "The status is unknown.";
    }
}

void BA_TrackOptionsInit(BA_TrackOptions* options, size_t size) {
    if (options != nullptr && size >= sizeof size) writeOptions(defaultOptions(), options, size);
}

int BA_TrackAnalyze(const BA_TrackOptions* options, int32_t rate, int64_t frames,
                    const BA_TrackSource* source, BA_Track** track) {
    if (track == nullptr) return BA_TRACK_BAD_ARGUMENT;
    *track = nullptr;
    BA_TrackOptions ownOptions;
    BA_TrackSource ownSource;
    if (!isTrack(rate, frames) || !readOptions(options, ownOptions) ||
        !readSource(source, ownSource))
        return BA_TRACK_BAD_ARGUMENT;
    return analyze(ownOptions, rate, frames, ownSource, track);
}

int BA_TrackAnalyzeArrays(const BA_TrackOptions* options, int32_t rate, const float* left,
                          const float* right, int64_t frames, BA_Track** track) {
    if (track == nullptr) return BA_TRACK_BAD_ARGUMENT;
    *track = nullptr;
    BA_TrackOptions ownOptions;
    if (!isTrack(rate, frames) || !readOptions(options, ownOptions) || left == nullptr ||
        right == nullptr)
        return BA_TRACK_BAD_ARGUMENT;
    MemorySource memory(left, right, frames);
    return analyze(ownOptions, rate, frames, memory.source(), track);
}

void BA_TrackRelease(BA_Track* track) {
    delete track;
}

int32_t BA_TrackRate(const BA_Track* track) {
    return valueOf(track, &TrackResult::rate);
}

int64_t BA_TrackFrames(const BA_Track* track) {
    return valueOf(track, &TrackResult::frames);
}

double BA_TrackBpm(const BA_Track* track) {
    return valueOf(track, &TrackResult::bpm);
}

int32_t BA_TrackIsSteady(const BA_Track* track) {
    return track == nullptr ? -1 : track->result.isSteady;
}

int32_t BA_TrackTempoConfidence(const BA_Track* track, BA_TrackConfidence* out) {
    const bool isKnown = BA_TrackIsSteady(track) >= 0;
    if (out != nullptr) *out = isKnown ? track->result.confidence : BA_TrackConfidence{};
    return isKnown ? 1 : 0;
}

double BA_TrackRawBpm(const BA_Track* track) {
    return valueOf(track, &TrackResult::rawBpm);
}

size_t BA_TrackReadings(const BA_Track* track, BA_TrackReading* out, size_t room) {
    return copyOut(track, &TrackResult::readings, out, room);
}

size_t BA_TrackTempoStretches(const BA_Track* track, BA_TrackTempoStretch* out, size_t room) {
    return copyOut(track, &TrackResult::stretches, out, room);
}

size_t BA_TrackBeats(const BA_Track* track, BA_TrackBeat* out, size_t room) {
    return copyOut(track, &TrackResult::beats, out, room);
}

size_t BA_TrackWave(const BA_Track* track, int wave, BA_WaveInfo* out, size_t room) {
    if (track == nullptr || wave < 0 || wave >= kWaveKinds) return 0;
    return copyOut(track->result.waves[static_cast<std::size_t>(wave)], out, room);
}

int32_t BA_TrackKey(const BA_Track* track) {
    return track == nullptr || track->result.keys.empty() ? -1 : track->result.keys[0].key;
}

double BA_TrackKeyConfidence(const BA_Track* track) {
    return valueOf(track, &TrackResult::keyConfidence);
}

size_t BA_TrackKeyRanking(const BA_Track* track, BA_TrackKeyCandidate* out, size_t room) {
    return copyOut(track, &TrackResult::keys, out, room);
}

size_t BA_TrackKeySegments(const BA_Track* track, BA_TrackKeySegment* out, size_t room) {
    return copyOut(track, &TrackResult::keySegments, out, room);
}

size_t BA_TrackChroma(const BA_Track* track, double* out, size_t room) {
    return copyOut(track, &TrackResult::chroma, out, room);
}

double BA_TrackTuningCents(const BA_Track* track) {
    return valueOf(track, &TrackResult::tuningCents);
}

double BA_TrackTuningHz(const BA_Track* track) {
    return valueOf(track, &TrackResult::tuningHz);
}

int32_t BA_TrackSessionKey(const BA_Track* track) {
    return track == nullptr || track->result.sessionKeys.empty() ? -1
                                                                 : track->result.sessionKeys[0].key;
}

size_t BA_TrackSessionKeyRanking(const BA_Track* track, BA_TrackKeyScore* out, size_t room) {
    return copyOut(track, &TrackResult::sessionKeys, out, room);
}

size_t BA_TrackNotes(const BA_Track* track, BA_TrackNote* out, size_t room) {
    return copyOut(track, &TrackResult::notes, out, room);
}
