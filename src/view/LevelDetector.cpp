// SPDX-License-Identifier: MIT
#include "view/LevelDetector.h"

#include <cassert>

namespace beatatlas {

void LevelDetector::put(PeakRecords& records, const float* samples, int m, float loudest) {
    records.makeRoom(recordCount_);
    peak* all = records.data();
    peakPosition_ = 0;
    held_ = all[recordCount_].level;
    decay_ = 0;
    const std::int64_t last = timing_.lastSampleInChunk(chunksSeen_);
    const int upToLast = last >= 0 && last < m ? static_cast<int>(last) + 1 : 0;
    if (upToLast > 0) {
        follow(all, samples, 0, upToLast);
        closeTrack(all);
    }
    if (upToLast == 0 && passesUnnoticed(m, loudest, all[0].level)) {
        count_ += m;
    } else {
        follow(all, samples, upToLast, m);
    }
    // Provisional, yet it stays when the track ends before the peak that would have replaced it.
    all[recordCount_].level = held_;
    ++chunksSeen_;
}

void LevelDetector::follow(peak* records, const float* samples, int from, int to) {
    std::int64_t count = count_;
    float held = held_;
    float candidate = candidateLevel(held);
    std::int32_t decay = decay_;
    for (int i = from; i < to; ++i) {
        const float x = samples[i];
        ++count;
        if (records[0].level == kNoPeakLevel) {
            if (!(x > kFloor)) continue;
            openFirstRecord(records, x, count, i + 1);
            count = 0;
            held = x;
        } else if (x >= candidate) {
            if (count >= timing_.minInterval) {
                acceptPeak(records, held, count, i + 1);
                count = 0;
                decay = 0;
                held = x;
            } else if (x > held) {
                records[recordCount_].maxpos = static_cast<std::int32_t>(count);
                held = x;
            }
        } else if (count <= timing_.holdTime) {
            decay = 0;
        } else if (++decay >= timing_.decayStep) {
            held = decayed(held);
            decay = 0;
        }
        candidate = candidateLevel(held);
    }
    count_ = count;
    held_ = held;
    decay_ = decay;
}

void LevelDetector::openFirstRecord(peak* records, float level, std::int64_t count, int position) {
    records[0].level = level;
    records[0].maxpos = 0;
    records[0].interval = static_cast<std::int32_t>(count);
    recordCount_ = 1;
    peakPosition_ = position;
}

// The interval goes to the record that this peak closes, the held level to the one before it. A
// level that has decayed to the floor and lands in record 0 there reads as "no peak yet" again, and
// the records start over.
void LevelDetector::acceptPeak(peak* records, float held, std::int64_t count, int position) {
    assert(recordCount_ >= 1);  // record 0 holds a level, so it has been counted
    records[recordCount_].interval = static_cast<std::int32_t>(count);
    records[recordCount_ - 1].level = held;
    ++recordCount_;
    peakPosition_ = position;
}

void LevelDetector::closeTrack(peak* records) {
    records[recordCount_].level = held_;
    records[recordCount_].interval = static_cast<std::int32_t>(count_);
    ++recordCount_;
    ended_ = true;
}

}  // namespace beatatlas
