// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "damage/Damage.h"
#include "damage/SoundOffsets.h"
#include "support/TemporaryFolder.h"

namespace test {

/** What became of one damaged file. */
struct DamageOutcome {
    /** The reason; empty when the track was taken. */
    std::string refusal;
    bool isCutOff = false;
    bool isWarned = false;
    /** By more than the format's clock allows. */
    bool isOutOfPlace = false;
    SoundOffsets::Answer sound;

    bool isSilentLoss() const { return refusal.empty() && !isCutOff && !isWarned && isOutOfPlace; }
};

/** Damages files of one format and looks what is decoded of them. */
class DamageTrial {
public:
    DamageTrial(const DamageFormat& format, double seconds);

    DamageOutcome run(const DamageKind& kind, std::uint32_t seed) const;

    const std::string& bytes() const { return bytes_; }

private:
    const DamageFormat& format_;
    TemporaryFolder folder_;
    std::string bytes_;
    std::unique_ptr<SoundOffsets> offsets_;
};

}  // namespace test
