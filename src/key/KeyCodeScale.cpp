// SPDX-License-Identifier: MIT
#include "beatatlas/utilities.h"
#include "key/KeyCandidates.h"
#include "key/PitchClassStrengths.h"

int KeyCodeScale(S_KEY_SCALE_RESULT* /*result*/, float* samples, long n, float rate, float ref,
                 int hopDivisor, int mode, const char* /*text*/) {
    const beatatlas::KeyBuffer buffer{samples, n, rate, ref, hopDivisor, mode};
    return beatatlas::keyOfStrengths(beatatlas::pitchClassStrengths(buffer), mode,
                                     buffer.lengthClass());
}
