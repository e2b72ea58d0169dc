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

/** One analysis: decides who hears which pass over the source, and in which thread.
 *
 *  The key by evidence hears what the beats are found in. The key session has to know the levels of
 *  the whole track before it hears the first frame. Where passes are quick one of them goes before
 *  for that; otherwise the beats' pass takes them. */
class TrackAnalysis {
public:
    /** @param options,source  checked, and alive as long as the analysis
     *  @throws std::bad_alloc */
    TrackAnalysis(const BA_TrackOptions& options, int rate, int frames,
                  const BA_TrackSource& source, Outcome& outcome);

    /** Does it all. @throws Failure, std::bad_alloc */
    TrackResult run();

private:
    /** What each part counts in the host's progress, for every frame. */
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
    std::optional<EvidenceKey> key_;        // when it is wanted
    std::optional<KeySession> sessionKey_;  // the same holds for it
};

}  // namespace beatatlas::track::inner
