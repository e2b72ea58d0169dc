// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>

#include "peakss/BeatInfo.h"
#include "peakss/grid/printBeatList.h"

namespace peakss {

/** The lines on standard output that tell how an analysis goes; none when they are not wanted. */
class ProgressLines {
public:
    explicit ProgressLines(bool areWanted) : areWanted_(areWanted) {}

    void line(const char* text) const {
        if (areWanted_) std::puts(text);
    }
    void list(const BeatList& beats) const {
        if (areWanted_) printBeatList(beats, nullptr);
    }

private:
    bool areWanted_;
};

}  // namespace peakss
