// SPDX-License-Identifier: MIT
// record_results OUT: analyses a fixed set of synthesised tracks in every kind of session, puts one through the stand-alone
// utilities, and writes what a host can read, as text. Floating-point results stand as hexadecimal bits; long lists as a digest of theirs.
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "golden/utilityRecord.h"
#include "support/Digest.h"
#include "support/HostSession.h"
#include "support/TrackSynth.h"

namespace {

using namespace beatatlas::test;

struct RecordedTrack {
    std::string name;
    TrackPlan plan;
};

TrackPlan planOf(int rate, double seconds, double bpm) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate * seconds);
    plan.bpm = bpm;
    return plan;
}

std::vector<RecordedTrack> recordedTracks() {
    std::vector<RecordedTrack> tracks;
    tracks.push_back({"straight 128 at 44100", planOf(44100, 40.0, 128.0)});

    TrackPlan swung = planOf(48000, 35.5, 93.47);
    swung.swing = 2.0 / 3.0;
    swung.mode = KeyMode::minor;
    swung.tonic = 3;
    swung.stereoWidth = 0.6;
    swung.kickPattern = KickPattern::firstAndThird;
    tracks.push_back({"swing 93.47 in C minor at 48000", swung});

    TrackPlan changing = planOf(44100, 60.0, 120.0);
    changing.tempoChanges = {{30.0, 140.0}};
    changing.introFrames = 5 * 44100;
    changing.level = 0.3;
    tracks.push_back({"quiet, beatless intro, 120 to 140 at 44100", changing});

    tracks.push_back({"dry kick 174.02 at 48000", dryKickPlan(48000, 48000 * 30LL, 174.02)});
    return tracks;
}

// Of the 32-bit fields that the records are made of.
template <class Record>
std::uint64_t digestOf(const std::vector<Record>& records) {
    Digest digest;
    for (const Record& record : records) {
        std::array<std::uint32_t, sizeof(Record) / sizeof(std::uint32_t)> words{};
        std::memcpy(words.data(), &record, sizeof record);
        for (std::uint32_t word : words) digest.add(word);
    }
    return digest.value();
}

void recordKey(std::FILE* out, const SessionResults& r) {
    std::fprintf(out, "key %d\n", r.mainKey);
    for (std::size_t i = 0; i < r.keyRanks.size(); ++i)
        std::fprintf(out, "  rank %2zu key %2d score %a\n", i, r.keyRanks[i], r.keyPoints[i]);
    for (std::size_t i = 0; i < r.noteCounts.size(); ++i)
        std::fprintf(out, "  note %2zu count %2d share %a\n", i, r.noteCounts[i], r.noteValues[i]);
}

void record(std::FILE* out, const SessionResults& r) {
    std::fprintf(out, "tempo %d, %zu beats %016" PRIx64 "\n", r.bpm, r.beats.size(),
                 digestOf(r.beats));
    for (std::size_t i = 0; i < r.beats.size() && i < 6; ++i)
        std::fprintf(out, "  beat %d %d %d\n", r.beats[i].pos, r.beats[i].beatNum, r.beats[i].bpm);
    std::fprintf(out, "loud %zu %016" PRIx64 "\n", r.loud.size(), digestOf(r.loud));
    for (std::size_t i = 100; i < r.loud.size(); i += 100)
        std::fprintf(out, "  loud %zu %a %d\n", i, static_cast<double>(r.loud[i].level),
                     r.loud[i].color);
    std::fprintf(out, "dots %zu %016" PRIx64 "\n", r.dots.size(), digestOf(r.dots));
    std::fprintf(out, "zoom %zu %016" PRIx64 "\n", r.zoom.size(), digestOf(r.zoom));
}

// A phrase of 16 beats where the tempo may vary; in a simple session the number is the sensing range, 0 the default.
int sectionBeatsOf(SessionKind kind) {
    switch (kind) {
    case SessionKind::varied:
        return 16;
    case SessionKind::simple:
        return 0;
    case SessionKind::constant:
        break;
    }
    return 32;
}

void recordTrack(std::FILE* out, const RecordedTrack& recorded) {
    const StereoTrack track = TrackSynth(recorded.plan).renderAll();
    for (SessionKind kind : {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
        const bool withKey = kind == SessionKind::constant;
        const SessionRequest request{.kind = kind,
                                     .rate = recorded.plan.sampleRate,
                                     .sectionBeats = sectionBeatsOf(kind),
                                     .key = withKey};
        const SessionResults results = analyseTrack(request, track, {4096, 1000});
        const char* names[] = {"constant", "varied", "simple"};
        std::fprintf(out, "== %s, %s\n", recorded.name.c_str(), names[static_cast<int>(kind)]);
        record(out, results);
        if (withKey) recordKey(out, results);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::FILE* out = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (out == nullptr) {
        std::fprintf(stderr, "usage: record_results OUT\n");
        return EXIT_FAILURE;
    }
    for (const RecordedTrack& track : recordedTracks()) recordTrack(out, track);
    recordUtilities(out);
    return std::fclose(out) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
