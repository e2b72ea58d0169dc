// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/BankBlock.h"
#include "key/KeyRankMaker.h"
#include "session/SessionCascades.h"

namespace beatatlas {

/** Does the steps of a session's filter bank, and beside them filters what waits in a KeyRankMaker:
 *  both wait for the last outputs of their own sections, not for each other. */
class KeyBandRunner {
public:
    using Block = BankBlock<SessionCascades>;

    /** @param most  frames to filter for the key at the most */
    KeyBandRunner(KeyRankMaker& keyRankMaker, int most);
    KeyBandRunner(const KeyBandRunner&) = delete;
    KeyBandRunner& operator=(const KeyBandRunner&) = delete;

    /** The steps of a block of n samples. */
    void operator()(Block& block, int n);

private:
    using BandBlock = KeyRankMaker::BandBlock;

    template <std::size_t kWidth>
    struct Kernel;

    void take(int frames, const std::int16_t* samples, int n);

    KeyRankMaker& keyRankMaker_;
    BandBlock key_;  // what is left of it
};

}  // namespace beatatlas
