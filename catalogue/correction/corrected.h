// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "beatatlas/track.hpp"
#include "catalogue/correction/edits.h"

namespace catalogue {

/** A result with corrections laid over it, one after the other; docs/catalogue.md says what each
 *  does to beats, bars, tempo and key. What a person has said is certain: the confidence that
 *  belongs to it becomes 1, and other readings of the tempo go. An edit that does not apply to what
 *  the edits before it left changes nothing. */
beatatlas::track::TrackResult corrected(beatatlas::track::TrackResult result,
                                        const std::vector<Edit>& edits);

/** Why an edit cannot be applied to a result, a sentence without its subject; null when it can:
 *  there are beats where beats are moved, and some are left; the tempo stays between 20 and 1000
 *  BPM; a downbeat lies within the track. */
const char* refusalOf(const beatatlas::track::TrackResult& result, const Edit& edit);

}  // namespace catalogue
