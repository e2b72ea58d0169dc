// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** A JAMS document: beats, tempo, keys and sections of one track as annotations in the namespaces
 *  beat, tempo, key_mode and segment_open.
 *
 *  Humphrey, Salamon, Nieto, Forsyth, Bittner, Bello, "JAMS: A JSON Annotated Music Specification
 *  for Reproducible MIR Research", ISMIR 2014. */
class JamsExport : public ExportWriter {
public:
    JamsExport(const ExportOptions& options, DocumentSink write)
        : toolVersion_(options.toolVersion), write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    std::string toolVersion_;
    DocumentSink write_;
};

}  // namespace output
