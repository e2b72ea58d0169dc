// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cmath>
#include <vector>

namespace beatatlas::test {

/** What a search for a beat yields. */
struct BeatSearchResult {
    int row = -1;
    float avg = 0.0F;
    float dev = 0.0F;
    int count = 0;
};

/** The beat search written straight down, over plain vectors: the oracle for the one in the
 *  library. older holds the stored intervals, newest first. */
inline BeatSearchResult plainBeatSearch(float newest, const std::vector<float>& older, float bar,
                                        int fromRow) {
    static constexpr float lowFirst[] = {500, 468, 923, 290, 320, 290, 666, 1500, 1125};
    static constexpr float highFirst[] = {1276, 1071, 2142, 638, 860, 428, 1714, 3333, 2580};
    static constexpr float beatsFirst[] = {1.5F, 1.25F, 2.5F, 0.75F, 1, 0.5F, 2, 4, 3};
    static constexpr float lowOlder[] = {1500, 923, 666, 500, 468, 320, 290, 290, 1125};
    static constexpr float highOlder[] = {3333, 2142, 1714, 1276, 1071, 860, 638, 428, 2580};
    static constexpr float beatsOlder[] = {4, 2.5F, 2, 1.5F, 1.25F, 1, 0.75F, 0.5F, 3};
    const auto limit = [](float beat) {
        const double share = static_cast<double>(beat) * 2400.0 / 60000.0;
        return static_cast<float>(share > 20.0 ? 20.0 : share);
    };
    const int stored = static_cast<int>(older.size());
    for (int k = fromRow; k < 9; ++k) {
        if (newest <= lowFirst[k] || newest >= highFirst[k]) continue;
        const float beat = newest / beatsFirst[k];
        float ms = newest;
        float beats = beatsFirst[k];
        float target = beats < bar ? bar : bar * 2.0F;
        int walked = 0;
        bool filled = false;
        while (walked < stored) {
            const float x = older[static_cast<std::size_t>(walked)];
            ++walked;
            int j = 0;
            while (j < 9 && !(x > lowOlder[j] && x < highOlder[j] &&
                              std::fabs(x / beatsOlder[j] - beat) < limit(beat)))
                ++j;
            if (j == 9) break;
            ms = ms + x;
            beats = beats + beatsOlder[j];
            if (beats == target) {
                filled = true;
                break;
            }
            if (beats < target) {
                if (stored <= walked + 1 || walked >= 30) break;
            } else {
                if (!(target > bar && target < bar * 4.0F && beats < bar * 4.0F)) break;
                target = target * 2.0F;
            }
        }
        if (!filled) continue;
        BeatSearchResult result;
        result.row = k + 1;
        result.avg = ms / target;
        result.dev = std::fabs(result.avg - beat);
        int c = walked + 2;
        while (true) {
            const int next = c - 2;
            if (next >= stored) {
                result.count = c - 2;
                break;
            }
            const float x = older[static_cast<std::size_t>(next)];
            float q = std::trunc(x / result.avg * 4.0F + 0.5F) * 0.25F;
            if (q > 2.5F) q = std::trunc(q + 0.5F);
            if (q > 4.0F) q = 4.0F;
            const float off = std::fabs(x / q - result.avg);
            if (std::isnan(off) || off >= limit(result.avg)) {
                result.count = c - 2;
                break;
            }
            if (stored <= c || c + 1 > 31) {
                result.count = c - 1;
                break;
            }
            ++c;
        }
        return result;
    }
    return {};
}

}  // namespace beatatlas::test
