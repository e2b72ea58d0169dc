// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "io/ProgressLine.h"
#include "media/FileAnalysis.h"
#include "output/KeyReport.h"

namespace app {

/** Decodes one file and finds its key. The buffer is gathered while the track is decoded for the
 *  session. */
class KeyAnalyzer {
public:
    /** @param reading  how to read the file; its options of the analysis are ignored */
    KeyAnalyzer(const output::KeyOptions& options, media::FileAnalysis::Options reading)
        : options_(options), reading_(std::move(reading)) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    output::KeyReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    output::KeyOptions options_;
    media::FileAnalysis::Options reading_;
};

}  // namespace app
