// SPDX-License-Identifier: MIT
#include "media/TrackFile.h"

#include "base/errors.h"

namespace media {

TrackFile usableTrack(const std::string& path, const TrackDecoder& decoder, std::int64_t frames,
                      bool acceptsCutOff) {
    refuseUnlessUnchanged(decoder, decoder.fileState());
    const DecodeTally& tally = decoder.tally();
    const bool isCutOff = decoder.isCutOff();
    if (frames == 0 && tally.isLastPacketDamaged)
        throw base::TrackError("is damaged: nothing in it can be decoded",
                               base::TrackError::Kind::undecodable);
    if (frames == 0 && isCutOff) throw base::TrackError("is cut off: no sound is left in it");
    if (frames == 0) throw base::TrackError("holds no audio", base::TrackError::Kind::notAudio);
    if (isCutOff && !acceptsCutOff) {
        throw base::TrackError(
            "is cut off: it ends before the track does (--partial takes what is there)");
    }
    return {{path,
             decoder.format(),
             isCutOff,
             tally.damagedPackets,
             tally.repeatedPackets,
             tally.gaps,
             decoder.lacksEnd(),
             {},
             decoder.droppedFrames()},
            decoder.fileState()};
}

void refuseUnlessUnchanged(const TrackDecoder& decoder, const FileState& state) {
    if (decoder.fileState() != state || decoder.hasFileChanged())
        throw base::TrackError("has changed while it was being read");
}

}  // namespace media
