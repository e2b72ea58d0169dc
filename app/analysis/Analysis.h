// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/AnalysisOptions.h"
#include "base/AnalysisResult.h"
#include "media/StereoBlock.h"

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
    Analysis(const base::AnalysisOptions& options, int rate, int frames);

    /** Whether the track has to pass once before the analysis proper. */
    bool needsLevels() const { return options_.wantsKey; }

    void putLevels(media::StereoBlock& block);
    void put(media::StereoBlock& block);

    bool isFinished() const;

    /** What the session found. Once isFinished(). */
    base::AnalysisResult result() const;

private:
    struct Release {
        void operator()(void* session) const;
    };

    void* createSession() const;
    std::vector<base::Beat> beats() const;
    std::vector<base::WavePoint> loudWave() const;
    std::vector<base::WavePoint> dotsWave() const;
    std::vector<base::WavePoint> zoomWave() const;
    base::KeyRanking key() const;

    base::AnalysisOptions options_;
    int rate_;
    int frames_;
    std::unique_ptr<void, Release> session_;
};

}  // namespace app
