// SPDX-License-Identifier: MIT
#include "support/HostSession.h"

#include <algorithm>
#include <cfenv>
#include <cstring>

namespace beatatlas::test {

namespace {

using CreateFunction = void* (*)(int, int, bool, bool, bool);

CreateFunction createFunctionOf(const SessionRequest& request) {
    const bool is48k = request.rate == 48000;
    switch (request.kind) {
    case SessionKind::constant:
        return is48k ? BA_CreateConst48k : BA_CreateConst44k;
    case SessionKind::varied:
        return is48k ? BA_CreateVaried48k : BA_CreateVaried44k;
    case SessionKind::simple:
        break;
    }
    return is48k ? BA_CreateSimple48k : BA_CreateSimple44k;
}

template <class T>
bool sameArray(const T& a, const T& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(a[0])) == 0);
}

// Cuts the track into calls whose lengths cycle through blockSizes.
template <class Feed>
void inBlocks(int frames, const std::vector<int>& blockSizes, Feed feed) {
    std::size_t turn = 0;
    for (int first = 0; first < frames;) {
        const int count = std::min(blockSizes[turn++ % blockSizes.size()], frames - first);
        feed(first, count);
        first += count;
    }
}

}  // namespace

bool sameBits(const SessionResults& a, const SessionResults& b) {
    return a.analyzed == b.analyzed && a.bpm == b.bpm && sameArray(a.beats, b.beats) &&
           sameArray(a.loud, b.loud) && sameArray(a.dots, b.dots) && sameArray(a.zoom, b.zoom) &&
           a.mainKey == b.mainKey && sameArray(a.keyPoints, b.keyPoints) &&
           a.keyRanks == b.keyRanks && a.noteCounts == b.noteCounts &&
           sameArray(a.noteValues, b.noteValues);
}

HostSession::HostSession(const SessionRequest& request, int totalSamples)
    : handle_(nullptr), callersMode_(std::fegetround()) {
    handle_ = createFunctionOf(request)(totalSamples, request.sectionBeats, request.loud,
                                        request.zoom, request.key);
}

HostSession::~HostSession() {
    BA_Release(handle_);
    std::fesetround(callersMode_);
}

void HostSession::feedPre(const StereoTrack& track, int first, int count) {
    // The interface takes float*, though it only reads.
    BA_SetSamplePre(handle_, const_cast<float*>(track.left.data()) + first,
                    const_cast<float*>(track.right.data()) + first, count);
}

void HostSession::feed(const StereoTrack& track, int first, int count) {
    BA_SetSample(handle_, const_cast<float*>(track.left.data()) + first,
                 const_cast<float*>(track.right.data()) + first, count);
}

SessionResults HostSession::results() const {
    SessionResults r;
    r.analyzed = BA_Analyzed(handle_);
    r.bpm = BA_GetBpm(handle_);
    r.beats.resize(static_cast<std::size_t>(BA_GetBeatNum(handle_)));
    BA_GetBeatList(handle_, r.beats.data());
    r.loud.resize(400);
    r.loud.resize(static_cast<std::size_t>(BA_GetLoudWave(handle_, r.loud.data(), 0)));
    r.dots.resize(100);
    r.dots.resize(static_cast<std::size_t>(BA_GetDotsWave(handle_, r.dots.data(), 0)));
    r.zoom.resize(static_cast<std::size_t>(BA_GetZoomWave(handle_, nullptr)));
    if (!r.zoom.empty()) BA_GetZoomWave(handle_, r.zoom.data());
    r.mainKey = BA_GetMainKey(handle_);
    BA_GetKeyPoint(handle_, r.keyPoints.data());
    BA_GetKeyRank(handle_, r.keyRanks.data());
    BA_GetNoteEncount(handle_, r.noteCounts.data());
    BA_GetNoteEncountVal(handle_, r.noteValues.data());
    return r;
}

SessionResults analyseTrack(const SessionRequest& request, const StereoTrack& track,
                            const std::vector<int>& blockSizes) {
    HostSession session(request, track.frames());
    if (request.key)
        inBlocks(track.frames(), blockSizes,
                 [&](int first, int count) { session.feedPre(track, first, count); });
    inBlocks(track.frames(), blockSizes,
             [&](int first, int count) { session.feed(track, first, count); });
    return session.results();
}

}  // namespace beatatlas::test
