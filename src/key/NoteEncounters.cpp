// SPDX-License-Identifier: MIT
#include "key/NoteEncounters.h"

#include <algorithm>
#include <cstddef>

namespace beatatlas {

namespace {

constexpr int kPlaces = 12;
constexpr int kNoBand = -1;

/** The strongest bands, in falling order of their totals. */
class StrongestBands {
public:
    struct Place {
        int band = kNoBand;
        double total = 0.0;
    };

    explicit StrongestBands(const std::vector<double>& totals) {
        if (totals.empty()) return;
        places_[0] = {0, totals[0]};
        for (std::size_t k = 1; k < totals.size(); ++k) offer({static_cast<int>(k), totals[k]});
    }

    auto begin() const { return places_.begin(); }
    auto end() const { return places_.end(); }

private:
    // Band k meets the first k places only, and is dropped when it exceeds none of them: it never
    // takes an empty place behind them. Of falling totals the second strongest, band 1, is lost
    // that way; hosts know the counts so.
    void offer(const Place& candidate) {
        const auto met = places_.begin() + std::min(candidate.band, kPlaces);
        const auto weaker = std::find_if(places_.begin(), met, [&candidate](const Place& place) {
            return candidate.total > place.total;
        });
        if (weaker == met) return;
        std::move_backward(weaker, places_.end() - 1, places_.end());
        *weaker = candidate;
    }

    std::array<Place, kPlaces> places_{};
};

void divideBySum(std::array<double, kPitchClasses>& values) {
    double sum = 0.0;
    for (double value : values) sum += value;
    if (!(sum > 0.0)) sum = 1.0;
    for (double& value : values) value /= sum;
}

}  // namespace

NoteEncounters encounterNotes(const std::vector<double>& totals) {
    NoteEncounters notes;
    for (const StrongestBands::Place& place : StrongestBands(totals)) {
        if (place.band == kNoBand) continue;
        const auto pitchClass = static_cast<std::size_t>(place.band % kPitchClasses);
        notes.counts[pitchClass] += 1;
        notes.values[pitchClass] += place.total;
    }
    divideBySum(notes.values);
    return notes;
}

}  // namespace beatatlas
