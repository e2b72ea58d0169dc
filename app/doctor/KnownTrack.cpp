// SPDX-License-Identifier: MIT
#include "doctor/KnownTrack.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace app {

namespace {

using Mix = std::vector<std::int32_t>;

constexpr int kFrames =
    KnownTrack::kFirstBeat + KnownTrack::kBeats * KnownTrack::kBeatFrames + KnownTrack::kRate / 4;

/** One chord of the progression: frequencies in thousandths of a hertz, the bass first. */
using Chord = std::array<std::int64_t, 4>;
constexpr std::array<Chord, 4> kChords = {{{110000, 220000, 261626, 329628},    // A minor
                                           {146832, 220000, 293665, 349228},    // D minor
                                           {82407, 207652, 246942, 329628},     // E major
                                           {110000, 220000, 261626, 329628}}};  // A minor

/** A sound that begins at full level and dies away. */
struct Stroke {
    int from;
    int frames;
    std::int32_t level;
    /** The level falls by a 2^decay-th part with each frame. */
    int decay;
};

/** The envelope of a stroke, in 1/65536 of 16-bit steps. */
class Envelope {
public:
    explicit Envelope(const Stroke& stroke)
        : level_(std::int64_t{stroke.level} << 16), decay_(stroke.decay) {}

    std::int64_t next() {
        level_ -= level_ >> decay_;
        return level_;
    }

private:
    std::int64_t level_;
    int decay_;
};

/** A sine of nearly that shape, two parabolas: -4096 to 4096 over 2^32 steps of phase. */
std::int64_t parabola(std::uint32_t phase) {
    const std::int64_t x = static_cast<std::int32_t>(phase) / (1 << 17);
    return x * (16384 - std::abs(x)) / (1 << 14);
}

void addTone(Mix& mix, const Stroke& stroke, std::int64_t millihertz) {
    const auto step = static_cast<std::uint32_t>((millihertz << 32) / (1000LL * KnownTrack::kRate));
    Envelope envelope(stroke);
    std::uint32_t phase = 0;
    for (int i = stroke.from; i < std::min(stroke.from + stroke.frames, kFrames); ++i) {
        const std::int64_t product = parabola(phase) * envelope.next();
        mix[static_cast<std::size_t>(i)] += static_cast<std::int32_t>(product / (1LL << 28));
        phase += step;
    }
}

/** White noise by a linear congruential generator (Numerical Recipes' constants). */
void addNoise(Mix& mix, const Stroke& stroke) {
    Envelope envelope(stroke);
    std::uint32_t state = 1;
    for (int i = stroke.from; i < std::min(stroke.from + stroke.frames, kFrames); ++i) {
        state = state * 1664525U + 1013904223U;
        const std::int64_t product = static_cast<std::int32_t>(state) / (1 << 19) * envelope.next();
        mix[static_cast<std::size_t>(i)] += static_cast<std::int32_t>(product / (1LL << 28));
    }
}

void addDrums(Mix& mix, int beat, int from) {
    const bool isDownbeat = beat % KnownTrack::kBeatsPerBar == 0;
    addTone(mix, {from, KnownTrack::kBeatFrames, isDownbeat ? 14000 : 9000, 11}, 55000);
    if (beat % 2 == 1) addNoise(mix, {from, KnownTrack::kBeatFrames / 2, 5000, 10});
    addNoise(mix, {from + KnownTrack::kBeatFrames / 2, KnownTrack::kBeatFrames / 4, 2500, 8});
}

void addChord(Mix& mix, int bar, int from) {
    constexpr int kBarFrames = KnownTrack::kBeatsPerBar * KnownTrack::kBeatFrames;
    const Chord& chord = kChords[static_cast<std::size_t>(bar) % kChords.size()];
    for (const std::int64_t note : chord) addTone(mix, {from, kBarFrames, 3000, 16}, note);
}

Mix mixed() {
    Mix mix(kFrames);
    for (int beat = 0; beat < KnownTrack::kBeats; ++beat) {
        const int from = KnownTrack::kFirstBeat + beat * KnownTrack::kBeatFrames;
        addDrums(mix, beat, from);
        if (beat % KnownTrack::kBeatsPerBar == 0)
            addChord(mix, beat / KnownTrack::kBeatsPerBar, from);
    }
    return mix;
}

void append(std::string& bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
}

/** The head of a WAV file: RIFF, whose numbers begin with the lowest byte. */
std::string header(std::uint32_t soundBytes) {
    constexpr std::uint32_t kHeaderBytes = 36;
    std::string bytes = "RIFF";
    append(bytes, kHeaderBytes + soundBytes, 4);
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);
    append(bytes, 1, 2);  // PCM
    append(bytes, 1, 2);  // channels
    append(bytes, KnownTrack::kRate, 4);
    append(bytes, KnownTrack::kRate * 2, 4);
    append(bytes, 2, 2);   // bytes a frame
    append(bytes, 16, 2);  // bits a sample
    bytes += "data";
    append(bytes, soundBytes, 4);
    return bytes;
}

}  // namespace

std::string KnownTrack::waveFile() {
    std::string bytes = header(kFrames * 2);
    for (const std::int32_t sample : mixed()) {
        const std::int32_t clipped = std::clamp(sample, -32768, 32767);
        append(bytes, static_cast<std::uint32_t>(clipped), 2);
    }
    return bytes;
}

}  // namespace app
