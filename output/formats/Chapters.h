// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** FFmpeg's text of metadata: the track's name and a chapter for each of its sections, in frames of
 *  the analysis. */
class FfmpegMetadata : public ExportWriter {
public:
    FfmpegMetadata(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    DocumentSink write_;
};

/** Matroska's chapters as XML: one for each section of the track. */
class MatroskaChapters : public ExportWriter {
public:
    MatroskaChapters(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    DocumentSink write_;
};

}  // namespace output
