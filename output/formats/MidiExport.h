// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** A Standard MIDI File of type 1: a track of tempos and time signatures, and a track of clicks,
 *  one note for each beat on the percussion channel. */
class MidiExport : public ExportWriter {
public:
    MidiExport(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    DocumentSink write_;
};

}  // namespace output
