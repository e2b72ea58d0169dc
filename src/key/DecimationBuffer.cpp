// SPDX-License-Identifier: MIT
#include "key/DecimationBuffer.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "key/frameTiming.h"

namespace beatatlas {

void DecimationBuffer::create(int rate) {
    samples_ = std::make_unique<std::int16_t[]>(index(kSamples));
    hopSamples_ = truncToInt32(static_cast<double>(rate) * kSecondsPerFrame);
    reset();
}

// What the buffer holds may stay: a frame is complete only when all of it is new.
void DecimationBuffer::reset() {
    position_ = 0;
}

void DecimationBuffer::hop() {
    position_ -= hopSamples_;
    if (position_ > 0)
        std::copy(samples_.get() + hopSamples_, samples_.get() + kSamples, samples_.get());
}

}  // namespace beatatlas
