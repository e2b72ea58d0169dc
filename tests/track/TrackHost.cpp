// SPDX-License-Identifier: MIT
#include "track/TrackHost.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "support/TrackSynth.h"

namespace beatatlas::test {

namespace {

template <class Record>
bool sameArray(const std::vector<Record>& a, const std::vector<Record>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Record)) == 0);
}

template <class Record, class Getter>
std::vector<Record> readList(const Getter& getter) {
    std::vector<Record> list(getter(nullptr, std::numeric_limits<std::size_t>::max()));
    getter(list.data(), list.size());
    return list;
}

}  // namespace

Audio inFullScale(int rate, const StereoTrack& track) {
    Audio audio{rate, track.left, track.right};
    for (auto* channel : {&audio.left, &audio.right})
        for (float& sample : *channel) sample /= 32768.0F;
    return audio;
}

Audio shortMusic(int rate, int seconds, double bpm) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate) * seconds;
    plan.bpm = bpm;
    plan.stereoWidth = 0.5;
    return inFullScale(rate, TrackSynth(plan).renderAll());
}

bool sameBits(const Found& a, const Found& b) {
    return a.status == b.status && a.hasTrack == b.hasTrack && a.rate == b.rate &&
           a.frames == b.frames && a.bpm == b.bpm && sameArray(a.beats, b.beats) &&
           sameArray(a.waves[0], b.waves[0]) && sameArray(a.waves[1], b.waves[1]) &&
           sameArray(a.waves[2], b.waves[2]) && a.key == b.key &&
           a.keyConfidence == b.keyConfidence && a.tuningCents == b.tuningCents &&
           a.tuningHz == b.tuningHz && sameArray(a.keys, b.keys) &&
           sameArray(a.keySegments, b.keySegments) && sameArray(a.chroma, b.chroma) &&
           a.sessionKey == b.sessionKey && sameArray(a.ranking, b.ranking) &&
           sameArray(a.notes, b.notes);
}

Found readAndRelease(int status, BA_Track* track) {
    Found found;
    found.status = status;
    found.hasTrack = track != nullptr;
    found.rate = BA_TrackRate(track);
    found.frames = BA_TrackFrames(track);
    found.bpm = BA_TrackBpm(track);
    found.beats = readList<BA_TrackBeat>(
        [&](BA_TrackBeat* out, std::size_t room) { return BA_TrackBeats(track, out, room); });
    for (int wave = 0; wave < 3; ++wave)
        found.waves[wave] = readList<BA_WaveInfo>([&](BA_WaveInfo* out, std::size_t room) {
            return BA_TrackWave(track, wave, out, room);
        });
    found.key = BA_TrackKey(track);
    found.keyConfidence = BA_TrackKeyConfidence(track);
    found.tuningCents = BA_TrackTuningCents(track);
    found.tuningHz = BA_TrackTuningHz(track);
    found.keys = readList<BA_TrackKeyCandidate>([&](BA_TrackKeyCandidate* out, std::size_t room) {
        return BA_TrackKeyRanking(track, out, room);
    });
    found.keySegments =
        readList<BA_TrackKeySegment>([&](BA_TrackKeySegment* out, std::size_t room) {
            return BA_TrackKeySegments(track, out, room);
        });
    found.chroma = readList<double>(
        [&](double* out, std::size_t room) { return BA_TrackChroma(track, out, room); });
    found.sessionKey = BA_TrackSessionKey(track);
    found.ranking = readList<BA_TrackKeyScore>([&](BA_TrackKeyScore* out, std::size_t room) {
        return BA_TrackSessionKeyRanking(track, out, room);
    });
    found.notes = readList<BA_TrackNote>(
        [&](BA_TrackNote* out, std::size_t room) { return BA_TrackNotes(track, out, room); });
    BA_TrackRelease(track);
    return found;
}

BA_TrackOptions defaultsOf() {
    BA_TrackOptions options;
    BA_TrackOptionsInit(&options, sizeof options);
    return options;
}

BA_TrackOptions allWanted() {
    BA_TrackOptions options = defaultsOf();
    options.wants_session_key = 1;
    return options;
}

Found analyseArrays(const BA_TrackOptions& options, const Audio& audio) {
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyzeArrays(&options, audio.rate, audio.left.data(),
                                             audio.right.data(), audio.frames(), &track);
    return readAndRelease(status, track);
}

/** Where a pass has come to. */
struct WatchedSource::PassState {
    std::int64_t length = 0;
    std::int64_t at = 0;
    std::size_t turn = 0;
};

BA_TrackSource WatchedSource::asSource() {
    return {sizeof(BA_TrackSource), this, openPass, readPass, closePass, isFewestPasses ? 1 : 0, 0};
}

Found WatchedSource::analyse(const BA_TrackOptions& options, std::int64_t frames) {
    const BA_TrackSource source = asSource();
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyze(&options, audio_.rate, frames, &source, &track);
    return readAndRelease(status, track);
}

std::int64_t WatchedSource::lengthOfPass(int number) const {
    if (lengths.empty()) return audio_.frames();
    return lengths[std::min(static_cast<std::size_t>(number), lengths.size()) - 1];
}

void* WatchedSource::openPass(void* host) {
    auto& source = *static_cast<WatchedSource*>(host);
    source.atEveryCall();
    const std::lock_guard lock(source.mutex_);
    ++source.opens_;
    if (source.opens_ == source.failsAtOpen) {
        ++source.failedOpens_;
        return nullptr;
    }
    auto* pass = new PassState{source.lengthOfPass(source.opens_)};
    source.open_.insert(pass);
    source.mostOpen_ = std::max(source.mostOpen_, static_cast<int>(source.open_.size()));
    return pass;
}

std::int64_t WatchedSource::readPass(void* host, void* pass, float* left, float* right,
                                     std::int64_t frames) {
    auto& source = *static_cast<WatchedSource*>(host);
    source.atEveryCall();
    {
        const std::lock_guard lock(source.mutex_);
        auto* state = static_cast<PassState*>(pass);
        source.wasMisused_ = source.wasMisused_ || frames < 1 || source.open_.count(state) == 0;
        source.mostAsked_ = std::max(source.mostAsked_, frames);
        if (++source.reads_ == source.failsAtRead) return source.failure;
    }
    return source.handOut(*static_cast<PassState*>(pass), left, right, frames);
}

std::int64_t WatchedSource::handOut(PassState& pass, float* left, float* right,
                                    std::int64_t frames) {
    std::int64_t count = std::min(frames, pass.length - pass.at);
    if (!readSizes.empty()) count = std::min(count, readSizes[pass.turn++ % readSizes.size()]);
    for (std::int64_t i = 0; i < count; ++i) {
        const auto from = static_cast<std::size_t>(pass.at + i);
        const bool isAudio = from < audio_.left.size();
        left[i] = isAudio ? audio_.left[from] : 0.0F;
        right[i] = isAudio ? audio_.right[from] : 0.0F;
    }
    pass.at += count;
    return count;
}

void WatchedSource::closePass(void* host, void* pass) {
    auto& source = *static_cast<WatchedSource*>(host);
    source.atEveryCall();
    const std::lock_guard lock(source.mutex_);
    auto* state = static_cast<PassState*>(pass);
    source.wasMisused_ = source.wasMisused_ || source.open_.erase(state) == 0;
    ++source.closes_;
    delete state;
}

}  // namespace beatatlas::test
