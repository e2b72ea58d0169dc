// SPDX-License-Identifier: MIT
// Compares the whole session with one decoding of the same five minutes. They run in turn, so that
// a busy or warm machine affects all of them alike, and the ratios are taken within a round.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/BenchTrack.h"
#include "bench/EncodedTrack.h"
#include "bench/Sleeps.h"
#include "bench/decodeTrack.h"
#include "bench/measure.h"
#include "bench/sessionRun.h"
#include "bench/tables.h"

namespace beatatlas::bench {

namespace {

constexpr int kRounds = 12;

struct Rival {
    const char* name;
    Encoding encoding;
};

const std::array<Rival, 4>& rivals() {
    static const std::array<Rival, 4> all = {{
        {"MP3, 320 kbit/s", {"libmp3lame", "mp3", 320000}},
        {"AAC, 256 kbit/s", {"aac", "m4a", 256000}},
        {"Ogg Vorbis, 192 kbit/s", {"libvorbis", "ogg", 192000}},
        {"FLAC", {"flac", "flac", 0}},
    }};
    return all;
}

/** A rival and its processor time in each round, ns per frame. */
struct Runner {
    const char* name;
    EncodedTrack file;
    std::vector<double> ns;
};

std::vector<Runner> runners() {
    std::vector<Runner> present;
    for (const Rival& rival : rivals()) {
        auto file = EncodedTrack::make(benchTrack().stereo, rival.encoding);
        if (file)
            present.push_back({rival.name, std::move(*file), {}});
        else
            std::printf("%s: left out, this libavcodec has no encoder %s\n", rival.name,
                        rival.encoding.encoder.c_str());
    }
    return present;
}

double nsPerFrame(double seconds) {
    return seconds * 1e9 / kFrames;
}

void decodeInTurn(Runner& runner) {
    const double before = threadSeconds();
    const std::int64_t frames = decodeTrack(runner.file.path());
    runner.ns.push_back(nsPerFrame(threadSeconds() - before));
    // Encoders add silence; a decoder that returns fewer frames has not decoded the track.
    if (frames < kFrames)
        std::printf("%s: %ld frames are missing\n", runner.name, kFrames - frames);
}

/** The session in each round, ns per frame. */
struct SessionRuns {
    std::vector<double> whole, preCheck, feeding, closing, withoutSleeps;
    long sleeps = 0;  // of one session
};

void runInTurn(test::StereoTrack& track, SessionRuns& runs) {
    const long before = Sleeps::count();
    const SessionTimes times = runSession(createWholeSession, track, kFrames);
    runs.sleeps = Sleeps::count() - before;
    runs.whole.push_back(nsPerFrame(times.whole()));
    runs.preCheck.push_back(nsPerFrame(times.preCheck));
    runs.feeding.push_back(nsPerFrame(times.feeding));
    runs.closing.push_back(nsPerFrame(times.closing));
    const Sleeps::LeftOut leftOut;
    runs.withoutSleeps.push_back(
        nsPerFrame(runSession(createWholeSession, track, kFrames).whole()));
}

std::vector<double> quotients(const std::vector<double>& a, const std::vector<double>& b) {
    std::vector<double> all;
    for (std::size_t i = 0; i < a.size(); ++i) all.push_back(a[i] / b[i]);
    return all;
}

void printRow(const char* name, const std::vector<double>& ns, const SessionRuns& session) {
    std::printf("| %s | %s | %s |\n", name, textOf(spreadOf(ns), 2).c_str(),
                textOf(spreadOf(quotients(session.whole, ns)), 3).c_str());
}

void print(const std::vector<Runner>& all, const SessionRuns& session) {
    std::printf(
        "| processor time of one thread | ns per frame | session ÷ this |\n|---|---|---|\n");
    printRow("the whole session", session.whole, session);
    printRow("of it: pre-check", session.preCheck, session);
    printRow("of it: feeding", session.feeding, session);
    printRow("of it: closing call", session.closing, session);
    printRow("the session without its sleeps", session.withoutSleeps, session);
    for (const Runner& runner : all) printRow(runner.name, runner.ns, session);
    std::vector<double> sleepShare;
    for (double part : quotients(session.withoutSleeps, session.whole))
        sleepShare.push_back(100.0 * (1.0 - part));
    std::printf("\n%ld sleeps of zero length in a session: %s %% of its processor time\n",
                session.sleeps, textOf(spreadOf(sleepShare), 1).c_str());
}

}  // namespace

void printDecodeRace() {
    std::printf("\n## Against one decoding: %d s, %d rounds, median (least … most)\n\n", kSeconds,
                kRounds);
    std::vector<Runner> all = runners();
    test::StereoTrack track = benchTrack().stereo;
    SessionRuns session;
    for (int round = 0; round < kRounds; ++round) {
        runInTurn(track, session);
        for (Runner& runner : all) decodeInTurn(runner);
    }
    print(all, session);
}

}  // namespace beatatlas::bench
