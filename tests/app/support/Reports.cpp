// SPDX-License-Identifier: MIT
#include "support/Reports.h"

namespace test {

namespace {

constexpr int kRate = 48000;
constexpr int kSeconds = 8;
constexpr int kFramesPerBeat = kRate / 2;
constexpr int kFirstBeat = 4800;  // a tenth of a second

beatatlas::track::KeyRanking aMinorAheadOfCMajor() {
    beatatlas::track::KeyRanking key;
    for (int i = 0; i < beatatlas::track::kKeyCount; ++i) {
        const auto at = static_cast<std::size_t>(i);
        key.keys[at] = (12 + 15 * i) % beatatlas::track::kKeyCount;
        key.scores[at] = 200.0 - 5.0 * i;
    }
    // 12 + 15 i modulo 24 meets each of its eight values three times: the rest of the ranking does not matter here.
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
    analysis.key = aMinorAheadOfCMajor();
    return report;
}

}  // namespace test
