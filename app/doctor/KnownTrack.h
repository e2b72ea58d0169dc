// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace app {

/** A short track whose tempo, beats, bars and key are known, since it is made of them: drums at 120
 *  BPM below chords in A minor, i iv V i, one a bar. It is computed in whole numbers, so that its
 *  samples are the same on every machine. */
struct KnownTrack {
    static constexpr int kRate = 44100;
    static constexpr double kBpm = 120.0;
    static constexpr int kBeatFrames = kRate / 2;
    static constexpr int kBeatsPerBar = 4;
    static constexpr int kBeats = 48;
    static constexpr int kFirstBeat = kRate / 4;
    /** A minor. */
    static constexpr int kKey = 12;

    /** A WAV file of it: mono, 16 bits. */
    static std::string waveFile();
};

}  // namespace app
