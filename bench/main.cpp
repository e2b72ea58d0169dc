// SPDX-License-Identifier: MIT
// beatatlas_bench [race] [tool] [components] [utilities] [length] [--long] prints the named tables,
// or all if none is named. With any flag of Google Benchmark it runs the benchmarks themselves.
// Each benchmark is repeated, with the repetitions of all benchmarks in random order, and the
// median is reported. A machine that is busy or warm for a while then spoils single repetitions,
// not a whole benchmark. All flags may be overridden on the command line.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/ChildRun.h"
#include "bench/decodeTrack.h"
#include "bench/tables.h"

namespace {

using Words = std::vector<std::string>;

bool has(const Words& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/** Passes flags to Google Benchmark. @return false if it does not know one */
bool initialize(const char* program, const Words& flags) {
    Words words = {program, "--benchmark_repetitions=5", "--benchmark_min_time=0.2",
                   "--benchmark_enable_random_interleaving=true",
                   "--benchmark_report_aggregates_only=true"};
    words.insert(words.end(), flags.begin(), flags.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    benchmark::Initialize(&count, pointers.data());
    return !benchmark::ReportUnrecognizedArguments(count, pointers.data());
}

int runBenchmarks(const char* program, const Words& flags) {
    if (!initialize(program, flags)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

int printTables(const char* program, const Words& words) {
    using namespace beatatlas::bench;
    // Everything runs three times, once per vector form: fewer repetitions of each.
    if (!initialize(program, {"--benchmark_repetitions=3", "--benchmark_min_time=0.1"})) return 2;
    const bool longTracks = has(words, "--long");
    const bool all = words.size() == (longTracks ? 1U : 0U);
    if (all || has(words, "race")) printDecodeRace();
    if (all || has(words, "tool")) printTool(program, longTracks);
    if (all || has(words, "components")) printComponents();
    if (all || has(words, "utilities")) printUtilities();
    if (all || has(words, "length")) printLengths(program, longTracks);
    benchmark::Shutdown();
    return 0;
}

bool isTableWord(const std::string& word) {
    return has({"race", "tool", "components", "utilities", "length", "--long"}, word);
}

int run(const char* program, const Words& words) {
    if (words.size() == 2 && words[0] == "--length-of") {
        beatatlas::bench::measureLength(std::atoi(words[1].c_str()));
        return 0;
    }
    if (words.size() > 1 && words[0] == "--run") {
        beatatlas::bench::reportRun(Words(words.begin() + 1, words.end()));
        return 0;
    }
    if (words.size() == 2 && words[0] == "--decode")
        return beatatlas::bench::decodeTrack(words[1]) > 0 ? 0 : 1;
    if (std::all_of(words.begin(), words.end(), isTableWord)) return printTables(program, words);
    return runBenchmarks(program, words);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argv[0], Words(argv + 1, argv + argc));
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s\n", fault.what());
        return 1;
    }
}
