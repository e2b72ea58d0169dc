// SPDX-License-Identifier: MIT
// Follows one open run at a time. A value that does not match the one before it breaks the run,
// which is then
//   1. dropped, when it is too short to be music;
//   2. dropped, when it is an interlude: not long, and the breaking value is back at the accepted
//      tempo;
//   3. accepted otherwise, as the tempo that later runs are measured against.
#include "peakss/grid/unsteadyTempoRuns.h"

#include "dsp/processorYield.h"
#include "peakss/beatInterval.h"

namespace peakss {

namespace {

class RunFollower {
public:
    RunFollower(const std::vector<float>& values, const TempoRunRule& rule)
        : values_(values), rule_(rule), open_{values.front(), 0} {}

    std::vector<ValueRange> follow() {
        std::size_t i = 1;
        while (i < values_.size()) {
            beatatlas::yieldProcessor();
            i = place(i);
        }
        if (hasAccepted() && open_.matches < rule_.shortestOpenRun) drop(values_.size());
        return dropped_;
    }

private:
    struct Run {
        float last;   // ms, the value the next one is compared with
        int matches;  // values that matched their predecessor
    };

    bool hasAccepted() const { return accepted_.matches > 0; }

    // Returns the index of the next value to place: i again when a dropped run leaves it to be
    // compared anew.
    std::size_t place(std::size_t i) {
        const float value = values_[i];
        if (matchesTempo(value, open_.last)) {
            open_ = {value, open_.matches + 1};
            return i + 1;
        }
        const bool isInterlude =
            open_.matches < rule_.longestInterlude && matchesTempo(value, accepted_.last);
        if (open_.matches >= rule_.shortestRun && !isInterlude) {
            accepted_ = open_;
            openAt(i, {value, 0});
            return i + 1;
        }
        drop(i);
        if (hasAccepted()) {
            openAt(i, accepted_);
            return i;
        }
        // An interval that is no tempo does not even match itself.
        const bool countsItself = rule_.firstCountsAsHit && matchesTempo(value, value);
        openAt(i, {value, countsItself ? 1 : 0});
        return i + 1;
    }

    void openAt(std::size_t i, Run run) {
        first_ = i;
        open_ = run;
    }

    void drop(std::size_t end) {
        if (first_ < end) dropped_.push_back({first_, end});
    }

    const std::vector<float>& values_;
    const TempoRunRule& rule_;
    Run open_;
    Run accepted_{0.0F, 0};
    std::size_t first_ = 0;  // of the open run
    std::vector<ValueRange> dropped_;
};

}  // namespace

std::vector<ValueRange> unsteadyTempoRuns(const std::vector<float>& intervalsMs,
                                          const TempoRunRule& rule) {
    if (intervalsMs.empty()) return {};
    return RunFollower(intervalsMs, rule).follow();
}

}  // namespace peakss
