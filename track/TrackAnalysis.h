// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>

#include "beatatlas/track.h"
#include "track/BeatFinder.h"
#include "track/KeySession.h"
#include "track/Outcome.h"
#include "track/Progress.h"
#include "track/TrackResult.h"
#include "track/key/EvidenceKey.h"

namespace beatatlas::track::inner {

/** One analysis: decides which listeners receive which pass over the source, and in which thread.
 *
 *  The key by evidence shares the pass of the beats. The key session needs the levels of the whole
 *  track before its first frame. If passes are quick, an extra pass measures them first; otherwise
 *  the pass for the beats does. */
class TrackAnalysis {
public:
    /** @param options,source  already checked; must outlive the analysis
     *  @param rate            44100 or 48000 Hz
     *  @param frames          length of the track, at least 1
     *  @throws std::bad_alloc */
    TrackAnalysis(const BA_TrackOptions& options, int rate, int frames,
                  const BA_TrackSource& source, Outcome& outcome);

    /** Runs the whole analysis. @throws Failure, std::bad_alloc */
    TrackResult run();

private:
    /** The share of each part in the host's progress, in units per frame. */
    struct Units {
        std::int64_t levels;
        std::int64_t beats;
        std::int64_t closing;
        std::int64_t sessionKey;
    };

    static Units unitsOf(const BA_TrackOptions& options, bool isFewestPasses);
    std::int64_t totalUnits() const;
    void findAll();
    void findBeats();
    void findWithSessionKey();
    void findInFewestPasses();
    void hear(std::initializer_list<Listener*> listeners, std::int64_t unitsPerFrame);
    void hearSessionKey();
    Listener* evidenceKey() { return key_ ? &*key_ : nullptr; }
    void closeBeats();
    template <class Beats, class Key>
    void sideBySide(const Beats& beats, const Key& key);

    const BA_TrackOptions& options_;
    int rate_;
    int frames_;
    const BA_TrackSource& source_;
    Outcome& outcome_;
    Units units_;
    Progress progress_;
    std::unique_ptr<BeatFinder> beats_;
    Levels levels_;
    std::optional<EvidenceKey> key_;        // if wanted
    std::optional<KeySession> sessionKey_;  // if wanted
};

}  // namespace beatatlas::track::inner
