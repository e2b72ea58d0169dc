// SPDX-License-Identifier: MIT
#include "analysis/analyzeFile.h"

#include <optional>
#include <utility>

namespace app {

output::TrackReport analyzeFile(const std::string& path, media::FileAnalysis::Options options,
                                ProgressLine& progress, double share) {
    const beatatlas::track::Options wanted = options.track;
    options.progress = [&](double fraction, double seconds) {
        progress.show(fraction * share, seconds);
    };
    media::AnalysedFile analysed = media::FileAnalysis(std::move(options)).analyze(path);
    return {std::move(analysed.file), wanted, std::move(analysed.result), std::nullopt, {}};
}

}  // namespace app
