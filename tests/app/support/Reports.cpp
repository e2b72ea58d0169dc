// SPDX-License-Identifier: MIT
#include "support/Reports.h"

namespace test {

namespace {

constexpr int kRate = 48000;
constexpr int kSeconds = 8;
constexpr int kFramesPerBeat = kRate / 2;
constexpr int kFirstBeat = 4800;  // a tenth of a second

// 12 + 15 i modulo 24 meets each of its eight values three times: the rest of the ranking does not
// matter here.
int rankedKey(int rank) {
    return (12 + 15 * rank) % beatatlas::track::kKeyCount;
}

beatatlas::track::Key aMinor() {
    beatatlas::track::Key key;
    for (int i = 0; i < beatatlas::track::kKeyCount; ++i)
        key.ranking[static_cast<std::size_t>(i)] = {rankedKey(i), 1.0 - 0.0625 * i,
                                                    i == 0   ? 0.75
                                                    : i == 1 ? 0.25
                                                             : 0.0};
    key.confidence = 0.875;
    key.segments = {{0.0, kSeconds, 12, 0.875}};
    key.chroma.fill(0.0625);
    key.chroma[0] = 0.3125;
    key.tuningCents = 25.0;
    key.tuningHz = 446.4;
    return key;
}

beatatlas::track::SessionKey aMinorAheadOfCMajor() {
    beatatlas::track::SessionKey key;
    for (int i = 0; i < beatatlas::track::kKeyCount; ++i) {
        const auto at = static_cast<std::size_t>(i);
        key.keys[at] = rankedKey(i);
        key.scores[at] = 200.0 - 5.0 * i;
    }
    key.noteCounts.fill(1);
    key.noteShares.fill(1.0 / beatatlas::track::kPitchClassCount);
    return key;
}

beatatlas::track::Beat beatAt(int frame, int numberInBar) {
    return {static_cast<double>(frame) / kRate, 120.0, frame, numberInBar};
}

}  // namespace

output::TrackReport emptyReport() {
    output::TrackReport report;
    report.path = "music/track.flac";
    report.format = {"flac", "flac", 2, kRate, kRate};
    report.analysis.rate = kRate;
    report.analysis.frames = kRate * kSeconds;
    report.options.wantsSessionKey = true;
    return report;
}

output::TrackReport exampleReport() {
    output::TrackReport report = emptyReport();
    beatatlas::track::TrackResult& analysis = report.analysis;
    analysis.bpm = 120.0;
    for (int i = 0; i < 15; ++i)
        analysis.beats.push_back(beatAt(kFirstBeat + i * kFramesPerBeat, (i + 3) % 4 + 1));
    for (int i = 0; i < 400; ++i)
        analysis.loudWave.push_back({i < 200 ? 8000.0F : 16000.0F, i % 6});
    for (int i = 0; i < 100; ++i) analysis.dotsWave.push_back({i < 50 ? 0.0F : 20000.0F, 5});
    for (int i = 0; i < 150 * kSeconds; ++i) {
        analysis.zoomWave.push_back({static_cast<float>(i % 32), i % 8});
    }
    analysis.key = aMinor();
    analysis.sessionKey = aMinorAheadOfCMajor();
    return report;
}

}  // namespace test
