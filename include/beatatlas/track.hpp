// SPDX-License-Identifier: MIT
/** @file
 *  Beat Atlas for whole tracks, for C++17 hosts: the interface of track.h in plain values and
 *  exceptions.
 *
 *      using namespace beatatlas::track;
 *      const TrackResult result = analyze({}, 44100, left.data(), right.data(), left.size());
 *      if (result.bpm) std::printf("%.2f BPM\n", *result.bpm);
 *      for (const Beat& beat : result.beats)
 *          if (beat.isDownbeat()) std::printf("bar at %.3f s\n", beat.seconds);
 *
 *  What track.h states about audio, threads, arithmetic and output holds here too. Everything is in
 *  this header; it needs only the library of track.h. */
#ifndef BEATATLAS_TRACK_HPP
#define BEATATLAS_TRACK_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "beatatlas/track.h"

namespace beatatlas::track {

/** Keys that there are: a major and a minor one on each of the twelve notes. */
inline constexpr int kKeyCount = 24;
/** Notes of an octave, from A upward. */
inline constexpr int kPitchClassCount = 12;

/** How tempo and beats are found. */
enum class TempoMode {
    /** Finds out whether steady or varying. */
    automatic = BA_TRACK_TEMPO_AUTO,
    /** One tempo for the whole track, fine-tuned at the end. */
    constant = BA_TRACK_TEMPO_CONSTANT,
    /** The tempo may change during the track. */
    varied = BA_TRACK_TEMPO_VARIED,
    /** Sensed at the beginning only, one regular grid over it all. */
    simple = BA_TRACK_TEMPO_SIMPLE,
    /** No tempo and no beats. */
    off = BA_TRACK_TEMPO_OFF,
};

/** What to find out about a track, and how. */
struct Options {
    /** How tempo and beats are found. */
    TempoMode tempo = TempoMode::automatic;

    /** Varied tempo: the length in beats of the phrase over which the tempo is measured: 4, 8, 16,
     *  32, 64 …; any other number above 0 means 32. */
    int sectionBeats = 32;

    /** Simple tempo: how much of the beginning is sensed, in seconds from 0. A value at or beyond
     *  the length of the track means all of it; 0 means one minute. */
    double rangeSeconds = 0;

    /** Find the key by evidence. */
    bool wantsKey = true;
    /** Also find the key of a session of libbeatatlas, which takes passes of its own. */
    bool wantsSessionKey = false;
    /** Make the three waves. */
    bool wantsWaves = true;

    /** Automatic tempo: a range into which the tempo and its grid are brought by doubling or
     *  halving. Both in BPM, 20 to 1000, the upper end at least twice the lower one; 0 and 0: no
     *  range. */
    double lowestBpm = 0;
    /** The upper end of that range. */
    double highestBpm = 0;
    /** Automatic tempo: 3 or 4 if known; 0: to be found. */
    int beatsPerBar = 0;

    /** The most threads that may work at once, including the calling one; at least 1. */
    int threads = 1;

    /** Called with the progress of the analysis, as stated at BA_TrackOptions. To stop the
     *  analysis, throw; analyze() then throws the same exception. */
    std::function<void(double fraction)> progress;
};

/** Delivers the next frames of a pass over a track: writes up to `frames` samples each to left and
 *  right, full scale ±1.0. Returns how many; 0 when the track is over. To stop the analysis, throw;
 *  analyze() then throws the same exception. */
using Pass = std::function<std::int64_t(float* left, float* right, std::int64_t frames)>;

/** Where the audio of a track comes from. Each pass begins at the first frame and is destroyed when
 *  it is over; what BA_TrackSource states about order and threads holds. */
struct Source {
    /** Begins a pass. */
    std::function<Pass()> open;
    /** Passes are costly or have to wait for a decoder. */
    bool fewestPasses = false;
};

/** One beat of the grid. */
struct Beat {
    /** From the first frame of the track. */
    double seconds = 0.0;
    /** Tempo at this beat, a multiple of 0.01. */
    double bpm = 0.0;
    /** From the first frame of the track, at its rate. */
    std::int64_t frame = 0;
    /** 1, the downbeat, to the number of beats in a bar. */
    int numberInBar = 0;

    /** Whether a bar begins here. */
    bool isDownbeat() const { return numberInBar == 1; }
};

/** How another reading of the beats relates to the chosen one. */
enum class ReadingKind {
    /** Beats half as far apart. */
    twice = BA_TRACK_READING_DOUBLE,
    /** Beats twice as far apart. */
    half = BA_TRACK_READING_HALF,
    /** The same tempo, between the chosen beats. */
    shifted = BA_TRACK_READING_SHIFTED,
    /** Three beats for two. */
    threeToTwo = BA_TRACK_READING_THREE_TO_TWO,
    /** Two beats for three. */
    twoToThree = BA_TRACK_READING_TWO_TO_THREE,
    /** Any other tempo or position. */
    other = BA_TRACK_READING_OTHER,
};

/** Another reading of the beats, compared with the answer before it was brought into a range. */
struct Reading {
    /** How its beats lie to those of the answer. */
    ReadingKind kind = ReadingKind::other;
    /** Its tempo. */
    double bpm = 0.0;

    /** Its probability, 0 to 1; those of the chosen reading and of all others add up to 1. */
    double share = 0.0;

    /** How far its first beat lies after the beat of the answer before it, in beats of the answer,
     *  0 to 1. */
    double shiftBeats = 0.0;
};

/** A section of the track with nearly one tempo. */
struct TempoStretch {
    /** Its first beat. */
    double fromSeconds = 0.0;
    /** The first beat of the next section, or the last beat of the track. */
    double toSeconds = 0.0;
    /** The mean, a multiple of 0.01. */
    double bpm = 0.0;
};

/** What the automatic tempo reports besides tempo and beats. */
struct TempoJudgement {
    /** One tempo, evenly spaced beats; else the beats follow its changes. */
    bool isSteady = true;
    /** Before it was brought into the range of the options. */
    double rawBpm = 0.0;
    /** How sure tempo, level, phase and bars are. */
    BA_TrackConfidence confidence{};
    /** One where the tempo is steady. */
    std::vector<TempoStretch> stretches;
    /** Other than the chosen one, the likeliest first. */
    std::vector<Reading> readings;
};

/** One point of a waveform overview. */
struct WavePoint {
    /** Height; its scale is that of the wave. */
    float level = 0.0F;
    /** Colour class; which ones there are is stated at the wave. */
    int color = 0;
};

/** A key and the evidence for it in a track. Keys are numbered as in SessionKey. */
struct KeyCandidate {
    /** 0 to 23. */
    int key = 0;
    /** Only the scores of one track can be compared. */
    double score = 0.0;
    /** 0 to 1; those of all keys add up to 1. */
    double probability = 0.0;
};

/** A section of the track in one key. */
struct KeySegment {
    /** 0, or the end of the section before. */
    double fromSeconds = 0.0;
    /** For the last section, the length of the track. */
    double toSeconds = 0.0;
    /** 0 to 23. */
    int key = 0;
    /** As in Key. */
    double confidence = 0.0;
};

/** The key by evidence, and how the track is tuned. */
struct Key {
    /** The likeliest first. */
    std::array<KeyCandidate, kKeyCount> ranking{};
    /** The share of tracks of known key, 0 to 1, on which such an answer was right. */
    double confidence = 0.0;
    /** One where the key does not change. */
    std::vector<KeySegment> segments;
    /** How strongly each note sounds, from A upward; the values add up to 1. */
    std::array<double, kPitchClassCount> chroma{};
    /** Hundredths of a semitone above A4 = 440 Hz, -50 to 50. */
    double tuningCents = 0.0;
    /** Frequency of the track's A4. */
    double tuningHz = 440.0;

    /** The likeliest key, 0 to 23. */
    int best() const { return ranking[0].key; }
    /** The next likeliest. */
    int second() const { return ranking[1].key; }
};

/** The key of a session: all keys, best first, and the statistics of the notes. Keys 0 to 11 are
 *  the major keys from A upward, 12 to 23 the minor keys; pitch classes count from A too. */
struct SessionKey {
    /** Best first. */
    std::array<int, kKeyCount> keys{};
    /** Of keys[0], keys[1] … */
    std::array<double, kKeyCount> scores{};
    /** How many of the 12 strongest semitone bands have each note. */
    std::array<int, kPitchClassCount> noteCounts{};
    /** The share of those bands' energy that each note has; they add up to 1. */
    std::array<double, kPitchClassCount> noteShares{};

    /** How far the runner-up lies behind the best, as a share of the best score: 0 (equal) to 1. */
    double runnerUpDistance() const { return (scores[0] - scores[1]) / scores[0]; }
};

/** The results of one analysis. An empty list or a missing value means that nothing was found or
 *  that it was not asked for. */
struct TrackResult {
    /** Hz. */
    int rate = 0;
    /** Length of the track at that rate. */
    std::int64_t frames = 0;
    /** A multiple of 0.01. */
    std::optional<double> bpm;
    /** In order of time. */
    std::vector<Beat> beats;
    /** Of the automatic tempo, where it found one. */
    std::optional<TempoJudgement> judgement;
    /** 400 points; level in 16-bit scale, color 0 to 5. */
    std::vector<WavePoint> loudWave;
    /** 100 points; level of the bass, color 5. */
    std::vector<WavePoint> dotsWave;
    /** 150 points a second; level 0 to 31, color 0 to 7. */
    std::vector<WavePoint> zoomWave;
    /** By evidence. */
    std::optional<Key> key;
    /** Of a session, if the options asked for it. */
    std::optional<SessionKey> sessionKey;

    /** Length of the track. */
    double seconds() const { return secondsAt(frames); }
    /** Where a frame lies, from the first frame of the track. */
    double secondsAt(std::int64_t frame) const { return static_cast<double>(frame) / rate; }
};

/** Why an analysis gave no result: a bad argument, a source of the wrong length. */
class Error : public std::runtime_error {
public:
    /** With the text of BA_TrackStatusText. @param status  BA_TRACK_… */
    explicit Error(int status) : Error(status, BA_TrackStatusText(status)) {}
    /** With a text of its own.
     *  @param status  BA_TRACK_…
     *  @param text    what is wrong, copied */
    Error(int status, const char* text) : std::runtime_error(text), status_(status) {}

    /** BA_TRACK_… */
    int status() const { return status_; }

private:
    int status_;
};

/** Frees a result of the C interface. */
struct TrackRelease {
    /** Calls BA_TrackRelease. */
    void operator()(BA_Track* track) const { BA_TrackRelease(track); }
};

/** A result of the C interface, for hosts that pass it on to its functions. Never null when it
 *  comes from an analysis. */
using TrackHandle = std::unique_ptr<BA_Track, TrackRelease>;

/** Translates between the C interface and values; nothing here is for a host to call. */
namespace detail {

/** Keeps what a callback throws until it can be rethrown in the caller's thread. Of several
 *  exceptions it keeps the first. */
class ThrownByHost {
public:
    template <class Call, class Result>
    Result guard(const Call& call, Result whenThrown) noexcept {
        try {
            return call();
        } catch (...) {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (!first_) first_ = std::current_exception();
            return whenThrown;
        }
    }
    void rethrow() const {
        if (first_) std::rethrow_exception(first_);
    }

private:
    std::mutex mutex_;
    std::exception_ptr first_;
};

/** The host pointer of the C callbacks points to this. */
struct Host {
    const Options& options;
    const Source* source;
    ThrownByHost thrown;
};

inline int showProgress(void* host, double fraction) {
    auto& own = *static_cast<Host*>(host);
    const auto call = [&] { return own.options.progress(fraction), 0; };
    return own.thrown.guard(call, 1);
}

inline void* openPass(void* host) {
    auto& own = *static_cast<Host*>(host);
    const auto call = [&]() -> void* {
        Pass pass = own.source->open();
        if (!pass) throw Error(BA_TRACK_BAD_ARGUMENT, "The source opened an empty pass.");
        return new Pass(std::move(pass));
    };
    return own.thrown.guard(call, static_cast<void*>(nullptr));
}

inline std::int64_t readPass(void* host, void* pass, float* left, float* right,
                             std::int64_t frames) {
    auto& own = *static_cast<Host*>(host);
    const auto call = [&] { return (*static_cast<Pass*>(pass))(left, right, frames); };
    return own.thrown.guard(call, std::int64_t{-1});
}

inline void closePass(void* /*host*/, void* pass) {
    delete static_cast<Pass*>(pass);
}

inline BA_TrackOptions toOptions(const Options& options, Host& host) {
    BA_TrackOptions plain;
    BA_TrackOptionsInit(&plain, sizeof plain);
    plain.tempo = static_cast<std::int32_t>(options.tempo);
    plain.section_beats = options.sectionBeats;
    plain.range_seconds = options.rangeSeconds;
    plain.wants_key = options.wantsKey ? 1 : 0;
    plain.wants_session_key = options.wantsSessionKey ? 1 : 0;
    plain.wants_waves = options.wantsWaves ? 1 : 0;
    plain.threads = options.threads;
    plain.lowest_bpm = options.lowestBpm;
    plain.highest_bpm = options.highestBpm;
    plain.beats_per_bar = options.beatsPerBar;
    if (options.progress) plain.progress = showProgress;
    plain.progress_host = &host;
    return plain;
}

inline std::vector<Beat> beatsOf(const BA_Track* track) {
    std::vector<BA_TrackBeat> records(BA_TrackBeats(track, nullptr, 0));
    BA_TrackBeats(track, records.data(), records.size());
    std::vector<Beat> beats;
    beats.reserve(records.size());
    for (const BA_TrackBeat& record : records)
        beats.push_back({record.seconds, record.bpm, record.frame, record.number_in_bar});
    return beats;
}

inline std::optional<TempoJudgement> judgementOf(const BA_Track* track) {
    TempoJudgement judgement;
    if (BA_TrackTempoConfidence(track, &judgement.confidence) == 0) return std::nullopt;
    judgement.isSteady = BA_TrackIsSteady(track) == 1;
    judgement.rawBpm = BA_TrackRawBpm(track);
    std::vector<BA_TrackReading> records(BA_TrackReadings(track, nullptr, 0));
    BA_TrackReadings(track, records.data(), records.size());
    for (const BA_TrackReading& record : records)
        judgement.readings.push_back(
            {static_cast<ReadingKind>(record.kind), record.bpm, record.share, record.shift_beats});
    std::vector<BA_TrackTempoStretch> stretches(BA_TrackTempoStretches(track, nullptr, 0));
    BA_TrackTempoStretches(track, stretches.data(), stretches.size());
    for (const BA_TrackTempoStretch& stretch : stretches)
        judgement.stretches.push_back({stretch.from_seconds, stretch.to_seconds, stretch.bpm});
    return judgement;
}

inline std::vector<WavePoint> waveOf(const BA_Track* track, int kind) {
    std::vector<BA_WaveInfo> records(BA_TrackWave(track, kind, nullptr, 0));
    BA_TrackWave(track, kind, records.data(), records.size());
    std::vector<WavePoint> points;
    points.reserve(records.size());
    for (const BA_WaveInfo& record : records) points.push_back({record.level, record.color});
    return points;
}

inline std::optional<Key> keyOf(const BA_Track* track) {
    if (BA_TrackKey(track) < 0) return std::nullopt;
    Key key;
    key.confidence = BA_TrackKeyConfidence(track);
    key.tuningCents = BA_TrackTuningCents(track);
    key.tuningHz = BA_TrackTuningHz(track);
    BA_TrackChroma(track, key.chroma.data(), key.chroma.size());
    std::array<BA_TrackKeyCandidate, kKeyCount> ranking{};
    BA_TrackKeyRanking(track, ranking.data(), ranking.size());
    for (std::size_t i = 0; i < ranking.size(); ++i)
        key.ranking[i] = {ranking[i].key, ranking[i].score, ranking[i].probability};
    std::vector<BA_TrackKeySegment> segments(BA_TrackKeySegments(track, nullptr, 0));
    BA_TrackKeySegments(track, segments.data(), segments.size());
    for (const BA_TrackKeySegment& segment : segments)
        key.segments.push_back(
            {segment.from_seconds, segment.to_seconds, segment.key, segment.confidence});
    return key;
}

inline std::optional<SessionKey> sessionKeyOf(const BA_Track* track) {
    if (BA_TrackSessionKey(track) < 0) return std::nullopt;
    std::array<BA_TrackKeyScore, kKeyCount> keys{};
    std::array<BA_TrackNote, kPitchClassCount> notes{};
    BA_TrackSessionKeyRanking(track, keys.data(), keys.size());
    BA_TrackNotes(track, notes.data(), notes.size());
    SessionKey ranking;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        ranking.keys[i] = keys[i].key;
        ranking.scores[i] = keys[i].score;
    }
    for (std::size_t i = 0; i < notes.size(); ++i) {
        ranking.noteCounts[i] = notes[i].count;
        ranking.noteShares[i] = notes[i].share;
    }
    return ranking;
}

inline TrackHandle finish(int status, TrackHandle track, const ThrownByHost& thrown) {
    thrown.rethrow();
    if (status == BA_TRACK_NO_MEMORY) throw std::bad_alloc();
    if (status != BA_TRACK_OK) throw Error(status);
    return track;
}

}  // namespace detail

/** Everything that a result of the C interface holds, in values. @param track  not null */
inline TrackResult resultOf(const BA_Track* track) {
    TrackResult result;
    result.rate = BA_TrackRate(track);
    result.frames = BA_TrackFrames(track);
    if (const double bpm = BA_TrackBpm(track); bpm > 0.0) result.bpm = bpm;
    result.beats = detail::beatsOf(track);
    result.judgement = detail::judgementOf(track);
    result.loudWave = detail::waveOf(track, BA_TRACK_WAVE_LOUD);
    result.dotsWave = detail::waveOf(track, BA_TRACK_WAVE_DOTS);
    result.zoomWave = detail::waveOf(track, BA_TRACK_WAVE_ZOOM);
    result.key = detail::keyOf(track);
    result.sessionKey = detail::sessionKeyOf(track);
    return result;
}

/** Analyses a track that is delivered piece by piece.
 *
 *  @param options  what to find out, and how
 *  @param rate     frames per second: 44100 or 48000
 *  @param frames   length of the track in frames, 1 to 2,147,483,647
 *  @param source   where its audio comes from
 *  @throws Error for an argument out of range, for a source without a function to open it or with
 *          an empty pass, and for a source of another length; std::bad_alloc; and whatever the
 *          source or the progress function throws */
inline TrackHandle analyzeToHandle(const Options& options, int rate, std::int64_t frames,
                                   const Source& source) {
    if (!source.open) throw Error(BA_TRACK_BAD_ARGUMENT, "The source has no function to open it.");
    detail::Host host{options, &source, {}};
    const BA_TrackOptions plainOptions = detail::toOptions(options, host);
    const BA_TrackSource plainSource{
        sizeof(BA_TrackSource),      &host, detail::openPass, detail::readPass, detail::closePass,
        source.fewestPasses ? 1 : 0, 0};
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyze(&plainOptions, rate, frames, &plainSource, &track);
    return detail::finish(status, TrackHandle(track), host.thrown);
}

/** Analyses a track that is delivered piece by piece: analyzeToHandle(), in values. */
inline TrackResult analyze(const Options& options, int rate, std::int64_t frames,
                           const Source& source) {
    return resultOf(analyzeToHandle(options, rate, frames, source).get());
}

/** Analyses a track that lies in memory.
 *  @param options  what to find out, and how
 *  @param rate     frames per second: 44100 or 48000
 *  @param left     `frames` samples, full scale ±1.0
 *  @param right    the same for the other channel
 *  @param frames   length of the track in frames, 1 to 2,147,483,647
 *  @throws Error for an argument out of range; std::bad_alloc; and whatever the progress function
 *          throws */
inline TrackHandle analyzeToHandle(const Options& options, int rate, const float* left,
                                   const float* right, std::int64_t frames) {
    detail::Host host{options, nullptr, {}};
    const BA_TrackOptions plainOptions = detail::toOptions(options, host);
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyzeArrays(&plainOptions, rate, left, right, frames, &track);
    return detail::finish(status, TrackHandle(track), host.thrown);
}

/** Analyses a track that lies in memory: analyzeToHandle(), in values. */
inline TrackResult analyze(const Options& options, int rate, const float* left, const float* right,
                           std::int64_t frames) {
    return resultOf(analyzeToHandle(options, rate, left, right, frames).get());
}

}  // namespace beatatlas::track

#endif
