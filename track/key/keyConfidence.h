// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** How likely a key is right, 0 … 1: the share of right answers on tracks of known key, or the
 *  probability itself if it is lower than on any of those tracks.
 *  @param probability  of the key, computed from the scores
 *  @param seconds      length of the music it was found in: a few chords fit many keys */
double confidenceOfKey(double probability, double seconds);

}  // namespace beatatlas::track::inner
