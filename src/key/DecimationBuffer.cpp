// SPDX-License-Identifier: MIT
#include "key/DecimationBuffer.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "key/frameTiming.h"

namespace beatatlas {

void DecimationBuffer::create(int rate) {
    entries_ = std::make_unique<std::int16_t[]>(index(kEntries));
    hopEntries_ = 2 * truncToInt32(static_cast<double>(rate) * kSecondsPerFrame);
    reset();
}

void DecimationBuffer::reset() {
    if (entries_ != nullptr) std::fill_n(entries_.get(), kEntries, std::int16_t{0});
    position_ = 0;
}

bool DecimationBuffer::put(std::int16_t sample) {
    if (position_ >= 0) {
        entries_[index(position_)] = sample;
        entries_[index(position_ + 1)] = sample;
    }
    position_ += 2;
    return position_ >= kEntries;
}

void DecimationBuffer::hop() {
    position_ -= hopEntries_;
    if (position_ > 0)
        std::copy(entries_.get() + hopEntries_, entries_.get() + kEntries, entries_.get());
}

}  // namespace beatatlas
