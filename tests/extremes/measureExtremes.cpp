// SPDX-License-Identifier: MIT
// measure_extremes SIGNAL MINUTES MODE: analyses a generated track with everything on and prints one line of figures:
// processor time per frame of both passes, of the closing analysis, and the memory the session took at its highest.
// MODE is constant, varied or simple. MINUTES may be "max": 2,147,483,647 frames.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <ctime>
#include <malloc.h>

#include "beatatlas/beatatlas.hpp"
#include "extremes/ExtremeSignal.h"
#include "support/NearestScope.h"

namespace {

using beatatlas::test::ExtremeSignal;
using beatatlas::test::makeExtremeSignal;

constexpr int kRate = 44100;
constexpr int kCallFrames = 44100;

/** Processor seconds of this thread. */
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/** A line of /proc/self/status, in megabytes. */
double memoryOf(const std::string& entry) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(entry + ":", 0) == 0) return std::stod(line.substr(entry.size() + 1)) / 1024;
    }
    return 0.0;
}

void forgetHighestMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

void* createSession(const std::string& mode, int frames) {
    if (mode == "varied") return BA_CreateVaried44k(frames, 32, true, true, true);
    if (mode == "simple") return BA_CreateSimple44k(frames, frames, true, true, true);
    return BA_CreateConst44k(frames, 32, true, true, true);
}

using Feed = void (*)(void*, float*, float*, int);

/** Feeds `frames` frames of a signal; the result is the processor time of the calls alone. */
class Feeder {
public:
    explicit Feeder(const std::string& signal)
        : signal_(makeExtremeSignal(signal, kRate)), left_(kCallFrames), right_(kCallFrames) {}

    double feed(void* session, Feed call, std::int64_t frames) {
        double seconds = 0.0;
        while (frames > 0) {
            const int count = static_cast<int>(std::min<std::int64_t>(frames, kCallFrames));
            {
                const beatatlas::test::NearestScope nearest;
                signal_->next(count, left_.data(), right_.data());
            }
            const double before = processorSeconds();
            call(session, left_.data(), right_.data(), count);
            seconds += processorSeconds() - before;
            frames -= count;
        }
        return seconds;
    }

private:
    std::unique_ptr<ExtremeSignal> signal_;
    std::vector<float> left_;
    std::vector<float> right_;
};

int framesOf(const std::string& minutes) {
    constexpr int kMost = std::numeric_limits<int>::max();
    if (minutes == "max") return kMost;
    const double frames = std::stod(minutes) * 60.0 * kRate;
    return frames < 1.0 ? 1 : static_cast<int>(std::min<double>(frames, kMost));
}

void measure(const std::string& signal, const std::string& minutes, const std::string& mode) {
    const int frames = framesOf(minutes);
    // The signals' own memory is there before the session's is looked at.
    Feeder preCheck(signal);
    Feeder analysis(signal);
    // Nor may the session live in what making them left behind.
    malloc_trim(0);
    forgetHighestMemory();
    const double memoryBefore = memoryOf("VmRSS");
    const double start = processorSeconds();
    void* session = createSession(mode, frames);
    const double createSeconds = processorSeconds() - start;
    const double createMegabytes = memoryOf("VmRSS") - memoryBefore;

    const int closing = std::min(frames, 1);
    const double preSeconds = preCheck.feed(session, BA_SetSamplePre, frames);
    const double feedSeconds = analysis.feed(session, BA_SetSample, frames - closing);
    const double closeSeconds = analysis.feed(session, BA_SetSample, closing);
    const double highest = memoryOf("VmHWM") - memoryBefore;
    std::fprintf(stderr,
                 "%-8s %6s min %-8s  create %5.3f s %4.0f MB  pre-check %5.1f  feeding %6.1f "
                 "ns/frame  closing "
                 "%8.3f s  highest %4.0f MB  %6.2f BPM %7d beats%s\n",
                 signal.c_str(), minutes.c_str(), mode.c_str(), createSeconds, createMegabytes,
                 1e9 * preSeconds / frames, 1e9 * feedSeconds / frames, closeSeconds, highest,
                 BA_GetBpm(session) / 100.0, BA_GetBeatNum(session),
                 BA_Analyzed(session) ? "" : "  NOT ANALYSED");
    BA_Release(session);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4 || makeExtremeSignal(argv[1], kRate) == nullptr) {
        std::fputs("measure_extremes silence|noise|click|tone|music|dense MINUTES|max "
                   "constant|varied|simple\n",
                   stderr);
        return 2;
    }
    // The library's progress lines; the figures go to standard error.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
    measure(argv[1], argv[2], argv[3]);
    return 0;
}
