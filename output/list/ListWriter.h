// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "output/KeyName.h"
#include "output/ReportWriter.h"

namespace output {

/** A track as a list tells it. */
struct ListEntry {
    std::string path;
    std::string artist;
    std::string title;
    double seconds = 0.0;
    std::optional<double> bpm;
    std::optional<int> key;
    /** Of tempo or key, whichever is less certain, 0 to 1. */
    std::optional<double> confidence;
    bool isCorrected = false;
    bool isGone = false;
};

/** A file that could not be analysed. */
struct FailureEntry {
    std::string path;
    std::string kind;
    std::string reason;
    std::int64_t attempts = 0;
};

/** Writes a list track by track, so that a long one needs no memory. A list is either of tracks or
 *  of failures. Every call may throw what the sink throws. */
class ListWriter {
public:
    virtual ~ListWriter() = default;

    virtual void beginTracks() {}
    virtual void add(const ListEntry& entry) = 0;
    virtual void beginFailures() {}
    virtual void add(const FailureEntry& entry) = 0;
};

enum class ListFormat {
    table,      ///< aligned columns for people
    jsonLines,  ///< one JSON object a line
    csv,        ///< RFC 4180, with a line of names
    playlist,   ///< M3U8
};

/** @param notation  how the table names keys; nothing: "F# minor (11A)" */
std::unique_ptr<ListWriter> makeListWriter(ListFormat format, TextSink write,
                                           const std::optional<KeyNotation>& notation);

}  // namespace output
