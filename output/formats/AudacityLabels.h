// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/formats/ExportWriter.h"

namespace output {

/** A label track of Audacity: a line for each label, its beginning and end in seconds and its text,
 *  with tabs between. Labels before position 0 are left out. */
class AudacityLabels : public ExportWriter {
public:
    enum class Kind {
        beats,    ///< every beat, with its bar and its number within: "12.3"
        bars,     ///< every downbeat, with the number of its bar, counted from 1
        numbers,  ///< every beat, with its number within its bar
    };

    AudacityLabels(Kind kind, DocumentSink write) : kind_(kind), write_(std::move(write)) {}

    void add(const TrackReport& report, const Peaks* peaks) override;

private:
    std::string labelOf(int bar, const beatatlas::track::Beat& beat) const;

    Kind kind_;
    DocumentSink write_;
};

}  // namespace output
