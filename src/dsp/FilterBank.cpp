// SPDX-License-Identifier: MIT
#include "dsp/FilterBank.h"

#include <cassert>
#include <cstddef>

#include "dsp/IirPassFilter.h"

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

void FilterBank::operate(const float* in, const Outputs& outputs, int n) {
    if (n <= 0) return;
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
