// SPDX-License-Identifier: MIT
// How time and memory grow with the length of a track. Each length is measured in a process of its
// own, so that each has its own memory peak. Five minutes of music are fed repeatedly, so the audio
// does not add to the memory.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <malloc.h>

#include "bench/BenchTrack.h"
#include "bench/sessionRun.h"
#include "bench/tables.h"

namespace beatatlas::bench {

namespace {

struct Length {
    const char* name;
    int seconds;
};
constexpr std::array<Length, 5> kLengths = {
    {{"1 min", 60}, {"10 min", 600}, {"1 h", 3600}, {"3 h", 10800}, {"10 h", 36000}}};

/** The peak memory of this process so far, in bytes, as counted by the system. */
double peakBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0) return 1024.0 * std::stod(line.substr(6));
    throw std::runtime_error("This system does not tell the peak of memory");
}

/** Resets the peak to the memory in use. */
void forgetPeak() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

/** What a process reports about its session. */
struct Figures {
    double preCheck = 0.0;
    double feeding = 0.0;
    double closing = 0.0;
    double growthBytes = 0.0;
};

Figures figuresOf(const std::string& program, int seconds) {
    const std::string command = "'" + program + "' --length-of " + std::to_string(seconds);
    std::FILE* output = popen(command.c_str(), "r");
    Figures f;
    const int read = output == nullptr ? 0
                                       : std::fscanf(output, "%lf %lf %lf %lf", &f.preCheck,
                                                     &f.feeding, &f.closing, &f.growthBytes);
    if (output == nullptr || pclose(output) != 0 || read != 4)
        throw std::runtime_error("The process for " + std::to_string(seconds) + " s failed");
    return f;
}

void printRow(const Length& length, const Figures& f) {
    const double whole = f.preCheck + f.feeding + f.closing;
    const double frames = static_cast<double>(length.seconds) * kRate;
    std::printf("| %s | %.2f | %.2f | %.4f | %.2f %% | %.2f | %.0f |\n", length.name, f.preCheck,
                f.feeding, f.closing, 100.0 * f.closing / whole, whole * 1e9 / frames,
                f.growthBytes / length.seconds);
    std::fflush(stdout);
}

}  // namespace

void measureLength(int seconds) {
    test::StereoTrack loop = makeSong(kSeconds);
    forgetPeak();
    const double before = peakBytes();
    const SessionTimes times = runSession(createWholeSession, loop, seconds * kRate);
    std::printf("%.9f %.9f %.9f %.0f\n", times.preCheck, times.creating + times.feeding,
                times.closing, peakBytes() - before);
}

void printLengths(const char* program, bool tenHours) {
    std::printf(
        "\n## By length: the whole session, processor time\n\n"
        "| track | pre-check, s | feeding, s | closing call, s | its share | ns per frame | peak "
        "memory, bytes per second of audio |\n|---|---|---|---|---|---|---|\n");
    for (const Length& length : kLengths)
        if (length.seconds < 36000 || tenHours)
            printRow(length, figuresOf(program, length.seconds));
}

}  // namespace beatatlas::bench
