// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "analysis/AnalysisOptions.h"
#include "analysis/AnalysisResult.h"
#include "audio/StereoBlock.h"

struct BA_WaveInfo;

namespace app {

/** One analysis session of the library, and the only place of the tool that calls it.
 *
 *  Life: construct → with needsLevels(), the whole track through putLevels() → the whole track through put() →
 *  result(). Every call gives the thread its rounding mode back. */
class Analysis {
public:
    /** @param rate    44,100 or 48,000
     *  @param frames  length of the track, above 0
     *  @throws std::bad_alloc */
    Analysis(const AnalysisOptions& options, int rate, int frames);

    /** Whether the track has to pass once before the analysis proper. */
    bool needsLevels() const { return options_.wantsKey; }

    void putLevels(StereoBlock& block);
    void put(StereoBlock& block);

    bool isFinished() const;

    /** What the session found. Once isFinished(). */
    AnalysisResult result() const;

private:
    struct Release {
        void operator()(void* session) const;
    };

    void* createSession() const;
    std::vector<Beat> beats() const;
    std::vector<WavePoint> loudWave() const;
    std::vector<WavePoint> dotsWave() const;
    std::vector<WavePoint> zoomWave() const;
    KeyRanking key() const;

    AnalysisOptions options_;
    int rate_;
    int frames_;
    std::unique_ptr<void, Release> session_;
};

}  // namespace app
