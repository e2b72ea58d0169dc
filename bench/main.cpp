// SPDX-License-Identifier: MIT
// Each benchmark is repeated, the repetitions of all of them in random order, and the median reported: a machine that
// is busy or warm for a while then spoils a repetition here and there and not one benchmark as a whole. Any of the
// flags may be given again on the command line.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    std::vector<std::string> words = {
        argv[0], "--benchmark_repetitions=5", "--benchmark_min_time=0.2",
        "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"};
    words.insert(words.end(), argv + 1, argv + argc);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
