// SPDX-License-Identifier: MIT
#include "doctor/selfCheck.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cfenv>
#include <chrono>
#include <cmath>
#include <stdexcept>

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/errors.h"
#include "doctor/KnownTrack.h"
#include "media/FileAnalysis.h"
#include "media/writeFully.h"
#include "output/KeyName.h"

namespace app {

namespace {

using beatatlas::track::Beat;
using beatatlas::track::TempoMode;
using beatatlas::track::TrackResult;

// In music so plain, far less than a listener notices.
constexpr double kMostBpmOff = 0.05;
constexpr double kMostSecondsOff = 0.025;

// What a session of constant tempo gives with this track. Compilers, processors and their vectors
// do not change it; the last bits of another C library's functions might.
constexpr std::uint64_t kRecordedDigest = 0x03FAD77C7E510885;

/** A file that is in memory alone, under a name while it lives. */
class MemoryFile {
public:
    explicit MemoryFile(const std::string& bytes)
        : descriptor_(memfd_create("beatatlas-doctor.wav", MFD_CLOEXEC)) {
        if (descriptor_ == -1) throw base::TrackError(base::systemReason(errno));
        const int failure = media::writeFully(descriptor_, bytes.data(), bytes.size());
        if (failure != 0) throw base::TrackError(base::systemReason(failure));
    }
    ~MemoryFile() {
        if (descriptor_ != -1) close(descriptor_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return fmt::format("/proc/self/fd/{}", descriptor_); }

private:
    int descriptor_;
};

/** Rounds in another direction, and back to nearest at the end. */
class RoundingScope {
public:
    explicit RoundingScope(int mode) { std::fesetround(mode); }
    ~RoundingScope() { std::fesetround(FE_TONEAREST); }
    RoundingScope(const RoundingScope&) = delete;
    RoundingScope& operator=(const RoundingScope&) = delete;
};

TrackResult analysed(const MemoryFile& file, TempoMode tempo, int threads) {
    media::FileAnalysis::Options options;
    options.track.tempo = tempo;
    options.track.wantsSessionKey = tempo == TempoMode::constant;
    options.effort.threads = threads;
    return media::FileAnalysis(options).analyze(file.path()).result;
}

class Digest {
public:
    void add(std::uint64_t word) {
        constexpr int kBits = 64;
        for (int shift = 0; shift < kBits; shift += 8) {
            value_ ^= word >> shift & 0xFFU;
            value_ *= 0x100000001B3U;
        }
    }
    void add(double number) { add(std::bit_cast<std::uint64_t>(number)); }
    void add(const std::vector<beatatlas::track::WavePoint>& wave) {
        for (const auto& point : wave) {
            add(std::uint64_t{std::bit_cast<std::uint32_t>(point.level)});
            add(static_cast<std::uint64_t>(point.color));
        }
    }
    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325U;
};

Check judged(const char* subject, bool isRight, std::string text) {
    return {subject, isRight ? Outcome::ok : Outcome::failed, std::move(text)};
}

Check checkBits(std::uint64_t digest, std::uint64_t otherDigest) {
    constexpr const char* kSubject = "same bits";
    if (digest != otherDigest)
        return judged(kSubject, false,
                      "another rounding mode or number of threads changes the results");
    if (digest == kRecordedDigest)
        return judged(kSubject, true,
                      "in another rounding mode and with two threads, and as recorded");
    const std::string text = fmt::format("{:016x}, recorded {:016x}", digest, kRecordedDigest);
#if defined(__GLIBC__)
    return judged(kSubject, false, text);
#else
    return {kSubject, Outcome::note, text + "; another C library may do that"};
#endif
}

std::vector<Check> compared(const MemoryFile& file) {
    const TrackResult found = analysed(file, TempoMode::automatic, 2);
    const std::uint64_t digest = digestOf(analysed(file, TempoMode::constant, 1));
    const RoundingScope scope(FE_UPWARD);
    const std::uint64_t other = digestOf(analysed(file, TempoMode::constant, 2));
    return {checkTempo(found), checkBeats(found), checkKey(found), checkBits(digest, other),
            judged("rounding mode", std::fegetround() == FE_UPWARD,
                   "the caller's, kept by every analysis")};
}

}  // namespace

std::vector<Check> checkOnKnownTrack() {
    try {
        return compared(MemoryFile(KnownTrack::waveFile()));
    } catch (const std::runtime_error& error) {
        return {{"analysis", Outcome::failed, error.what()}};
    } catch (const std::bad_alloc&) {
        return {{"analysis", Outcome::failed, "there is not enough memory"}};
    }
}

Check checkTempo(const TrackResult& result) {
    if (!result.bpm) return judged("tempo", false, "none found");
    const bool isRight = std::abs(*result.bpm - KnownTrack::kBpm) <= kMostBpmOff;
    return judged("tempo", isRight,
                  fmt::format("{:.2f} BPM, of {:.2f}", *result.bpm, KnownTrack::kBpm));
}

Check checkBeats(const TrackResult& result) {
    int right = 0;
    double farthest = 0.0;
    for (int i = 0; i < KnownTrack::kBeats; ++i) {
        const double seconds =
            static_cast<double>(KnownTrack::kFirstBeat + i * KnownTrack::kBeatFrames) /
            KnownTrack::kRate;
        const auto near =
            std::find_if(result.beats.begin(), result.beats.end(), [&](const Beat& b) {
                return std::abs(b.seconds - seconds) <= kMostSecondsOff &&
                       b.numberInBar == i % KnownTrack::kBeatsPerBar + 1;
            });
        if (near == result.beats.end()) continue;
        ++right;
        farthest = std::max(farthest, std::abs(near->seconds - seconds));
    }
    // A grid goes on to the ends of the track, where nothing is played any more.
    const bool isRight =
        right == KnownTrack::kBeats && result.beats.size() <= KnownTrack::kBeats + 2;
    return judged("beats", isRight,
                  fmt::format("{} of {}, with their numbers in the bar, {:.1f} ms off at most",
                              right, KnownTrack::kBeats, farthest * 1000.0));
}

Check checkKey(const TrackResult& result) {
    if (!result.key) return judged("key", false, "none found");
    return judged("key", result.key->best() == KnownTrack::kKey,
                  fmt::format("{}, of {}", output::KeyName(result.key->best()).musical(),
                              output::KeyName(KnownTrack::kKey).musical()));
}

std::uint64_t digestOf(const TrackResult& result) {
    Digest digest;
    digest.add(result.bpm.value_or(0.0));
    for (const Beat& beat : result.beats) {
        digest.add(static_cast<std::uint64_t>(beat.frame));
        digest.add(beat.bpm);
        digest.add(static_cast<std::uint64_t>(beat.numberInBar));
    }
    for (const auto* wave : {&result.loudWave, &result.dotsWave, &result.zoomWave})
        digest.add(*wave);
    if (!result.sessionKey) return digest.value();
    for (std::size_t i = 0; i < result.sessionKey->keys.size(); ++i) {
        digest.add(static_cast<std::uint64_t>(result.sessionKey->keys[i]));
        digest.add(result.sessionKey->scores[i]);
    }
    return digest.value();
}

}  // namespace app
