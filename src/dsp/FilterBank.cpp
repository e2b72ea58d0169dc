// SPDX-License-Identifier: MIT
#include "dsp/FilterBank.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

#include "dsp/IirPassFilter.h"
#include "dsp/isConstant.h"

namespace beatatlas {

namespace {

constexpr int kShortSections = 2;
constexpr int kLongSections = 4;

constexpr int sectionsOf(int cascade) {
    return cascade == FilterBank::kLongCascade ? kLongSections : kShortSections;
}

}  // namespace

void FilterBank::design(int cascade, const IirPassFilter& plain) {
    assert(plain.stageCount() == sectionsOf(cascade));
    for (int section = 0; section < sectionsOf(cascade); ++section) {
        const IirFilter& from = plain.stage(section);
        const FilterBankPlace place = filterBankPlace(cascade, section);
        SectionLanes& to = lanes_.*place.vector;
        to.b0[place.lane] = from.b0();
        to.b1[place.lane] = from.b1();
        to.b2[place.lane] = from.b2();
        to.a1[place.lane] = from.a1();
        to.a2[place.lane] = from.a2();
        for (DoubleLanes* past : {&to.x1, &to.x2, &to.y1, &to.y2}) (*past)[place.lane] = 0.0;
    }
}

// In silence the sections die away to numbers so small that a processor takes a hundred times as long for each, and
// there they stay for ever: rounded toward zero, what feeds back equals what is there. A frame that leaves every
// section as it was tells that all frames like it will, with the same outputs.
void FilterBank::operate(const float* in, const Outputs& outputs, int n) {
    if (n <= 0) return;
    if (!isConstant(in, n)) return filter(in, outputs, n);
    const FilterBankLanes before = lanes_;
    filter(in, outputs, 1);
    const bool rests = std::memcmp(&before, &lanes_, sizeof lanes_) == 0;
    Outputs others{};
    for (std::size_t c = 0; c < kCascades; ++c) {
        if (outputs[c] == nullptr) continue;
        others[c] = outputs[c] + 1;
        if (rests) std::fill_n(others[c], n - 1, outputs[c][0]);
    }
    if (!rests && n > 1) filter(in + 1, others, n - 1);
}

void FilterBank::filter(const float* in, const Outputs& outputs, int n) {
    float unread[4];
    FilterBankSinks sinks;
    bool allRead = true;
    for (std::size_t c = 0; c < kCascades; ++c) {
        sinks[c] =
            outputs[c] != nullptr ? FilterBankSink{outputs[c], -1} : FilterBankSink{unread, 0};
        allRead = allRead && outputs[c] != nullptr;
    }
    const FilterBankLanes before = lanes_;
    filterBankKernel()(lanes_, in, sinks, n);
    if (allRead) return;
    for (int c = 0; c < kCascades; ++c)
        if (outputs[static_cast<std::size_t>(c)] == nullptr) forgetBlock(c, before);
}

void FilterBank::forgetBlock(int cascade, const FilterBankLanes& before) {
    for (int section = 0; section < sectionsOf(cascade); ++section) {
        const FilterBankPlace place = filterBankPlace(cascade, section);
        SectionLanes& now = lanes_.*place.vector;
        const SectionLanes& then = before.*place.vector;
        now.x1[place.lane] = then.x1[place.lane];
        now.x2[place.lane] = then.x2[place.lane];
        now.y1[place.lane] = then.y1[place.lane];
        now.y2[place.lane] = then.y2[place.lane];
    }
}

}  // namespace beatatlas
