// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatListMaker.h"

namespace peakss {

namespace {

constexpr int kSamplesPerLevel = 8;
constexpr int kBands = 6;

}  // namespace

bool BeatListMaker::create(int rate, int start, int end) {
    release();
    signal_.create(&list_);
    sensor_.setSignal(&signal_);
    return sensor_.create(rate, start, end, kSamplesPerLevel, kBands);
}

void BeatListMaker::release() {
    sensor_.release();
    list_ = {};
}

}  // namespace peakss
