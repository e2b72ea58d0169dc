// SPDX-License-Identifier: MIT
#include "analysis/BeatCutter.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <unistd.h>

#include "analysis/LibraryCall.h"
#include "base/Interrupt.h"
#include "base/errors.h"
#include "beatatlas/utilities.h"
#include "media/trackLength.h"

namespace app {

namespace {

constexpr std::size_t kUndividedFrame = 4096;
constexpr double kShortSeconds = 30.0;
constexpr double kGigabyte = 1e9;

// Of the available memory: other programs are running too.
constexpr double kMostOfMemory = 0.9;

// Undivided hops by mode, for tracks of 30 s and more; shorter ones need little memory anyway.
constexpr std::array<double, 5> kLongHops = {512.0, 1024.0, 1488.0, 1720.0, 2304.0};

// Memory that is available without taking it from another program. Only Linux reports it; elsewhere
// half of all memory counts.
double availableMemoryBytes() {
    std::ifstream memory("/proc/meminfo");
    for (std::string line; std::getline(memory, line);) {
        constexpr std::string_view kName = "MemAvailable:";
        if (line.starts_with(kName))
            return 1024.0 * std::strtod(line.c_str() + kName.size(), nullptr);
    }
    return 0.5 * static_cast<double>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<double>(sysconf(_SC_PAGESIZE));
}

}  // namespace

std::size_t BeatCutter::frameLength() const {
    return kUndividedFrame / static_cast<std::size_t>(options_.div);
}

/** One frame of silence before, so that the first sound is covered by as many frames as any other;
 *  three after, since the frames end up to two hops early. */
std::size_t BeatCutter::paddedLength(std::size_t frames) const {
    return frames + 4 * frameLength();
}

/** Memory needed besides the recording, which is in memory already. */
double BeatCutter::bytesFor(const media::Recording& recording) const {
    const bool isShort = static_cast<double>(recording.frames()) < kShortSeconds * recording.rate;
    const double hop = isShort ? kLongHops[0] : kLongHops[static_cast<std::size_t>(options_.mode)];
    // Magnitude and phase of half a frame's bins for every hop; the padded channel and the
    // library's sum.
    const double working = 8.0 * (static_cast<double>(kUndividedFrame) / 2.0) / hop + 8.0;
    return working * static_cast<double>(recording.frames());
}

void BeatCutter::refuseTooLong(const media::Recording& recording) const {
    if (paddedLength(recording.frames()) > static_cast<std::size_t>(media::kMostFrames))
        throw base::TrackError("is too long: more than 2,147,000,000 frames cannot be cut");
    const double needed = bytesFor(recording);
    const double available = availableMemoryBytes();
    if (needed <= kMostOfMemory * available) return;
    throw base::TrackError(
        fmt::format("is too long: cutting it takes {:.1f} GB more of memory, and {:.1f} GB are "
                    "free (a higher --mode takes less)",
                    needed / kGigabyte, available / kGigabyte));
}

void BeatCutter::cut(media::Recording& recording, const std::function<void(double)>& shown) const {
    refuseTooLong(recording);
    std::vector<float> padded;
    double done = 0.0;
    for (auto& channel : recording.channels) {
        base::Interrupt::check();
        shown(done++ / static_cast<double>(recording.channels.size()));
        padded.assign(paddedLength(channel.size()), 0.0F);
        const auto start = padded.begin() + static_cast<std::ptrdiff_t>(frameLength());
        std::copy(channel.begin(), channel.end(), start);
        libraryCall([&] {
            CutBeats(padded.data(), padded.data(), static_cast<int>(padded.size()),
                     static_cast<float>(recording.rate), options_.div, options_.mode);
        });
        std::copy_n(start, channel.size(), channel.begin());
    }
}

}  // namespace app
