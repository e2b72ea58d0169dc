// SPDX-License-Identifier: MIT
// A table of what becomes of damaged files: every format, every damage, many seeds.
//   measure_damage [SEEDS [FORMAT [DAMAGE]]]    -v reports every file
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/errors.h"
#include "damage/DamageTrial.h"

namespace {

using namespace test;

constexpr double kSeconds = 12.0;

struct Row {
    int refused = 0;
    int cutOff = 0;
    int warned = 0;
    int late = 0;
    int silent = 0;
    double worst = 0.0;
    double heard = 0.0;
    int taken = 0;

    void add(const DamageOutcome& outcome) {
        refused += !outcome.refusal.empty();
        if (!outcome.refusal.empty()) return;
        ++taken;
        cutOff += outcome.isCutOff;
        warned += outcome.isWarned;
        late += outcome.isOutOfPlace;
        silent += outcome.isSilentLoss();
        worst = std::max(worst, outcome.sound.worst);
        heard += outcome.sound.heard;
    }
};

void report(std::uint32_t seed, const DamageOutcome& outcome) {
    std::printf("    seed %u: %s%s%s%s worst %.4f last %.4f heard %.2f missing %.4f %s\n", seed,
                outcome.isCutOff ? "cut " : "", outcome.isWarned ? "warned " : "",
                outcome.isOutOfPlace ? "LATE " : "", outcome.isSilentLoss() ? "SILENT" : "",
                outcome.sound.worst, outcome.sound.last, outcome.sound.heard, outcome.sound.missing,
                outcome.refusal.c_str());
}

void measure(const DamageFormat& format, std::uint32_t seeds, const char* only, bool isVerbose) {
    const DamageTrial trial(format, kSeconds);
    for (const DamageKind& kind : damageKinds()) {
        if (only != nullptr && std::strcmp(only, kind.name) != 0) continue;
        Row row;
        for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
            const DamageOutcome outcome = trial.run(kind, seed);
            row.add(outcome);
            if (isVerbose) report(seed, outcome);
        }
        std::printf("| %s | %s | %d | %d | %d | %d | %d | %.1f | %.0f |\n", format.name, kind.name,
                    row.refused, row.cutOff, row.warned, row.late, row.silent, row.worst * 1000.0,
                    row.taken > 0 ? 100.0 * row.heard / row.taken : 0.0);
        std::fflush(stdout);
    }
}

}  // namespace

int main(int count, char** words) {
    const bool isVerbose = count > 1 && std::strcmp(words[count - 1], "-v") == 0;
    if (isVerbose) --count;
    const auto seeds = static_cast<std::uint32_t>(count > 1 ? std::atoi(words[1]) : 20);
    std::printf(
        "| format | damage | refused | taken as cut off | warned | out of place | of these "
        "without a word | worst, ms | heard, %% |\n|---|---|---|---|---|---|---|---|---|\n");
    for (const DamageFormat& format : damageFormats()) {
        if (count > 2 && std::strcmp(words[2], "all") != 0 &&
            std::strcmp(words[2], format.name) != 0)
            continue;
        try {
            measure(format, seeds, count > 3 ? words[3] : nullptr, isVerbose);
        } catch (const std::exception& error) {
            std::printf("| %s | cannot be made: %s |\n", format.name, error.what());
        }
    }
    return 0;
}
