// SPDX-License-Identifier: MIT
#include "support/TrackSynth.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace beatatlas::test {

namespace {

constexpr int kBeatsPerBar = 4;
constexpr double kHatPan = 0.5;
constexpr double kOuterNotePan = 0.8;
constexpr double kOnBeatHatGain = 0.6;  // the off-beat carries the accent
constexpr double kBassGate = 0.8;       // the share of an eighth a bass note sounds
constexpr std::int64_t kBassFadeMs = 8;
constexpr std::int64_t kChordFadeMs = 25;

/** A linear fade of `fade` frames at both ends of a note, 1 between. */
double fadeAt(std::int64_t frame, Span note, std::int64_t fade) {
    const std::int64_t toEdge = std::min(frame - note.first, note.end - frame);
    return toEdge < fade ? static_cast<double>(toEdge) / static_cast<double>(fade) : 1.0;
}

}  // namespace

TrackSynth::TrackSynth(TrackPlan plan) : TrackSynth(NearestScope(), std::move(plan)) {}

TrackSynth::TrackSynth(const NearestScope& /*nearest*/, TrackPlan plan)
    : plan_(std::move(plan)),
      tempo_(plan_.sampleRate, plan_.introFrames, plan_.bpm, plan_.tempoChanges),
      harmony_(plan_.tonic, plan_.mode, plan_.progression, plan_.concertPitchHz),
      drums_(plan_.sampleRate, plan_.seed),
      // A sawtooth through a gentle low-pass.
      bassTone_({1.0, 0.45, 0.22, 0.11, 0.06, 0.03, 0.015}),
      chordTone_({1.0, 0.5, 0.3, 0.2, 0.1, 0.06}) {
    listBeats();
}

void TrackSynth::listBeats() {
    int beat = 0;
    for (std::int64_t frame = tempo_.frameOfBeat(beat); frame < plan_.lengthFrames;
         frame = tempo_.frameOfBeat(beat)) {
        beats_.push_back({frame, 1 + (beat % kBeatsPerBar)});
        ++beat;
    }
}

std::vector<std::int64_t> TrackSynth::downbeats() const {
    std::vector<std::int64_t> frames;
    for (const TrueBeat& beat : beats_)
        if (beat.number == 1) frames.push_back(beat.frame);
    return frames;
}

void TrackSynth::render(std::int64_t from, std::int64_t count, float* left, float* right) const {
    const NearestScope nearest;
    for (std::int64_t done = 0; done < count;) {
        VoiceMix mix(from + done, std::min(count - done, VoiceMix::kMaxFrames), plan_.lengthFrames);
        addBeats(mix);
        addChords(mix);
        mix.write(plan_.level, left + done, right + done);
        done += mix.end() - mix.from();
    }
}

StereoTrack TrackSynth::renderAll() const {
    const auto length = static_cast<std::size_t>(std::max<std::int64_t>(plan_.lengthFrames, 0));
    StereoTrack track{std::vector<float>(length), std::vector<float>(length)};
    render(0, plan_.lengthFrames, track.left.data(), track.right.data());
    return track;
}

int TrackSynth::firstBeatToPlay(std::int64_t from) const {
    // The kick decays slowest; one beat more, for the bass note that lasts until the next beat.
    const auto later = std::upper_bound(
        beats_.begin(), beats_.end(), from - drums_.kickFrames(),
        [](std::int64_t frame, const TrueBeat& beat) { return frame < beat.frame; });
    return std::max(static_cast<int>(later - beats_.begin()) - 1, 0);
}

const InstrumentLevels& TrackSynth::levelsOfBar(int bar) const {
    const InstrumentLevels* levels = &plan_.levels;
    for (const Section& section : plan_.sections)
        if (section.firstBar <= bar) levels = &section.levels;
    return *levels;
}

void TrackSynth::addBeats(VoiceMix& mix) const {
    const int beatCount = static_cast<int>(beats_.size());
    for (int beat = firstBeatToPlay(mix.from()); beat < beatCount; ++beat) {
        const Span onBeat = {beats_[static_cast<std::size_t>(beat)].frame,
                             tempo_.frameOfBeat(beat + plan_.swing)};
        if (onBeat.first >= mix.end()) break;
        const Span offBeat = {onBeat.end, tempo_.frameOfBeat(beat + 1)};
        addDrums(mix, beat, onBeat.first, offBeat.first);
        addBassNote(mix, beat, onBeat);
        addBassNote(mix, beat, offBeat);
    }
}

void TrackSynth::addDrums(VoiceMix& mix, int beat, std::int64_t onBeat,
                          std::int64_t offBeat) const {
    const InstrumentLevels& levels = levelsOfBar(beat / kBeatsPerBar);
    const bool isOneOrThree = beat % 2 == 0;
    if (isOneOrThree || plan_.kickPattern == KickPattern::everyBeat)
        addKick(mix, onBeat, levels.kick);
    if (!isOneOrThree) addSnare(mix, onBeat, levels.snare);
    addHat(mix, onBeat, kOnBeatHatGain * levels.hats);
    addHat(mix, offBeat, levels.hats);
}

void TrackSynth::addKick(VoiceMix& mix, std::int64_t onset, double gain) const {
    mix.add({onset, onset + drums_.kickFrames()}, gain, 0.0,
            [&](std::int64_t frame) { return drums_.kick(frame - onset); });
}

void TrackSynth::addSnare(VoiceMix& mix, std::int64_t onset, double gain) const {
    mix.add({onset, onset + drums_.snareFrames()}, gain, 0.0,
            [&](std::int64_t frame) { return drums_.snare(frame - onset, frame); });
}

void TrackSynth::addHat(VoiceMix& mix, std::int64_t onset, double gain) const {
    mix.add({onset, onset + drums_.hatFrames()}, gain, kHatPan * plan_.stereoWidth,
            [&](std::int64_t frame) { return drums_.hat(frame - onset, frame); });
}

void TrackSynth::addBassNote(VoiceMix& mix, int beat, Span eighth) const {
    const int bar = beat / kBeatsPerBar;
    const auto held =
        static_cast<std::int64_t>(static_cast<double>(eighth.end - eighth.first) * kBassGate);
    const Span note = {eighth.first, eighth.first + held};
    const std::int64_t fade = (plan_.sampleRate * kBassFadeMs) / 1000;
    const Phase step = phaseIncrement(harmony_.chordOfBar(bar).bassHz, plan_.sampleRate);
    mix.add(note, levelsOfBar(bar).bass, 0.0, [&](std::int64_t frame) {
        return fadeAt(frame, note, fade) * bassTone_.at(step * static_cast<Phase>(frame));
    });
}

void TrackSynth::addChords(VoiceMix& mix) const {
    if (mix.from() < plan_.introFrames) addChord(mix, 0, {0, plan_.introFrames});
    const int barCount = (static_cast<int>(beats_.size()) + kBeatsPerBar - 1) / kBeatsPerBar;
    for (int bar = firstBeatToPlay(mix.from()) / kBeatsPerBar; bar < barCount; ++bar) {
        const Span held = {tempo_.frameOfBeat(bar * kBeatsPerBar),
                           tempo_.frameOfBeat((bar + 1) * kBeatsPerBar)};
        if (held.first >= mix.end()) break;
        addChord(mix, bar, held);
    }
}

void TrackSynth::addChord(VoiceMix& mix, int bar, Span held) const {
    const std::array<double, 3>& notes = harmony_.chordOfBar(bar).notesHz;
    const double gain = levelsOfBar(bar).chords / static_cast<double>(notes.size());
    const std::int64_t fade = (plan_.sampleRate * kChordFadeMs) / 1000;
    double pan = -kOuterNotePan;
    for (const double hz : notes) {
        const Phase step = phaseIncrement(hz, plan_.sampleRate);
        mix.add(held, gain, pan * plan_.stereoWidth, [&](std::int64_t frame) {
            return fadeAt(frame, held, fade) * chordTone_.at(step * static_cast<Phase>(frame));
        });
        pan += kOuterNotePan;
    }
}

}  // namespace beatatlas::test
