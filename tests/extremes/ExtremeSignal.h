// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace beatatlas::test {

/** A signal without end, made block by block, so that a track of any length needs no memory of its own. */
class ExtremeSignal {
public:
    virtual ~ExtremeSignal() = default;

    /** Writes the next `count` frames, 16-bit scale. */
    virtual void next(int count, float* left, float* right) = 0;
};

/** By name: silence; noise; click, one a minute; tone, 440 Hz; music, a minute of 120 BPM over and over; dense, noise
 *  bursts of a gliding tempo, which give the beat sensor more candidates than anything else tried. Null for any other
 *  name. */
std::unique_ptr<ExtremeSignal> makeExtremeSignal(const std::string& name, int rate);

}  // namespace beatatlas::test
