// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dsp/RoundingMode.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "session/TrackFilters.h"
#include "view/ZoomViewMaker.h"

namespace beatatlas::bench {

/** The filters of a session with everything in it. */
inline void createFilters(TrackFilters& filters, int rate) {
    SimpleEnvelopeMaker simple;
    UnitEnvelopeMaker unit;
    ZoomViewMaker zoom;
    simple.create(rate, 1);
    unit.create(rate, 1);
    zoom.create(rate, 1, 150, true);
    filters.create(rate, {.bands = true,
                          .pulses = &unit.audioFilter(),
                          .bassLine = &simple.audioFilter(),
                          .bass = &zoom.bassFilter()});
}

/** What analysers hear of a track through the filters of a session. */
class FilteredTrack {
public:
    FilteredTrack(int rate, const std::vector<float>& mono,
                  const std::vector<std::int16_t>& interleaved) {
        const TowardZeroScope mode;
        TrackFilters filters;
        createFilters(filters, rate);
        const std::size_t block = static_cast<std::size_t>(rate) / 75;
        for (std::size_t from = 0; from < mono.size(); from += block) {
            const std::size_t n = std::min(block, mono.size() - from);
            filters.operate(mono.data() + from, interleaved.data() + 2 * from, static_cast<int>(n),
                            nullptr);
            pulses.insert(pulses.end(), filters.pulses(), filters.pulses() + n);
            bassLine.insert(bassLine.end(), filters.bassLine(), filters.bassLine() + n);
            bass.insert(bass.end(), filters.bass(), filters.bass() + n);
            const peakss::BandSignals heard = filters.bands();
            for (std::size_t b = 0; b < 4; ++b)
                bands_[b].insert(bands_[b].end(), heard.bands[b], heard.bands[b] + n);
            viewLow_.insert(viewLow_.end(), heard.viewLow, heard.viewLow + n);
        }
    }

    /** The bands from a frame on, until the next call. */
    peakss::BandSignals bandsFrom(int frame) {
        for (std::size_t b = 0; b < 4; ++b) from_[b] = bands_[b].data() + frame;
        return {from_.data(), viewLow_.data() + frame};
    }

    std::vector<double> pulses;
    std::vector<double> bassLine;
    std::vector<double> bass;

private:
    std::array<std::vector<float>, 4> bands_;
    std::vector<float> viewLow_;
    std::array<float*, 4> from_{};
};

}  // namespace beatatlas::bench
