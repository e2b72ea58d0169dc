// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "output/TrackReport.h"
#include "output/formats/Peaks.h"

namespace output {

/** Takes the bytes of a document, piece by piece. May throw OutputError. */
using DocumentSink = std::function<void(std::string_view)>;

/** Writes one document in one format. A format reads finished results, wherever they come from. */
class ExportWriter {
public:
    virtual ~ExportWriter() = default;

    virtual void begin() {}

    /** @param peaks  null unless the format wants them */
    virtual void add(const TrackReport& report, const Peaks* peaks) = 0;

    /** A track that could not be analysed: formats without a place for that leave it out. */
    virtual void addFailure(const std::string& /*path*/, const std::string& /*reason*/) {}

    /** Also called when the work is broken off: what was written until then is a whole document. */
    virtual void end() {}
};

/** What a document is to be like, beside its format. */
struct ExportOptions {
    bool withWaves = false;  ///< JSON: the waveform overviews too
    int peakBits = 16;       ///< of a peak, 8 or 16
    std::string toolVersion;
};

}  // namespace output
