// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** The peaks of a track in the binary format of audiowaveform, version 2: a header of six 32-bit
 *  numbers, then the peaks, all of them little-endian. */
class PeaksBinary : public ExportWriter {
public:
    PeaksBinary(const ExportOptions& options, DocumentSink write)
        : bits_(options.peakBits), write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    int bits_;
    DocumentSink write_;
};

/** The same as audiowaveform's JSON. */
class PeaksJson : public ExportWriter {
public:
    PeaksJson(const ExportOptions& options, DocumentSink write)
        : bits_(options.peakBits), write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    int bits_;
    DocumentSink write_;
};

}  // namespace output
