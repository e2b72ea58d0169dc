// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "beatatlas/track.hpp"
#include "click/ClickMixer.h"
#include "media/audioKinds.h"

namespace app {

/** A track with clicks on its beats, as a file. */
class ClickTrack {
public:
    struct Options {
        double levelDb = 0.0;
        ClickPlace place = ClickPlace::over;
    };

    /** @param analysis  of the track; its beats are clicked
     *  @param peak      the track's, by louderPeak() */
    ClickTrack(const beatatlas::track::TrackResult& analysis, double peak, const Options& options)
        : analysis_(analysis), peak_(peak), options_(options) {}

    /** Decodes the track again, a stretch at a time, and writes it with its clicks, at the rate of
     *  the analysis or, where that kind of file does not have it, at its highest. The file appears
     *  whole or not at all.
     *  @param shown  is told how much is done, 0 to 1
     *  @return as media::OutputFile::commit()
     *  @throws TrackError when the track is no longer the one that was analysed; OutputError,
     *          Interrupted */
    std::string write(const std::string& trackPath, const std::string& outputPath,
                      const media::AudioKind& kind, const std::function<void(double)>& shown);

    /** How far the music was lowered in write(), dB; 0 or more. */
    double loweredDb() const { return loweredDb_; }

private:
    std::vector<Click> clicksAt(int rate) const;

    const beatatlas::track::TrackResult& analysis_;
    double peak_;
    Options options_;
    double loweredDb_ = 0.0;
};

}  // namespace app
