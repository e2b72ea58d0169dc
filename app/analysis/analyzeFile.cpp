// SPDX-License-Identifier: MIT
#include "analysis/analyzeFile.h"

#include <optional>
#include <utility>

namespace app {

output::TrackReport analyzeFile(const std::string& path, media::FileAnalysis::Options options,
                                ProgressLine& progress) {
    const beatatlas::track::Options wanted = options.track;
    options.progress = [&](double fraction, double seconds) { progress.show(fraction, seconds); };
    media::AnalysedFile analysed = media::FileAnalysis(std::move(options)).analyze(path);
    return {std::move(analysed.file), wanted, std::move(analysed.result), std::nullopt, {}};
}

}  // namespace app
