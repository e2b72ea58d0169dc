// SPDX-License-Identifier: MIT
#include "view/DecimatedDetector.h"

#include <algorithm>

namespace beatatlas {

namespace {

constexpr int kGroupSamples = 4;

}  // namespace

void DecimatedDetector::put(PeakRecords& records, const float* samples, int m, float loudest) {
    records.makeRoom(recordCount_);
    peak* all = records.data();
    held_ = all[recordCount_].level900;
    groupMax_ = 0.0F;
    decay_ = 0;
    const std::int64_t last = timing_.lastSampleInChunk(chunksSeen_);
    const int upToLast = last >= 0 && last < m ? static_cast<int>(last) + 1 : 0;
    if (upToLast > 0) followToEnd(all, samples, upToLast, m < timing_.blockLen);
    if (upToLast == 0 && passesUnnoticed(m, loudest, all[0].level900)) {
        count_ += m;
    } else {
        follow(all, samples, upToLast, m);
    }
    all[recordCount_].level900 = held_;
    ++chunksSeen_;
}

// In a chunk shorter than a block the track's last sample is judged with whatever its group has; in
// a full one only when it completes a group of four. Otherwise the end goes unnoticed and the last
// dots stay open.
void DecimatedDetector::followToEnd(peak* records, const float* samples, int m, bool shortChunk) {
    bool judged = follow(records, samples, 0, m);
    if (!judged && shortChunk) {
        judgeGroup(records);
        judged = true;
    }
    if (judged) closeTrack(records);
}

/** Returns whether the last of these samples completed a group. */
bool DecimatedDetector::follow(peak* records, const float* samples, int from, int to) {
    bool judged = false;
    for (int i = from; i < to; ++i) {
        ++count_;
        if (samples[i] > groupMax_) groupMax_ = samples[i];
        judged = count_ % kGroupSamples == 0;
        if (judged) judgeGroup(records);
    }
    return judged;
}

void DecimatedDetector::judgeGroup(peak* records) {
    if (records[0].level900 == kNoPeakLevel) {
        if (groupMax_ > kFloor) openFirstRecord(records);
    } else if (groupMax_ >= candidateLevel(held_)) {
        takeCandidate(records);
    } else if (count_ > timing_.holdTime) {
        decayHeldLevel();
    } else {
        decay_ = 0;
    }
    groupMax_ = 0.0F;
}

void DecimatedDetector::openFirstRecord(peak* records) {
    records[0].level900 = groupMax_;
    recordCount_ = 1;
    count_ = 0;
    held_ = groupMax_;
}

// The held level goes to the record that this peak closes, where the full-rate detector takes the
// one before.
void DecimatedDetector::takeCandidate(peak* records) {
    if (count_ >= timing_.minInterval) {
        records[recordCount_].level900 = held_;
        ++recordCount_;
        count_ = 0;
        decay_ = 0;
        held_ = groupMax_;
    } else {
        held_ = std::max(held_, groupMax_);
    }
}

void DecimatedDetector::decayHeldLevel() {
    decay_ += kGroupSamples;
    if (decay_ < timing_.decayStep) return;
    held_ = decayed(held_);
    decay_ = 0;
}

void DecimatedDetector::closeTrack(peak* records) {
    records[recordCount_].level900 = held_;
    ++recordCount_;
    ended_ = true;
}

}  // namespace beatatlas
