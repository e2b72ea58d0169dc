// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"

namespace peakss {

/** How well beats fit a pulse: walks from one position up to another in equal steps, snaps to every
 *  beat within the tolerance, and gathers for each of them the tolerance less its distance.
 *
 *  @param step       samples; below 1, or when snapping would hold the walk in place, the walk ends
 *  @param tolerance  samples
 *  @param firstHit   null, or takes the position of the first beat met, −1 when there is none */
double getScore(const BeatList& raw, double from, double to, double step, int tolerance,
                double* firstHit);

/** The scores of getScore for many origins of one pulse.
 *
 *  Walks that snap to the same beat go on alike behind it, so what a walk gathers from there to the
 *  end is kept per beat: scoring a segment's thousands of origins takes little more than one walk
 *  over its beats. Scores are sums of whole numbers, exact in any order, and so the same as
 *  getScore's to the last bit.
 *
 *  The list must outlive the scorer and stay unchanged. */
class SnapWalkScorer {
public:
    explicit SnapWalkScorer(const BeatList& raw);

    /** The pulse of the following scores: where walks end, its step and tolerance in samples. The
     *  step must be finite and greater than the tolerance. */
    void setPulse(double to, double step, int tolerance);

    /** As getScore from here.
     *
     *  @param firstHit  takes the position of the first beat met, −1 for none */
    double score(double from, double& firstHit);

private:
    struct Hit {
        int beat = -1;  // −1: the walk ended without another
        int points = 0;
    };
    struct Tail {
        std::uint32_t pulse = 0;  // the pulse it was gathered for; 0: none yet
        double points = 0.0;
    };

    double positionOf(int beat) const { return raw_[static_cast<std::size_t>(beat)].pos; }
    Hit nextHit(double x) const;
    double pointsBehind(int beat);

    const BeatList& raw_;
    std::vector<Tail> tails_;
    std::vector<Hit> path_;
    std::uint32_t pulse_ = 0;
    double to_ = 0.0;
    double step_ = 0.0;
    int tolerance_ = 0;
};

}  // namespace peakss
