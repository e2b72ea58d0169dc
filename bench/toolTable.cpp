// SPDX-License-Identifier: MIT
// The program itself, as a process, against a process that decodes the same file once and does nothing with it. In turns:
// what one of them meets the others meet as well, and the ratios are taken within a round.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/BenchTrack.h"
#include "bench/ChildRun.h"
#include "bench/EncodedTrack.h"
#include "bench/measure.h"
#include "bench/tables.h"

namespace beatatlas::bench {

namespace {

constexpr int kRounds = 9;
constexpr int kLongRounds = 3;
constexpr double kMegabyte = 1e6;

const Encoding kMp3{"libmp3lame", "mp3", 320000};
const Encoding kFlac{"flac", "flac", 0};
const Encoding kAlac{"alac", "m4a", 0};

struct Kind {
    const char* name;
    Encoding encoding;
};

const std::array<Kind, 4>& kinds() {
    static const std::array<Kind, 4> all = {{
        {"MP3, 320 kbit/s", kMp3},
        {"FLAC", kFlac},
        {"AAC, 256 kbit/s", {"aac", "m4a", 256000}},
        {"Ogg Vorbis, 192 kbit/s", {"libvorbis", "ogg", 192000}},
    }};
    return all;
}

std::vector<std::string> analyzing(const std::string& tool, int threads, const std::string& file) {
    return {tool, "analyze", "--quiet", "--threads=" + std::to_string(threads), file};
}

/** What the rounds of one file gave, as multiples of one decoding. */
struct Rounds {
    std::vector<double> decodingSeconds, processorOfOne, processorOfTwo, wallOfOne, wallOfTwo;
};

void runRound(const char* program, const std::string& file, Rounds& rounds) {
    const ChildRun decoding = runChild(program, {program, "--decode", file});
    const ChildRun one = runChild(program, analyzing(BEATATLAS_TOOL, 1, file));
    const ChildRun two = runChild(program, analyzing(BEATATLAS_TOOL, 2, file));
    rounds.decodingSeconds.push_back(decoding.processorSeconds);
    rounds.processorOfOne.push_back(one.processorSeconds / decoding.processorSeconds);
    rounds.processorOfTwo.push_back(two.processorSeconds / decoding.processorSeconds);
    rounds.wallOfOne.push_back(one.wallSeconds / decoding.wallSeconds);
    rounds.wallOfTwo.push_back(two.wallSeconds / decoding.wallSeconds);
}

void printAgainstDecoding(const char* program) {
    std::printf("\n## The tool against one decoding: %d s, %d rounds, median (least … most)\n\n"
                "| file | decoding, s | 1 thread: processor | wall | 2 threads: processor | wall "
                "|\n|---|---|---|---|---|---|\n",
                kSeconds, kRounds);
    for (const Kind& kind : kinds()) {
        const auto file = EncodedTrack::make(benchTrack().stereo, kind.encoding);
        if (!file) continue;
        Rounds rounds;
        for (int round = 0; round < kRounds; ++round) runRound(program, file->path(), rounds);
        std::printf("| %s |", kind.name);
        std::printf(" %s |", textOf(spreadOf(rounds.decodingSeconds), 3).c_str());
        for (const auto* ratios :
             {&rounds.processorOfOne, &rounds.wallOfOne, &rounds.processorOfTwo, &rounds.wallOfTwo})
            std::printf(" %s |", textOf(spreadOf(*ratios), 2).c_str());
        std::printf("\n");
        std::fflush(stdout);
    }
}

struct LongTrack {
    const char* name;
    int repeats;  ///< of five minutes
};
constexpr std::array<LongTrack, 3> kLongTracks = {{{"5 min", 1}, {"1 h", 12}, {"10 h", 120}}};

void printPeaks(const char* program, bool tenHours) {
    std::printf("\n## The tool's peak of memory, MB\n\n"
                "| track | MP3, 1 thread | MP3, 2 threads | ALAC, 1 thread | ALAC, 2 threads "
                "|\n|---|---|---|---|---|\n");
    for (const LongTrack& length : kLongTracks) {
        if (length.repeats > 12 && !tenHours) continue;
        std::printf("| %s |", length.name);
        for (const Encoding& encoding : {kMp3, kAlac}) {
            const auto song = EncodedTrack::make(benchTrack().stereo, encoding);
            if (!song) continue;
            const EncodedTrack file = song->repeated(length.repeats, encoding.ending);
            for (const int threads : {1, 2}) {
                const ChildRun run =
                    runChild(program, analyzing(BEATATLAS_TOOL, threads, file.path()));
                std::printf(" %.0f |", run.peakBytes / kMegabyte);
                std::fflush(stdout);
            }
        }
        std::printf("\n");
    }
}

/** Longer than the default limit of memory lets it keep. An older program, given by BEATATLAS_OLD_TOOL, may run beside. */
void printBeyondMemory(const char* program) {
    const char* old = std::getenv("BEATATLAS_OLD_TOOL");
    const auto song = EncodedTrack::make(benchTrack().stereo, kMp3);
    if (!song) return;
    const EncodedTrack file = song->repeated(36, kMp3.ending);
    std::vector<double> decoding, one, two, before;
    for (int round = 0; round < kLongRounds; ++round) {
        decoding.push_back(runChild(program, {program, "--decode", file.path()}).processorSeconds);
        one.push_back(
            runChild(program, analyzing(BEATATLAS_TOOL, 1, file.path())).processorSeconds);
        two.push_back(
            runChild(program, analyzing(BEATATLAS_TOOL, 2, file.path())).processorSeconds);
        if (old != nullptr)
            before.push_back(
                runChild(program, {old, "analyze", "--quiet", file.path()}).processorSeconds);
    }
    std::printf("\n## Three hours of MP3, more than memory is to hold\n\n"
                "| | processor time, s |\n|---|---|\n");
    std::printf("| one decoding | %s |\n", textOf(spreadOf(decoding), 2).c_str());
    std::printf("| the tool, 1 thread | %s |\n", textOf(spreadOf(one), 2).c_str());
    std::printf("| the tool, 2 threads | %s |\n", textOf(spreadOf(two), 2).c_str());
    if (old != nullptr)
        std::printf("| the older tool | %s |\n", textOf(spreadOf(before), 2).c_str());
}

}  // namespace

void printTool(const char* program, bool tenHours) {
    printAgainstDecoding(program);
    printPeaks(program, tenHours);
    printBeyondMemory(program);
}

}  // namespace beatatlas::bench
