// SPDX-License-Identifier: MIT
#include "track/tempo/countBars.h"

#include <algorithm>
#include <array>

namespace beatatlas::track::inner {

namespace {

// Eight bars of four beats: fewer do not show clearly enough where bars begin.
constexpr std::size_t kLongStretch = 32;
// The cost of restarting the count, as a logarithm: a restart must be seven times as likely.
constexpr double kPriceOfNewCount = 2.0;
constexpr std::size_t kLongestBar = 5;

/** Beats from … end − 1 of a track. */
struct Part {
    std::size_t from = 0;
    std::size_t end = 0;
};

/** Cuts the track where one long section of a tempo follows another. Short sections, such as the
 *  steps of a ramp, belong to the part before. */
std::vector<Part> partsOf(const std::vector<double>& beats,
                          const std::vector<TempoStretch>& stretches) {
    const auto indexOf = [&](double time) {
        return static_cast<std::size_t>(std::lower_bound(beats.begin(), beats.end(), time) -
                                        beats.begin());
    };
    std::vector<Part> parts = {{0, beats.size()}};
    bool hasLong = false;
    for (const TempoStretch& stretch : stretches) {
        const std::size_t from = indexOf(stretch.from);
        if (indexOf(stretch.to) - from < kLongStretch) continue;
        if (hasLong) {
            parts.back().end = from;
            parts.push_back({from, beats.size()});
        }
        hasLong = true;
    }
    return parts;
}

/** The times within a part; the first part includes all earlier times, the last part all later
 *  ones. */
std::vector<double> timesIn(const Part& part, const std::vector<double>& beats,
                            const std::vector<double>& times) {
    const auto isBefore = [&](std::size_t beat) {
        return std::lower_bound(times.begin(), times.end(), beats[beat]);
    };
    return {part.from == 0 ? times.begin() : isBefore(part.from),
            part.end == beats.size() ? times.end() : isBefore(part.end)};
}

/** The readings of a part for one bar length. The index is the position of the downbeats within a
 *  bar that is counted from the beginning of the track. */
struct PartJudgement {
    std::array<double, kLongestBar> scores{};
    std::array<double, kLongestBar> shares{};
};

/** The best count over all parts for one bar length. */
class Counting {
public:
    Counting(const std::vector<Part>& parts, const std::vector<std::vector<BarReading>>& readings,
             std::size_t perBar)
        : parts_(parts), perBar_(perBar) {
        for (std::size_t i = 0; i < parts.size(); ++i) {
            PartJudgement& judgement = judgements_.emplace_back();
            for (const BarReading& reading : readings[i]) {
                if (static_cast<std::size_t>(reading.beats) != perBar) continue;
                const auto place =
                    (parts[i].from + static_cast<std::size_t>(reading.phase)) % perBar;
                judgement.scores[place] = reading.score;
                judgement.shares[place] = reading.share;
            }
        }
        findPath();
    }

    double score() const { return score_; }

    BarCount count() const {
        BarCount count{static_cast<int>(perBar_), {}, 0.0};
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            const auto [from, end] = parts_[i];
            for (std::size_t k = from; k < end; ++k)
                count.numbers.push_back(static_cast<int>((k + perBar_ - path_[i]) % perBar_) + 1);
            count.share += judgements_[i].shares[path_[i]] * static_cast<double>(end - from) /
                           static_cast<double>(parts_.back().end);
        }
        return count;
    }

private:
    using Sums = std::array<double, kLongestBar>;

    std::size_t bestOf(const Sums& sums) const {
        const auto end = sums.begin() + static_cast<std::ptrdiff_t>(perBar_);
        return static_cast<std::size_t>(std::max_element(sums.begin(), end) - sums.begin());
    }

    void findPath() {
        std::vector<std::size_t> bestBefore;
        std::vector<std::array<bool, kLongestBar>> isNew;
        Sums sums = judgements_.front().scores;
        for (std::size_t i = 1; i < judgements_.size(); ++i) {
            const std::size_t best = bestOf(sums);
            const double anew = sums[best] - kPriceOfNewCount;
            bestBefore.push_back(best);
            isNew.emplace_back();
            for (std::size_t place = 0; place < perBar_; ++place) {
                isNew.back()[place] = anew > sums[place];
                sums[place] = std::max(anew, sums[place]) + judgements_[i].scores[place];
            }
        }
        path_.assign(judgements_.size(), bestOf(sums));
        score_ = sums[path_.back()];
        for (std::size_t i = path_.size() - 1; i > 0; --i)
            path_[i - 1] = isNew[i - 1][path_[i]] ? bestBefore[i - 1] : path_[i];
    }

    const std::vector<Part>& parts_;
    std::size_t perBar_;
    std::vector<PartJudgement> judgements_;
    std::vector<std::size_t> path_;
    double score_ = 0.0;
};

}  // namespace

BarCount countBars(const Evidence& evidence, const std::vector<double>& beats,
                   const std::vector<TempoStretch>& stretches, const SessionDownbeats& sessions,
                   int beatsPerBar) {
    const std::vector<Part> parts = partsOf(beats, stretches);
    std::vector<std::vector<BarReading>> readings;
    for (const Part& part : parts) {
        const std::vector<double> some(beats.begin() + static_cast<std::ptrdiff_t>(part.from),
                                       beats.begin() + static_cast<std::ptrdiff_t>(part.end));
        readings.push_back(judgeBars(evidence, some, timesIn(part, beats, sessions.simple),
                                     timesIn(part, beats, sessions.varied)));
    }
    std::vector<Counting> counts;
    for (const std::size_t length : {std::size_t{3}, std::size_t{4}, std::size_t{5}})
        if (beatsPerBar == 0 || length == static_cast<std::size_t>(beatsPerBar))
            counts.emplace_back(parts, readings, length);
    return std::max_element(
               counts.begin(), counts.end(),
               [](const Counting& a, const Counting& b) { return a.score() < b.score(); })
        ->count();
}

}  // namespace beatatlas::track::inner
