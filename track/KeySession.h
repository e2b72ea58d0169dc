// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "key/KeyRankMaker.h"
#include "session/PreChecker.h"
#include "track/Listener.h"
#include "track/TrackResult.h"

namespace beatatlas::track::inner {

/** The levels of a track, which its key session needs beforehand. */
class Levels : public Listener {
public:
    void hear(const Block& block) override;

    const PreChecker& values() const { return checker_; }

private:
    PreChecker checker_;
};

/** The session's key of a track, found by the key stage of a session of the core alone.
 *
 *  Life: construct → setLevels() → hear the whole track → addTo(). */
class KeySession : public Listener {
public:
    /** @throws std::bad_alloc */
    KeySession(int rate, int frames);

    void setLevels(const Levels& levels);

    /** The last block runs the closing analysis. @throws std::bad_alloc, also where the core itself
     *  would skip frames and go on */
    void hear(const Block& block) override;

    void addTo(TrackResult& result) const;

private:
    KeyRankMaker maker_;
    std::vector<float> mono_;           // a block in the core's two forms
    std::vector<std::int16_t> stereo_;  // both channels in turn
};

}  // namespace beatatlas::track::inner
