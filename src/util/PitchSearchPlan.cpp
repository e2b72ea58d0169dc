// SPDX-License-Identifier: MIT
#include "util/PitchSearchPlan.h"

namespace beatatlas {

namespace {

constexpr int kFineHop = 2048;
constexpr int kCoarseHop = 3072;

constexpr PitchSearchPlan allCandidates(int hop) {
    return {hop, 0, 1, 13, false};
}
constexpr PitchSearchPlan everyOtherCandidate(int hop) {
    return {hop, 2, 2, 11, true};
}

}  // namespace

PitchSearchPlan pitchSearchPlanOf(int mode, bool isLong) {
    switch (mode) {
    case 1:
        return isLong ? allCandidates(kCoarseHop) : everyOtherCandidate(kFineHop);
    case 2:
        return isLong ? everyOtherCandidate(kCoarseHop) : allCandidates(kCoarseHop);
    case 3:
    case 4:
        return everyOtherCandidate(kCoarseHop);
    default:
        return allCandidates(kFineHop);
    }
}

}  // namespace beatatlas
