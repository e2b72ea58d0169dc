// SPDX-License-Identifier: MIT
// Compares the program itself, as a process, with a process that only decodes the same file once.
// They run in turn, so that the machine affects all of them alike, and the ratios are taken within
// a round.
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

std::vector<std::string> analyzing(const std::string& tool, const std::string& tempo, int threads,
                                   const std::string& file) {
    return {tool, "analyze", "--quiet", "--tempo=" + tempo, "--threads=" + std::to_string(threads),
            file};
}

/** The results of the rounds for one file; all but the first and the last are multiples of one
 *  decoding. */
struct Rounds {
    std::vector<double> decodingSeconds;
    struct Tempo {
        std::vector<double> processorOfOne, wallOfOne, processorOfTwo, wallOfTwo;
    } constant, automatic;
    /** Processor time, one thread. */
    std::vector<double> automaticToConstant;
};

/** @return processor time of one thread, as a multiple of the decoding */
double runTempo(const char* program, const char* tempo, const std::string& file,
                const ChildRun& decoding, Rounds::Tempo& ratios) {
    const ChildRun one = runChild(program, analyzing(BEATATLAS_TOOL, tempo, 1, file));
    const ChildRun two = runChild(program, analyzing(BEATATLAS_TOOL, tempo, 2, file));
    ratios.processorOfOne.push_back(one.processorSeconds / decoding.processorSeconds);
    ratios.processorOfTwo.push_back(two.processorSeconds / decoding.processorSeconds);
    ratios.wallOfOne.push_back(one.wallSeconds / decoding.wallSeconds);
    ratios.wallOfTwo.push_back(two.wallSeconds / decoding.wallSeconds);
    return ratios.processorOfOne.back();
}

void runRound(const char* program, const std::string& file, Rounds& rounds) {
    const ChildRun decoding = runChild(program, {program, "--decode", file});
    rounds.decodingSeconds.push_back(decoding.processorSeconds);
    const double constant = runTempo(program, "constant", file, decoding, rounds.constant);
    const double automatic = runTempo(program, "auto", file, decoding, rounds.automatic);
    rounds.automaticToConstant.push_back(automatic / constant);
}

void printRatios(const char* tempo, const Rounds::Tempo& ratios) {
    std::printf("| | %s |", tempo);
    for (const auto* column :
         {&ratios.processorOfOne, &ratios.wallOfOne, &ratios.processorOfTwo, &ratios.wallOfTwo})
        std::printf(" %s |", textOf(spreadOf(*column), 2).c_str());
    std::printf("\n");
}

void printAgainstDecoding(const char* program) {
    std::printf("\n## The tool against one decoding: %d s, %d rounds, median (least … most)\n\n"
                "| file | tempo | 1 thread: processor | wall | 2 threads: processor | wall |\n"
                "|---|---|---|---|---|---|\n",
                kSeconds, kRounds);
    for (const Kind& kind : kinds()) {
        const auto file = EncodedTrack::make(benchTrack().stereo, kind.encoding);
        if (!file) continue;
        Rounds rounds;
        for (int round = 0; round < kRounds; ++round) runRound(program, file->path(), rounds);
        std::printf("| %s: one decoding %s s; auto ÷ constant %s | | | | | |\n", kind.name,
                    textOf(spreadOf(rounds.decodingSeconds), 3).c_str(),
                    textOf(spreadOf(rounds.automaticToConstant), 2).c_str());
        printRatios("constant", rounds.constant);
        printRatios("auto", rounds.automatic);
        std::fflush(stdout);
    }
}

struct LongTrack {
    const char* name;
    /** Of five minutes. */
    int repeats;
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
                    runChild(program, analyzing(BEATATLAS_TOOL, "auto", threads, file.path()));
                std::printf(" %.0f |", run.peakBytes / kMegabyte);
                std::fflush(stdout);
            }
        }
        std::printf("\n");
    }
}

/** Measures a track longer than the default memory limit can keep. BEATATLAS_OLD_TOOL may name an
 *  older program for comparison. */
void printBeyondMemory(const char* program) {
    const char* old = std::getenv("BEATATLAS_OLD_TOOL");
    const auto song = EncodedTrack::make(benchTrack().stereo, kMp3);
    if (!song) return;
    const EncodedTrack file = song->repeated(36, kMp3.ending);
    std::vector<double> decoding, one, two, before;
    for (int round = 0; round < kLongRounds; ++round) {
        decoding.push_back(runChild(program, {program, "--decode", file.path()}).processorSeconds);
        one.push_back(runChild(program, analyzing(BEATATLAS_TOOL, "constant", 1, file.path()))
                          .processorSeconds);
        two.push_back(runChild(program, analyzing(BEATATLAS_TOOL, "constant", 2, file.path()))
                          .processorSeconds);
        if (old != nullptr)
            before.push_back(
                runChild(program, {old, "analyze", "--quiet", file.path()}).processorSeconds);
    }
    std::printf("\n## Three hours of MP3, more than memory is to hold, constant tempo\n\n"
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
