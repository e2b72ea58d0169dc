// SPDX-License-Identifier: MIT
#include "damage/DamageTrial.h"

#include <cmath>

#include "base/errors.h"
#include "media/TrackFile.h"
#include "support/Sounds.h"

namespace test {

namespace {

// What the beats behind a gap may be off by, and the length of a whole track.
constexpr double kMostByTimes = 0.001;
constexpr double kMostByBytes = 0.030;

// The last block of a track may be missing without a warning: no format states how many blocks
// there were.
constexpr double kMostMissing = 0.060;

bool isOutOfPlace(const SoundOffsets::Answer& sound, Clock clock) {
    const double most = clock == Clock::times ? kMostByTimes : kMostByBytes;
    return sound.worst > most || std::abs(sound.missing) > kMostMissing;
}

}  // namespace

DamageTrial::DamageTrial(const DamageFormat& format, double seconds) : format_(format) {
    const std::string path = folder_.file("whole");
    writeAudioFile(path, format.kind, unmistakableSound(format.rate, seconds));
    bytes_ = readFile(path);
    Recorder recorder;
    media::TrackDecoder decoder(path);
    decoder.run(recorder);
    offsets_ = std::make_unique<SoundOffsets>(recorder.left, decoder.format().sessionRate);
}

DamageOutcome DamageTrial::run(const DamageKind& kind, std::uint32_t seed) const {
    const std::string path = folder_.file("damaged");
    writeFile(path, damaged(bytes_, kind, seed));
    DamageOutcome outcome;
    Recorder recorder;
    try {
        media::TrackDecoder decoder(path);
        decoder.run(recorder);
        const auto file = media::usableTrack(path, decoder,
                                             static_cast<std::int64_t>(recorder.left.size()), true);
        outcome.isCutOff = file.isCutOff;
        outcome.isWarned =
            file.damagedPackets > 0 || file.repeatedPackets > 0 || !file.gaps.empty();
    } catch (const base::TrackError& error) {
        outcome.refusal = error.what();
        return outcome;
    }
    outcome.sound = offsets_->compare(recorder.left);
    outcome.isOutOfPlace = isOutOfPlace(outcome.sound, format_.clock);
    return outcome;
}

}  // namespace test
