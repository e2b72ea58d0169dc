// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/ListedTrack.h"
#include "output/KeyName.h"
#include "output/ReportWriter.h"

namespace output {

/** Writes a list track by track, so that a long one needs no memory. A list is either of tracks or
 *  of failures. Every call may throw what the sink throws. */
class ListWriter {
public:
    virtual ~ListWriter() = default;

    virtual void beginTracks() {}
    virtual void add(const base::ListedTrack& entry) = 0;
    virtual void beginFailures() {}
    virtual void add(const base::ListedFailure& entry) = 0;
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
