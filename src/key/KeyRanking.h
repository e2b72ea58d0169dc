// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "key/ChromaFolder.h"
#include "key/pitchClasses.h"

namespace beatatlas {

/** The 24 keys of a track, best first, with their scores. */
class KeyRanking {
public:
    /** Keys in the order of their numbers, all scores 0. */
    void reset();

    /** Ranks the keys of a track by its chroma. Ends on every chroma, NaN and infinities included.
     *  Rounds toward zero throughout: call it in that mode. */
    void rank(const Chroma& chroma);

    const std::array<std::int32_t, kKeys>& keys() const { return keys_; }

    /** In the order of keys(). */
    const std::array<double, kKeys>& scores() const { return scores_; }

private:
    void score(const Chroma& chroma);
    void sort();
    bool settleParallelKeys(const Chroma& chroma);

    std::array<std::int32_t, kKeys> keys_{};
    std::array<double, kKeys> scores_{};
};

/** The first of score, score - step, score - 2 step … that is not at or above limit, each
 *  difference rounded toward zero; or the one from which subtracting takes nothing away any more.
 *  step > 0.
 *
 *  The bits are those of the plain loop, which may take more rounds than anyone can wait for. */
double subtractUntilBelow(double score, double step, double limit);

}  // namespace beatatlas
