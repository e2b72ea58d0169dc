// SPDX-License-Identifier: MIT
// Whole tracks: any options, any audio, sources that stop or have another length, any rounding
// mode. Each track that could be analysed is analysed again with another number of threads and
// other read sizes, and must give the same result. An input is limited to 60,000 frames.
#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>

#include "FuzzAudio.h"
#include "FuzzInput.h"
#include "FuzzersRoundingMode.h"
#include "require.h"
#include "track/TrackHost.h"

namespace {

using namespace beatatlas::fuzz;
using beatatlas::test::Audio;
using beatatlas::test::Found;
using beatatlas::test::WatchedSource;

constexpr int kMostFrames = 60000;

Audio fuzzTrack(FuzzInput& input) {
    Audio audio;
    audio.rate = input.flag() ? 44100 : 48000;
    const int frames = input.flag() ? input.between(1, 2000) : 1 + input.bits16() % kMostFrames;
    audio.left = fuzzSamples(input, frames);
    audio.right = input.flag() ? audio.left : fuzzSamples(input, frames);
    if (input.between(0, 7) == 0) return audio;  // far too loud
    for (auto* channel : {&audio.left, &audio.right})
        for (float& sample : *channel) sample /= 32768.0F;
    return audio;
}

/** Mostly valid options; now and then arbitrary bytes in place of one. */
BA_TrackOptions fuzzOptions(FuzzInput& input) {
    BA_TrackOptions options = beatatlas::test::defaultsOf();
    options.tempo = input.between(0, 4);
    options.section_beats = input.between(1, 70);
    options.range_seconds = input.between(0, 30) / 10.0;
    options.wants_key = input.between(0, 1);
    options.wants_session_key = input.between(0, 1);
    options.wants_waves = input.between(0, 1);
    options.threads = input.between(1, 3);
    if (input.flag()) options.lowest_bpm = input.between(20, 500);
    if (options.lowest_bpm > 0.0) options.highest_bpm = 2.0 * options.lowest_bpm;
    if (input.flag()) options.beats_per_bar = input.between(3, 4);
    if (input.between(0, 15) != 0) return options;
    // Any field except the callback, which would be called.
    const int at = input.between(0, static_cast<int>(offsetof(BA_TrackOptions, progress)) - 1);
    unsigned char byte = input.byte();
    std::memcpy(reinterpret_cast<unsigned char*>(&options) + at, &byte, 1);
    // A larger size would claim bytes that do not exist.
    options.size = std::min(options.size, sizeof options);
    return options;
}

void makeFaulty(FuzzInput& input, WatchedSource& source, std::int64_t frames) {
    constexpr std::int64_t kAnswers[] = {-1, INT64_MIN, INT64_MAX, 0, 20000};
    if (input.flag()) source.lengths = {frames, std::max(0, input.between(0, 70000))};
    if (input.flag()) source.failsAtOpen = input.between(1, 3);
    if (input.flag()) source.failsAtRead = input.between(1, 30);
    source.failure = input.oneOf(kAnswers);
}

void requireKey(const Found& found) {
    require(found.key >= -1 && found.key <= 23, "24 keys or none, by evidence");
    const bool hasKey = found.key >= 0;
    require(found.keys.size() == (hasKey ? 24U : 0U), "all candidates or none");
    require(found.chroma.size() == (hasKey ? 12U : 0U), "a chroma or none");
    require(found.keySegments.empty() != hasKey, "a key holds somewhere");
    require(found.keyConfidence >= 0.0 && found.keyConfidence <= 1.0, "a confidence");
    require(std::abs(found.tuningCents) <= 50.0, "half a semitone at the most");
    require(hasKey == (found.tuningHz > 0.0), "a tuning or none");
    double end = 0.0;
    for (const BA_TrackKeySegment& segment : found.keySegments) {
        require(segment.from_seconds == end && segment.to_seconds > end, "stretches in order");
        require(segment.key >= 0 && segment.key <= 23, "stretches have keys");
        end = segment.to_seconds;
    }
}

void requireLists(const Found& found) {
    require(found.bpm >= 0.0, "a tempo from 0 up");
    for (const BA_TrackBeat& beat : found.beats) {
        require(beat.number_in_bar >= 1 && beat.number_in_bar <= 5, "beats are numbered 1 to 5");
        require(std::isfinite(beat.seconds) && beat.bpm > 0.0, "beats have times and tempi");
    }
    requireKey(found);
    require(found.sessionKey >= -1 && found.sessionKey <= 23, "24 keys or none");
    require(found.ranking.size() == (found.sessionKey < 0 ? 0U : 24U), "all keys or none");
    require(found.notes.size() == (found.sessionKey < 0 ? 0U : 12U), "all notes or none");
    for (const auto& wave : found.waves)
        for (const BA_WaveInfo& point : wave)
            require(point.color >= 0 && point.color <= 7 && point.level >= 0.0F, "wave ranges");
}

void requireOrder(const Found& found, const WatchedSource& source) {
    require(found.status >= BA_TRACK_OK && found.status <= BA_TRACK_WRONG_LENGTH, "a status");
    require(found.hasTrack == (found.status == BA_TRACK_OK), "a track or a reason");
    require(found.status != BA_TRACK_BAD_ARGUMENT || source.opens() == 0, "refused unheard");
    require(source.areAllClosed() && !source.wasMisused(), "every pass is closed, once");
}

Found analyse(const Audio& audio, const BA_TrackOptions& options, FuzzInput& input, bool isFaulty) {
    WatchedSource source(audio);
    source.isFewestPasses = input.flag();
    if (input.flag()) source.readSizes = {1 + input.bits16() % 20000, 1 + input.bits16() % 300};
    if (isFaulty) makeFaulty(input, source, audio.frames());
    const int mode = std::fegetround();
    Found found = source.analyse(options);
    require(std::fegetround() == mode, "the caller's rounding mode");
    requireOrder(found, source);
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    constexpr int kModes[] = {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD};
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    BA_TrackOptions options = fuzzOptions(input);
    const int first = input.oneOf(kModes);
    const int second = input.oneOf(kModes);
    const bool isFaulty = input.between(0, 3) == 0;
    const Audio audio = fuzzTrack(input);
    std::fesetround(first);
    const Found found = analyse(audio, options, input, isFaulty);
    requireLists(found);
    if (found.status != BA_TRACK_OK) return 0;
    std::fesetround(second);
    options.threads = input.between(1, 3);
    require(sameBits(found, analyse(audio, options, input, false)), "the same again");
    return 0;
}
