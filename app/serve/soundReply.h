// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/Analysed.h"
#include "serve/HttpExchange.h"

namespace app {

/** The sound of a track as it was analysed: WAV, stereo, 16 bit, beginning with the first frame of
 *  music, so that a browser plays it without knowing the delay of any encoder. It is decoded while
 *  it is sent. @throws TrackError when it is too long for such a file, cannot be decoded or
 *  has changed since it was analysed */
HttpReply soundReply(const catalogue::TrackRow& track);

}  // namespace app
