// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <vector>

#include "beatatlas/track.h"
#include "support/StereoTrack.h"

namespace beatatlas::test {

/** A track in the scale of whole-track analysis, ±1.0. */
struct Audio {
    int rate = 44100;
    std::vector<float> left;
    std::vector<float> right;

    std::int64_t frames() const { return static_cast<std::int64_t>(left.size()); }
};

/** The same samples; a power of two lies between the scales. */
Audio inFullScale(int rate, const StereoTrack& track);

/** A few seconds of drums, bass and chords. */
Audio shortMusic(int rate = 44100, int seconds = 4, double bpm = 128.0);

/** Everything a host can read of a track. */
struct Found {
    int status = BA_TRACK_OK;
    bool hasTrack = false;
    int rate = 0;
    std::int64_t frames = 0;
    double bpm = 0.0;
    std::vector<BA_TrackBeat> beats;
    std::vector<BA_WaveInfo> waves[3];
    int key = 0;  // by evidence
    double keyConfidence = 0.0;
    double tuningCents = 0.0;
    double tuningHz = 0.0;
    std::vector<BA_TrackKeyCandidate> keys;
    std::vector<BA_TrackKeySegment> keySegments;
    std::vector<double> chroma;
    int sessionKey = 0;
    std::vector<BA_TrackKeyScore> ranking;  // of the session
    std::vector<BA_TrackNote> notes;
};

bool sameBits(const Found& a, const Found& b);

/** Reads a result and releases it. */
Found readAndRelease(int status, BA_Track* track);

BA_TrackOptions defaultsOf();

/** The defaults, and the session's key too. */
BA_TrackOptions allWanted();

Found analyseArrays(const BA_TrackOptions& options, const Audio& audio);

/** A host's source that hands out audio and watches how it is asked for it. */
class WatchedSource {
public:
    explicit WatchedSource(const Audio& audio) : audio_(audio) {}

    // What it does; to be set before the analysis.
    /** The most frames reads hand out, in turn; empty: all. */
    std::vector<std::int64_t> readSizes;

    /** What passes hand out, in turn and the last one on; after the audio silence; empty: the
     *  audio. */
    std::vector<std::int64_t> lengths;

    /** This open, from 1, gives null. */
    int failsAtOpen = 0;
    /** This read, from 1, gives failure. */
    long failsAtRead = 0;
    std::int64_t failure = -1;
    bool isFewestPasses = false;
    std::function<void()> atEveryCall = [] {};

    BA_TrackSource asSource();
    Found analyse(const BA_TrackOptions& options, std::int64_t frames);
    Found analyse(const BA_TrackOptions& options) { return analyse(options, audio_.frames()); }

    // What it saw.
    int opens() const { return opens_; }
    int mostOpen() const { return mostOpen_; }
    long reads() const { return reads_; }
    bool areAllClosed() const { return open_.empty() && closes_ == opens_ - failedOpens_; }
    bool wasMisused() const { return wasMisused_; }
    std::int64_t mostAsked() const { return mostAsked_; }

private:
    struct PassState;

    static void* openPass(void* host);
    static std::int64_t readPass(void* host, void* pass, float* left, float* right,
                                 std::int64_t frames);
    static void closePass(void* host, void* pass);
    std::int64_t lengthOfPass(int number) const;
    std::int64_t handOut(PassState& pass, float* left, float* right, std::int64_t frames);

    const Audio& audio_;
    std::mutex mutex_;  // of what follows
    std::set<PassState*> open_;
    int opens_ = 0;
    int failedOpens_ = 0;
    int closes_ = 0;
    int mostOpen_ = 0;
    std::int64_t mostAsked_ = 0;
    bool wasMisused_ = false;
    long reads_ = 0;
};

}  // namespace beatatlas::test
