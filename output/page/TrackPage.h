// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "output/TrackReport.h"
#include "output/formats/ExportWriter.h"

namespace output {

/** What a page plays: sound of its own, else a file, else nothing. */
struct PageSound {
    /** An audio file that begins with the first frame of music; it becomes part of the page. */
    std::optional<std::string> bytes;
    /** Of the track's file, as seen from the page: "../music/a%20b.flac". */
    std::optional<std::string> address;
};

/** A track as one page for browsers, which loads nothing but the sound that it may refer to.
 *
 *  Its security policy allows the page's own script and style alone, by their hashes. Whatever
 *  stands in names and tags stays text.
 *  @param report  with waves, counted from the first frame of music */
void writeTrackPage(const TrackReport& report, const PageSound& sound, const DocumentSink& write);

}  // namespace output
