// SPDX-License-Identifier: MIT
#include "analysis/bufferFinders.h"

#include "analysis/LibraryCall.h"
#include "beatatlas/utilities.h"

namespace app {

namespace {

// A hop of 128 samples at a tenth of the rate: with longer hops the result for music varies by
// several hertz, depending on where the frames fall. At the session's rate even the undivided hop
// overlaps most windows.
constexpr int kThinnedHopDivisor = 16;
constexpr int kSessionHopDivisor = 1;
constexpr int kLowestSessionRate = 44100;

// 8.6 frames a second at 4,410 Hz. Below 2 the smoothing over time would diverge.
constexpr int kKeyHop = 512;

constexpr double kShortestForPitchSeconds = 0.25;  // one frame and one hop
constexpr double kShortestForKeySeconds = 2.0;     // one frame and one hop at the lowest reference

bool isShorterThan(const MonoTrack& track, double seconds) {
    return static_cast<double>(track.samples.size()) < seconds * track.rate;
}

/** The hop between frames before it is divided: it depends on the mode and on the track's
 *  length. */
int undividedKeyHop(int mode, bool isLong) {
    if (mode == 0) return 2048;
    if (isLong) return 16384;
    if (mode == 1) return 2048;
    return mode == 2 ? 4096 : 8192;
}

}  // namespace

std::optional<int> findPitch(MonoTrack& track, int mode) {
    if (isShorterThan(track, kShortestForPitchSeconds) || track.isSilent()) return std::nullopt;
    const int hopDivisor =
        track.rate < kLowestSessionRate ? kThinnedHopDivisor : kSessionHopDivisor;
    return libraryCall([&] {
        return PitchDetect(track.samples.data(), static_cast<int>(track.samples.size()),
                           static_cast<float>(track.rate), hopDivisor, mode);
    });
}

std::optional<int> findKey(MonoTrack& track, double referenceHz, int mode) {
    if (isShorterThan(track, kShortestForKeySeconds) || track.isSilent()) return std::nullopt;
    const int hopDivisor = undividedKeyHop(mode, track.isLong()) / kKeyHop;
    const auto reference = static_cast<float>(referenceHz);
    return libraryCall([&] {
        return KeyCodeScale(nullptr, track.samples.data(), static_cast<long>(track.samples.size()),
                            static_cast<float>(track.rate), reference, hopDivisor, mode, nullptr);
    });
}

}  // namespace app
