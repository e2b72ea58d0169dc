// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "output/formats/ExportWriter.h"

namespace output {

/** A playlist (extended M3U in UTF-8) in the order of the Camelot wheel, each major key behind its
 *  relative minor, and in a key by tempo, the slowest first. Tracks without a key come last. */
class Playlist : public ExportWriter {
public:
    Playlist(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;
    void end() override;

private:
    struct Entry {
        int place;  ///< of its key in the order
        double bpm;
        std::string lines;
    };

    DocumentSink write_;
    std::vector<Entry> entries_;
};

}  // namespace output
