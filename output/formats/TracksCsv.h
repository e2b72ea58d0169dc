// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** A table of tracks, a line each: what is known of a track as a whole. */
class TracksCsv : public ExportWriter {
public:
    TracksCsv(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void begin() override;
    void add(const TrackReport& report, const Peaks* peaks) override;
    void addFailure(const std::string& path, const std::string& reason) override;

private:
    DocumentSink write_;
};

}  // namespace output
