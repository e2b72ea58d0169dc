// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"

namespace catalogue {

/** XXH3-128, big end first, of a track's decoded stereo at the rate of its analysis. Two files of
 *  one hash hold the same sound, however they are named and tagged. */
using AudioHash = std::array<std::uint8_t, 16>;

/** By what a file is taken for unchanged, as it was when it was read. */
struct FileState {
    std::int64_t size = 0;                 ///< bytes
    std::int64_t modifiedNanoseconds = 0;  ///< since 1970

    bool operator==(const FileState&) const = default;
};

/** A track's file. */
struct TrackRow {
    /** Absolute; any bytes. */
    std::string path;
    FileState state;
    AudioHash hash{};
    base::TrackFormat format;
    /** Length at the rate of the analysis, format.sessionRate. */
    std::int64_t frames = 0;
    double seconds = 0.0;
};

/** One analysis of a track as the catalogue stores it. */
struct ResultRow {
    /** What was asked for, see parametersText(). */
    std::string parameters;
    std::string toolVersion;
    /** Processor time. */
    double analysisSeconds = 0.0;
    /** What there was to warn of, a sentence each. */
    std::vector<std::string> warnings;

    std::optional<double> bpm;
    /** As in TempoJudgement; nothing in modes other than automatic. */
    std::optional<double> rawBpm;
    std::optional<bool> isSteady;
    BA_TrackConfidence confidence{};

    /** 0 to 23; -1: none. */
    int key = -1;
    double keyConfidence = 0.0;
    double tuningCents = 0.0;

    /** JSON: readings, stretches, everything of the keys, the state of the file. */
    std::string details;
    /** As encodeBeats() and encodeWave() make them; empty where there are none. */
    std::string beats;
    std::string loudWave;
    std::string dotsWave;
    std::string zoomWave;
};

/** A track and one analysis of it: what a worker hands over, and what lies in the catalogue. */
struct Analysed {
    TrackRow track;
    ResultRow result;
};

/** A track and its analysis as the formats take them. */
struct WholeTrack {
    base::TrackSource source;
    beatatlas::track::Options options;
    beatatlas::track::TrackResult result;
};

/** @param file      where the track came from; its path is absolute
 *  @param warnings  a sentence each, without its subject */
Analysed makeAnalysed(const base::TrackSource& file, const FileState& state, const AudioHash& hash,
                      const beatatlas::track::Options& options,
                      const beatatlas::track::TrackResult& result, double analysisSeconds,
                      std::vector<std::string> warnings, std::string toolVersion);

/** Everything back, to the bit.
 *  @throws DamagedRecord when a blob or a text is not what makeAnalysed() writes */
WholeTrack wholeTrack(const Analysed& analysed);

/** The options that change a result, as JSON in one fixed form: two analyses with the same text
 *  answer the same question. Threads and progress are no part of it, nor is what the tempo mode
 *  does not use. */
std::string parametersText(const beatatlas::track::Options& options);

/** The options back. @throws DamagedRecord when the text is not one of parametersText() */
beatatlas::track::Options optionsOf(const std::string& parameters);

/** Why a file has no result. */
enum class FailureKind {
    damaged,      ///< music that cannot be analysed: cut off, undecodable
    notAudio,     ///< no music at all
    timeLimit,    ///< took longer than a scan allows
    memoryLimit,  ///< took more memory than a scan allows
    crashed,      ///< ended the worker that read it
    unreadable,   ///< the system refused to let it be read
    vanished,     ///< was gone when its turn came
};

/** As it stands in the catalogue: "damaged", "not-audio", "time-limit" … */
const char* failureName(FailureKind kind);

struct Failure {
    FailureKind kind = FailureKind::damaged;
    /** As told to people, without the file's name. */
    std::string reason;
    /** The limit that was exceeded, in seconds or bytes: with a higher one the file is tried
     *  again. */
    std::optional<double> limit = {};
};

}  // namespace catalogue
