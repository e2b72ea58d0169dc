// SPDX-License-Identifier: MIT
#include "catalogue/merge/joined.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "catalogue/correction/edits.h"

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
 *  is enough. The file is as the newest has it. The newest comes first. */
std::vector<Dated> newestOf(std::vector<Dated> results) {
    std::sort(results.begin(), results.end(), isNewer);
    std::vector<Dated> kept;
    for (Dated& result : results) {
        if (!kept.empty() && result.analysed.track.hash != kept[0].analysed.track.hash) continue;
        const auto isSame = [&](const Dated& each) {
            return each.analysed.result.parameters == result.analysed.result.parameters;
        };
        const auto same = std::find_if(kept.begin(), kept.end(), isSame);
        if (same != kept.end()) {
            same->askedAt = std::max(same->askedAt, result.askedAt);
            continue;
        }
        if (!kept.empty()) result.analysed.track = kept[0].analysed.track;
        kept.push_back(std::move(result));
    }
    return kept;
}

bool continues(const std::vector<StoredEdit>& longer, const std::vector<StoredEdit>& shorter) {
    return shorter.size() <= longer.size() &&
           std::equal(shorter.begin(), shorter.end(), longer.begin());
}

using Edits = std::vector<StoredEdit>;

/** The list with the newest edit, or the longest of those that continue it. */
Edits newestOf(const std::vector<Edits>& lists) {
    Edits newest;
    const auto isBetter = [&](const Edits& edits) {
        if (edits.empty() || newest.empty()) return newest.empty();
        return std::tie(edits.back().madeAt, edits) > std::tie(newest.back().madeAt, newest);
    };
    for (const Edits& edits : lists) {
        if (isBetter(edits)) newest = edits;
    }
    Edits longest = newest;
    for (const Edits& edits : lists) {
        const bool isLonger =
            edits.size() > longest.size() || (edits.size() == longest.size() && edits > longest);
        if (isLonger && continues(edits, newest)) longest = edits;
    }
    return longest;
}

bool isOfKey(const StoredEdit& edit) {
    return edit.kind == editName(EditKind::key);
}

/** The edits of one kind of each list, joined. */
Edits joinedKind(const std::vector<Edits>& lists, bool ofKey, bool& isConflict) {
    std::vector<Edits> kind(lists.size());
    for (std::size_t i = 0; i < lists.size(); ++i)
        std::copy_if(lists[i].begin(), lists[i].end(), std::back_inserter(kind[i]),
                     [ofKey](const StoredEdit& edit) { return isOfKey(edit) == ofKey; });
    Edits whole = newestOf(kind);
    for (const Edits& edits : kind) isConflict |= !continues(whole, edits);
    return whole;
}

/** Both by their times. Each keeps its own order, also where a clock was set back. */
Edits inTurn(const Edits& grid, const Edits& key) {
    Edits whole;
    auto next = key.begin();
    for (const StoredEdit& edit : grid) {
        while (next != key.end() && next->madeAt < edit.madeAt) whole.push_back(*next++);
        whole.push_back(edit);
    }
    whole.insert(whole.end(), next, key.end());
    return whole;
}

}  // namespace

MergeTrack joined(std::vector<MergeTrack> tracks) {
    MergeTrack whole;
    whole.addedAt = tracks.front().addedAt;
    for (MergeTrack& track : tracks) {
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

std::vector<StoredEdit> joined(const std::vector<std::vector<StoredEdit>>& lists,
                               bool& isConflict) {
    isConflict = false;
    const Edits grid = joinedKind(lists, false, isConflict);
    const Edits key = joinedKind(lists, true, isConflict);
    return inTurn(grid, key);
}

}  // namespace catalogue
