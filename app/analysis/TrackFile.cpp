// SPDX-License-Identifier: MIT
#include "analysis/TrackFile.h"

#include "io/errors.h"

namespace app {

TrackFile usableTrack(const std::string& path, const TrackDecoder& decoder, std::int64_t frames,
                      bool acceptsCutOff) {
    refuseUnlessUnchanged(decoder, decoder.fileState());
    const DecodeTally& tally = decoder.tally();
    const bool isCutOff = decoder.isCutOff();
    if (frames == 0 && tally.isLastPacketDamaged)
        throw TrackError("is damaged: nothing in it can be decoded");
    if (frames == 0)
        throw TrackError(isCutOff ? "is cut off: no sound is left in it" : "holds no audio");
    if (isCutOff && !acceptsCutOff) {
        throw TrackError(
            "is cut off: it ends before the track does (--partial takes what is there)");
    }
    return {path, decoder.format(), isCutOff, tally.damagedPackets, decoder.fileState()};
}

void refuseUnlessUnchanged(const TrackDecoder& decoder, const FileState& state) {
    if (decoder.fileState() != state || decoder.hasFileChanged())
        throw TrackError("has changed while it was being read");
}

}  // namespace app
