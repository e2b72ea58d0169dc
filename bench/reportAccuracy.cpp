// SPDX-License-Identifier: MIT
// report_accuracy OUT: analyses synthesised tracks of known tempo and beats in every kind of
// session and writes a table of the results next to the truth.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/HostSession.h"
#include "support/TrackSynth.h"
#include "support/signals.h"

namespace {

using namespace beatatlas::test;

constexpr double kHitMs = 20.0;

struct Case {
    std::string name;
    std::string truth;  // tempo in BPM
    int rate = 44100;
    StereoTrack track;
    std::vector<TrueBeat> beats;
};

TrackPlan planOf(int rate, double seconds, double bpm) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate * seconds);
    plan.bpm = bpm;
    return plan;
}

Case played(const std::string& name, const std::string& truth, const TrackPlan& plan) {
    const TrackSynth synth(plan);
    return {name, truth, plan.sampleRate, synth.renderAll(), synth.beats()};
}

std::string tempoText(double bpm) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", bpm);
    return text.data();
}

std::vector<Case> steadyCases() {
    std::vector<Case> cases;
    for (double bpm : {71.0, 93.47, 110.0, 127.996, 128.0, 150.5, 174.02}) {
        for (int rate : {44100, 48000}) {
            cases.push_back(played("band", tempoText(bpm), planOf(rate, 120.0, bpm)));
            cases.push_back(played("dry kick", tempoText(bpm),
                                   dryKickPlan(rate, std::int64_t{rate} * 120, bpm)));
        }
    }
    return cases;
}

std::vector<Case> oddCases() {
    std::vector<Case> cases;
    TrackPlan changing = planOf(44100, 150.0, 120.0);
    changing.tempoChanges = {{75.0, 140.0}};
    cases.push_back(played("change", "120 → 140", changing));

    TrackPlan swung = planOf(44100, 120.0, 110.0);
    swung.swing = 2.0 / 3.0;
    cases.push_back(played("swing", "110", swung));

    TrackPlan late = planOf(44100, 150.0, 124.0);
    late.introFrames = 40LL * 44100;
    cases.push_back(played("40 s beatless intro", "124", late));

    TrackPlan ambient = planOf(44100, 120.0, 90.0);
    ambient.levels = {.kick = 0.0, .snare = 0.0, .hats = 0.0, .bass = 0.0, .chords = 0.6};
    cases.push_back(played("chords only", "90", ambient));

    constexpr std::size_t kMinute = 60 * 44100;
    const std::vector<float> noise = whiteNoise(kMinute, 12000.0, 3);
    cases.push_back({"noise", "none", 44100, {noise, noise}, {}});
    const std::vector<float> nothing = silence(kMinute);
    cases.push_back({"silence", "none", 44100, {nothing, nothing}, {}});
    return cases;
}

// The distance from each true beat to the nearest found one, in ms, and how many bars begin at the
// right beat.
struct Agreement {
    double medianMs = 0.0;
    int hits = 0;
    int downbeatHits = 0;
    int downbeats = 0;
};

Agreement compare(const Case& c, const std::vector<BA_BeatInfo>& found) {
    Agreement agreement;
    std::vector<double> offsets;
    for (const TrueBeat& beat : c.beats) {
        agreement.downbeats += beat.number == 1 ? 1 : 0;
        const auto next = std::lower_bound(
            found.begin(), found.end(), beat.frame,
            [](const BA_BeatInfo& b, std::int64_t frame) { return b.pos < frame; });
        double best = 1e9;
        bool isDownbeat = false;
        for (auto b = next == found.begin() ? next : next - 1; b != found.end() && b <= next; ++b) {
            const double ms = static_cast<double>(b->pos - beat.frame) * 1000.0 / c.rate;
            if (std::fabs(ms) >= std::fabs(best)) continue;
            best = ms;
            isDownbeat = b->beatNum == 1;
        }
        if (best == 1e9) continue;
        offsets.push_back(best);
        if (std::fabs(best) > kHitMs) continue;
        ++agreement.hits;
        if (beat.number == 1 && isDownbeat) ++agreement.downbeatHits;
    }
    if (!offsets.empty()) {
        std::nth_element(offsets.begin(), offsets.begin() + static_cast<long>(offsets.size() / 2),
                         offsets.end());
        agreement.medianMs = offsets[offsets.size() / 2];
    }
    return agreement;
}

void report(std::FILE* out, const Case& c) {
    const char* names[] = {"constant", "varied", "simple"};
    for (SessionKind kind : {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
        const SessionRequest request{.kind = kind,
                                     .rate = c.rate,
                                     .sectionBeats = kind == SessionKind::simple ? 0 : 32,
                                     .loud = false,
                                     .zoom = false};
        const SessionResults results = analyseTrack(request, c.track, {4096});
        const Agreement a = compare(c, results.beats);
        std::fprintf(out, "| %s, %d | %s | %s | %.2f | %zu/%zu | %.1f | %d | %d/%d |\n",
                     c.name.c_str(), c.rate, names[static_cast<int>(kind)], c.truth.c_str(),
                     results.bpm / 100.0, results.beats.size(), c.beats.size(), a.medianMs, a.hits,
                     a.downbeatHits, a.downbeats);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::FILE* out = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (out == nullptr) {
        std::fprintf(stderr, "usage: report_accuracy OUT\n");
        return EXIT_FAILURE;
    }
    std::fprintf(
        out,
        "| track | session | true BPM | found | beats found/true | median offset, ms | within 20 "
        "ms | bars right |\n|---|---|---|---|---|---|---|---|\n");
    for (const Case& c : steadyCases()) report(out, c);
    for (const Case& c : oddCases()) report(out, c);
    return std::fclose(out) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
