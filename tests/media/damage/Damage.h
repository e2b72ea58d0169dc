// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/AudioFileWriter.h"

namespace test {

/** What shows the time after damaged audio. */
enum class Clock { times, bytes };

/** A kind of file that can be damaged. */
struct DamageFormat {
    const char* name;
    FileKind kind;
    Clock clock = Clock::times;
    int rate = 44100;
};

/** One way in which files get damaged. */
struct DamageKind {
    enum class What { flips, zeros, removal, doubling, zeroedBeginning };
    const char* name;
    What what;
    /** Of flipped bits, per byte. */
    double rate = 0.0;
};

const std::vector<DamageFormat>& damageFormats();
const std::vector<DamageKind>& damageKinds();

/** A generator that every system gives the same numbers. */
class DamageNumbers {
public:
    explicit DamageNumbers(std::uint32_t seed) : state_(seed * 2654435761U + 12345U) {}

    /** 0 to 1. */
    double next();
    std::size_t below(std::size_t count);

private:
    std::uint32_t state_;
};

/** Noise of low frequencies whose loudness changes, so that no two stretches of it are alike and
 *  coders of variable rate vary. */
Sound unmistakableSound(int rate, double seconds);

/** The file with bits flipped anywhere, at least one, or with a stretch of 2 to 5 % of its bytes
 *  zeroed, removed or doubled, between the first tenth of the file and its last eighth, or zeroed
 *  among the first packets. */
std::string damaged(std::string bytes, const DamageKind& kind, std::uint32_t seed);

}  // namespace test
