// SPDX-License-Identifier: MIT
#include "catalogue/merge/joined.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace catalogue {

namespace {

using Dated = TrackStore::Dated;

/** What decides between two results: their age, and where that is the same anything that does not
 *  depend on which comes first. */
auto rankOf(const Dated& dated) {
    const ResultRow& result = dated.analysed.result;
    return std::tie(dated.madeAt, result.parameters, result.toolVersion, result.details,
                    result.analysisSeconds, result.beats, result.zoomWave);
}

auto rankOf(const TrackRow& track) {
    return std::tie(track.state.modifiedNanoseconds, track.state.size, track.hash,
                    track.format.tags.artist, track.format.tags.title);
}

bool isNewer(const Dated& one, const Dated& other) {
    if (rankOf(one) != rankOf(other)) return rankOf(one) > rankOf(other);
    return rankOf(one.analysed.track) > rankOf(other.analysed.track);
}

/** Results of another sound than the newest are of no use, and of each set of parameters the newest
 *  is enough. The file is as the newest has it. */
std::vector<Dated> newestOf(std::vector<Dated> results) {
    std::sort(results.begin(), results.end(), isNewer);
    std::vector<Dated> kept;
    for (Dated& result : results) {
        if (!kept.empty() && result.analysed.track.hash != kept[0].analysed.track.hash) continue;
        const auto isSame = [&](const Dated& each) {
            return each.analysed.result.parameters == result.analysed.result.parameters;
        };
        if (std::any_of(kept.begin(), kept.end(), isSame)) continue;
        if (!kept.empty()) result.analysed.track = kept[0].analysed.track;
        kept.push_back(std::move(result));
    }
    return kept;
}

bool continues(const std::vector<StoredEdit>& longer, const std::vector<StoredEdit>& shorter) {
    return shorter.size() <= longer.size() &&
           std::equal(shorter.begin(), shorter.end(), longer.begin());
}

/** The list with the newest edit, or the longest of those that continue it. */
std::vector<StoredEdit> newestEdits(const std::vector<MergeTrack>& tracks) {
    std::vector<StoredEdit> newest;
    const auto isBetter = [&](const std::vector<StoredEdit>& edits) {
        if (edits.empty() || newest.empty()) return newest.empty();
        return std::tie(edits.back().madeAt, edits) > std::tie(newest.back().madeAt, newest);
    };
    for (const MergeTrack& track : tracks) {
        if (isBetter(track.edits)) newest = track.edits;
    }
    std::vector<StoredEdit> longest = newest;
    for (const MergeTrack& track : tracks) {
        const bool isLonger = track.edits.size() > longest.size() ||
                              (track.edits.size() == longest.size() && track.edits > longest);
        if (isLonger && continues(track.edits, newest)) longest = track.edits;
    }
    return longest;
}

}  // namespace

MergeTrack joined(std::vector<MergeTrack> tracks, bool& isConflict) {
    MergeTrack whole;
    whole.edits = newestEdits(tracks);
    isConflict = false;
    whole.addedAt = tracks.front().addedAt;
    for (MergeTrack& track : tracks) {
        if (!continues(whole.edits, track.edits)) isConflict = true;
        whole.addedAt = std::min(whole.addedAt, track.addedAt);
        whole.goneAt = std::max(whole.goneAt, track.goneAt);
        std::move(track.results.begin(), track.results.end(), std::back_inserter(whole.results));
    }
    // What is there for one catalogue is there.
    const bool isThere = std::any_of(tracks.begin(), tracks.end(),
                                     [](const MergeTrack& track) { return !track.goneAt; });
    if (isThere) whole.goneAt.reset();
    whole.results = newestOf(std::move(whole.results));
    return whole;
}

}  // namespace catalogue
