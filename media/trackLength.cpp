// SPDX-License-Identifier: MIT
#include "media/trackLength.h"

#include <algorithm>

#include "base/errors.h"
#include "media/RateConverter.h"
#include "media/TrackDecoder.h"

namespace media {

void refuseAbove(double frames) {
    if (frames <= static_cast<double>(kMostFrames)) return;
    throw base::TrackError(
        "is too long: more than 2,147,483,647 frames (12.4 hours at 48,000 Hz) cannot be analysed");
}

void refuseTooLong(const TrackDecoder& decoder) {
    // At a few hertz a handful of samples would last for days: in that case it is the rate that is
    // wrong.
    if (decoder.declaredRate() > 0) requireConvertible(decoder.declaredRate());
    refuseAbove(expectedFrames(decoder));
}

double expectedFrames(const TrackDecoder& decoder) {
    return std::max(1.0, decoder.declaredSeconds().value_or(0.0) * kLowestSessionRate);
}

}  // namespace media
