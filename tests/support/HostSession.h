// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

#include "beatatlas/beatatlas.hpp"
#include "support/StereoTrack.h"

namespace beatatlas::test {

enum class SessionKind { constant, varied, simple };

/** The arguments with which a host creates a session. */
struct SessionRequest {
    SessionKind kind = SessionKind::constant;
    int rate = 44100;
    /** For simple sessions the end of the sensing range in frames. */
    int sectionBeats = 32;
    bool loud = true;
    bool zoom = true;
    bool key = false;
};

/** Everything a host can read of a session, bit for bit comparable. */
struct SessionResults {
    bool analyzed = false;
    int bpm = 0;
    std::vector<BA_BeatInfo> beats;
    std::vector<BA_WaveInfo> loud;
    std::vector<BA_WaveInfo> dots;
    std::vector<BA_WaveInfo> zoom;
    int mainKey = 0;
    std::array<double, 24> keyPoints{};
    std::array<int, 24> keyRanks{};
    std::array<int, 12> noteCounts{};
    std::array<double, 12> noteValues{};
};

bool sameBits(const SessionResults& a, const SessionResults& b);

/** A session as a host holds it. Releases it and restores the thread's rounding mode. */
class HostSession {
public:
    HostSession(const SessionRequest& request, int totalSamples);
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    void* handle() const { return handle_; }
    /** Feeds frames first … first + count − 1 of the track. */
    void feedPre(const StereoTrack& track, int first, int count);
    void feed(const StereoTrack& track, int first, int count);
    SessionResults results() const;

private:
    void* handle_;
    int callersMode_;
};

/** A whole analysis, fed in calls whose lengths cycle through blockSizes. */
SessionResults analyseTrack(const SessionRequest& request, const StereoTrack& track,
                            const std::vector<int>& blockSizes);

}  // namespace beatatlas::test
