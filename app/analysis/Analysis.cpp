// SPDX-License-Identifier: MIT
#include "analysis/Analysis.h"

#include <cmath>

#include "analysis/LibraryCall.h"
#include "beatatlas/beatatlas.hpp"

namespace app {

namespace {

constexpr int kCdRate = 44100;
constexpr int kLoudPoints = 400;
constexpr int kDotsPoints = 100;

using CreateCall = void* (*)(int, int, bool, bool, bool);

CreateCall createCall(base::TempoMode mode, int rate) {
    const bool isCd = rate == kCdRate;
    switch (mode) {
    case base::TempoMode::varied:
        return isCd ? BA_CreateVaried44k : BA_CreateVaried48k;
    case base::TempoMode::simple:
        return isCd ? BA_CreateSimple44k : BA_CreateSimple48k;
    default:
        return isCd ? BA_CreateConst44k : BA_CreateConst48k;
    }
}

/** The second argument of the create call: it means something else in every mode. */
int secondArgument(const base::AnalysisOptions& options, int rate, int frames) {
    switch (options.tempo) {
    case base::TempoMode::off:
        return 0;
    case base::TempoMode::simple: {
        // The library takes one minute for a range that is longer than the track; the whole track is meant then.
        const double range = std::floor(options.rangeSeconds * static_cast<double>(rate));
        return range >= static_cast<double>(frames) ? frames : static_cast<int>(range);
    }
    default:
        return options.sectionBeats;
    }
}

std::vector<base::WavePoint> toWavePoints(const std::vector<BA_WaveInfo>& records, int count) {
    std::vector<base::WavePoint> points;
    points.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const BA_WaveInfo& record = records[static_cast<std::size_t>(i)];
        points.push_back({record.level, record.color});
    }
    return points;
}

/** A silent track, or one too short for a single spectrum, scores 0 everywhere: no key then. */
bool hasKey(const base::KeyRanking& ranking) {
    return ranking.scores[0] > 0.0;
}

}  // namespace

Analysis::Analysis(const base::AnalysisOptions& options, int rate, int frames)
    : options_(options), rate_(rate), frames_(frames), session_(createSession()) {}

void Analysis::Release::operator()(void* session) const {
    libraryCall([&] { BA_Release(session); });
}

void* Analysis::createSession() const {
    const int second = secondArgument(options_, rate_, frames_);
    const CreateCall create = createCall(options_.tempo, rate_);
    const bool waves = options_.wantsWaves;
    return libraryCall([&] { return create(frames_, second, waves, waves, options_.wantsKey); });
}

void Analysis::putLevels(media::StereoBlock& block) {
    const int count = static_cast<int>(block.frames());
    libraryCall(
        [&] { BA_SetSamplePre(session_.get(), block.left.data(), block.right.data(), count); });
}

void Analysis::put(media::StereoBlock& block) {
    const int count = static_cast<int>(block.frames());
    libraryCall(
        [&] { BA_SetSample(session_.get(), block.left.data(), block.right.data(), count); });
}

bool Analysis::isFinished() const {
    return libraryCall([&] { return BA_Analyzed(session_.get()); });
}

base::AnalysisResult Analysis::result() const {
    base::AnalysisResult result;
    result.rate = rate_;
    result.frames = frames_;
    const int bpm100 = libraryCall([&] { return BA_GetBpm(session_.get()); });
    if (bpm100 > 0) result.bpm100 = bpm100;
    result.beats = beats();
    result.loudWave = loudWave();
    result.dotsWave = dotsWave();
    result.zoomWave = zoomWave();
    const base::KeyRanking ranking = key();
    if (options_.wantsKey && hasKey(ranking)) result.key = ranking;
    return result;
}

std::vector<base::Beat> Analysis::beats() const {
    const int count = libraryCall([&] { return BA_GetBeatNum(session_.get()); });
    std::vector<BA_BeatInfo> records(static_cast<std::size_t>(count));
    libraryCall([&] { BA_GetBeatList(session_.get(), records.data()); });
    std::vector<base::Beat> beats;
    beats.reserve(records.size());
    for (const BA_BeatInfo& record : records)
        beats.push_back({record.pos, record.beatNum, record.bpm});
    return beats;
}

std::vector<base::WavePoint> Analysis::loudWave() const {
    std::vector<BA_WaveInfo> records(kLoudPoints);
    const int count =
        libraryCall([&] { return BA_GetLoudWave(session_.get(), records.data(), 0); });
    return toWavePoints(records, count);
}

std::vector<base::WavePoint> Analysis::dotsWave() const {
    std::vector<BA_WaveInfo> records(kDotsPoints);
    const int count =
        libraryCall([&] { return BA_GetDotsWave(session_.get(), records.data(), 0); });
    return toWavePoints(records, count);
}

std::vector<base::WavePoint> Analysis::zoomWave() const {
    const int count = libraryCall([&] { return BA_GetZoomWave(session_.get(), nullptr); });
    std::vector<BA_WaveInfo> records(static_cast<std::size_t>(count));
    libraryCall([&] { return BA_GetZoomWave(session_.get(), records.data()); });
    return toWavePoints(records, count);
}

base::KeyRanking Analysis::key() const {
    base::KeyRanking ranking;
    libraryCall([&] {
        BA_GetKeyRank(session_.get(), ranking.keys.data());
        BA_GetKeyPoint(session_.get(), ranking.scores.data());
        BA_GetNoteEncount(session_.get(), ranking.noteCounts.data());
        BA_GetNoteEncountVal(session_.get(), ranking.noteShares.data());
    });
    return ranking;
}

}  // namespace app
