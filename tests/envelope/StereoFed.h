// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dsp/lanes/sampleLanes.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitEnvelopeMaker.h"

namespace beatatlas::test {

/** An envelope maker that filters for itself, sample by sample through kSections of its audio
 *  filter. */
template <class Maker, std::size_t kSections>
class StereoFed : public Maker {
public:
    bool create(int sampleRate, int length) {
        const bool isMade = Maker::create(sampleRate, length);
        sections_.fill(this->audioFilter());
        return isMade;
    }

    /** Takes one block of interleaved 16-bit stereo. */
    void putSample(const std::int16_t* samples, int frames) {
        if (samples == nullptr) return Maker::putSample(nullptr, frames);
        std::vector<double> filtered;
        for (int i = 0; i < frames; ++i) {
            double x = monoOfFrame(samples + 2 * static_cast<std::size_t>(i));
            for (SecondOrderSection& section : sections_) x = section.step(x);
            filtered.push_back(x);
        }
        Maker::putSample(filtered.data(), frames);
    }

private:
    std::array<SecondOrderSection, kSections> sections_;
};

using StereoFedSimpleEnvelope = StereoFed<SimpleEnvelopeMaker, 1>;
using StereoFedUnitEnvelope = StereoFed<UnitEnvelopeMaker, 2>;

}  // namespace beatatlas::test
