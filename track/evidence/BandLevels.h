// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "track/evidence/BandSums.h"
#include "track/evidence/LevelCode.h"
#include "track/evidence/SpectrumStream.h"

namespace beatatlas::track::inner {

/** Groups of bands with separate onsets: low (up to 170 Hz), low middle (up to 520 Hz), middle (up
 *  to 2 kHz), high middle (up to 5 kHz) and high (up to 15.5 kHz). */
inline constexpr std::size_t kGroups = 5;
enum Group : std::size_t { kLow, kLowMiddle, kMiddle, kHighMiddle, kHigh };

/** The spectrum of a track at 150 frames a second: its levels in bands of a fifth of an octave.
 *
 *  Levels are judged relative to the loudness of the whole track, which is known only at its end.
 *  Until then each level is kept in 16 bits: about 10 kB per second of audio.
 *
 *  Life: construct, rounding to nearest → put() per block → finish() → takeChunk() until it returns
 *  null. */
class BandLevels {
public:
    static constexpr int kFramesPerSecond = 150;
    // About an hour. The allocator returns blocks of more than 32 MB to the system as soon as they
    // are freed, and of the last block only the pages written take memory.
    static constexpr std::size_t kChunkFrames = std::size_t{1} << 19;

    /** @param rate  44100 or 48000 Hz */
    explicit BandLevels(int rate);

    /** Takes the mean of both channels, full scale ±1.0. */
    void put(const float* mono, std::int64_t samples);
    void finish();

    std::int64_t frames() const { return frames_; }
    std::size_t bands() const { return edges_.size() - 1; }
    /** Bands of group g: from groupStarts()[g] to groupStarts()[g + 1], exclusive. */
    const std::array<std::size_t, kGroups + 1>& groupStarts() const { return groupStarts_; }

    /** The level, a magnitude of the spectrum, that the mean over all bands exceeds in one frame of
     *  ten; 0 for silence. Call between finish() and the first takeChunk().
     *  @param levelOfCode  the result of levelsOfCodes() */
    double loudLevel(const std::vector<float>& levelOfCode) const;

    /** Hands over the codes of the next kChunkFrames frames, band by band within a frame; null
     *  after the last. */
    std::unique_ptr<LevelCode[]> takeChunk();

private:
    void codeBatch(const FrameSpectra& spectra, int frames);
    void codeFrame(BandSums& sums);
    LevelCode* codesOf(std::int64_t frame) const;
    LevelCode* nextFrame();

    int hop_;
    // Bins at which a band begins, and the end of the last one.
    std::vector<int> edges_;
    std::array<std::size_t, kGroups + 1> groupStarts_{};
    int bins_;           // that are used, a multiple of 16
    BandSums evenSums_;  // of the first of two frames
    BandSums oddSums_;
    SpectrumStream stream_;
    std::vector<std::unique_ptr<LevelCode[]>> chunks_;
    std::size_t chunksTaken_ = 0;
    std::int64_t samples_ = 0;
    std::int64_t frames_ = 0;
};

}  // namespace beatatlas::track::inner
