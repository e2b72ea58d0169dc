// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** A table of all beats, a line each. Bars are counted from the first downbeat; what lies before it
 *  is bar 0. */
class BeatsCsv : public ExportWriter {
public:
    BeatsCsv(const ExportOptions&, DocumentSink write) : write_(std::move(write)) {}

    void begin() override;
    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    DocumentSink write_;
};

}  // namespace output
