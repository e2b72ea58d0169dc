// SPDX-License-Identifier: MIT
// The benchmarks of the components, once per vector form of this machine, side by side.
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/tables.h"
#include "support/VectorForms.h"

namespace beatatlas::bench {

namespace {

using Names = std::vector<std::string>;

// The parts of a session of constant tempo; the loudness wave uses the beat sensor's bands.
const Names kSessionParts = {"preChecker",        "beatSensorAndLoudView", "keyRankMaker",
                             "unitEnvelopeMaker", "unitBeatAdjust",        "zoomViewMaker",
                             "beatListAnalysis",  "unitEnvelopeAnalyze",   "unitBeatAdjustAnalyze"};
const Names kSessions = {"sessionConstant", "sessionVaried", "sessionSimple", "sessionBeatsOnly",
                         "sessionViewsOnly"};
const Names kApart = {"beatSensor", "loudViewMaker", "simpleEnvelopeMaker", "sectionsInTurn",
                      "sectionsInBank"};
// The automatic tempo without its sessions, part by part, and as a whole with them.
const Names kTempoParts = {"bandLevels",
                           "chromaStream",
                           "evidenceListener",
                           "chordChanges",
                           "exactTempo",
                           "tempoClarity",
                           "localTempo",
                           "beatTracking",
                           "beatFold",
                           "steadiness",
                           "metre",
                           "beatLaying",
                           "bars",
                           "tempoDecision",
                           "sessionPair",
                           "sessionPairClose",
                           "autoTempo"};
// The key by evidence, as a whole and part by part.
const Names kKeyParts = {"evidenceKey", "keyPeaks", "keyFolding", "keySegments"};
const Names kUtilities = {"resampler",         "beatCutter/0",       "beatCutter/4",
                          "pitchDetector/1/0", "pitchDetector/10/0", "pitchDetector/10/4",
                          "keyCodeScale/0",    "keyCodeScale/3"};

struct Figures {
    double nsPerFrame = 0.0;
    double timesRealTime = 0.0;
};

/** Stores the median of each benchmark's repetitions instead of printing it. */
class Medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median") continue;
            std::string name = run.run_name.function_name;
            if (!run.run_name.args.empty()) name += "/" + run.run_name.args;
            byName_[name] = {run.counters.at("cpu_s_per_frame").value * 1e9,
                             run.counters.at("audio_s_per_cpu_s").value};
        }
    }

    const Figures& of(const std::string& name) const { return byName_.at(name); }

private:
    std::map<std::string, Figures> byName_;
};

struct FormRun {
    std::string form;
    Medians medians;
};

std::string patternOf(const Names& names) {
    std::string pattern = "^(";
    for (const std::string& name : names) pattern += (&name == &names[0] ? "" : "|") + name;
    return pattern + ")($|/iterations)";
}

std::vector<FormRun> runInEveryForm(const Names& names) {
    std::vector<FormRun> runs;
    for (const VectorForm form : test::formsOfThisMachine()) {
        const test::FormScope scope(form);
        FormRun run{test::nameOf(form), {}};
        benchmark::RunSpecifiedBenchmarks(&run.medians, patternOf(names));
        runs.push_back(std::move(run));
    }
    return runs;
}

void printHead(const std::vector<FormRun>& runs, const char* first, const char* last) {
    std::string rule = "|---|";
    std::printf("\n| %s |", first);
    for (const FormRun& run : runs) {
        std::printf(" %s |", run.form.c_str());
        rule += "---|";
    }
    std::printf("%s\n%s%s\n", last, rule.c_str(), *last == '\0' ? "" : "---|");
}

void printRow(const std::vector<FormRun>& runs, const std::string& name) {
    std::printf("| %s |", name.c_str());
    for (const FormRun& run : runs) std::printf(" %.2f |", run.medians.of(name).nsPerFrame);
}

void printSessionParts(const std::vector<FormRun>& runs) {
    printHead(runs, "part of a session", " share in the last form |");
    const Medians& widest = runs.back().medians;
    const double whole = widest.of(kSessions[0]).nsPerFrame;
    double parts = 0.0;
    for (const std::string& name : kSessionParts) {
        const double part = widest.of(name).nsPerFrame;
        parts += part;
        printRow(runs, name);
        std::printf(" %.1f %% |\n", 100.0 * part / whole);
    }
    std::printf("\nOn their own the parts take %.0f %% of a session's time: each filters for "
                "itself, a session "
                "once for all.\n",
                100.0 * parts / whole);
}

}  // namespace

void printComponents() {
    std::printf("\n## Components: ns per frame, median of repetitions\n");
    Names all = kSessionParts;
    all.insert(all.end(), kSessions.begin(), kSessions.end());
    all.insert(all.end(), kApart.begin(), kApart.end());
    all.insert(all.end(), kTempoParts.begin(), kTempoParts.end());
    all.insert(all.end(), kKeyParts.begin(), kKeyParts.end());
    const std::vector<FormRun> runs = runInEveryForm(all);
    printSessionParts(runs);
    printHead(runs, "sessions, and components on their own", "");
    const std::size_t keyParts = all.size() - kKeyParts.size();
    const std::size_t tempoParts = keyParts - kTempoParts.size();
    for (std::size_t i = kSessionParts.size(); i < all.size(); ++i) {
        if (i == tempoParts) printHead(runs, "automatic tempo", "");
        if (i == keyParts) printHead(runs, "key by evidence", "");
        printRow(runs, all[i]);
        std::printf("\n");
    }
}

void printUtilities() {
    std::printf("\n## Utilities: ns per sample of their input (times real time)\n");
    const std::vector<FormRun> runs = runInEveryForm(kUtilities);
    printHead(runs, "utility / arguments", "");
    for (const std::string& name : kUtilities) {
        std::printf("| %s |", name.c_str());
        for (const FormRun& run : runs)
            std::printf(" %.2f (%.0f) |", run.medians.of(name).nsPerFrame,
                        run.medians.of(name).timesRealTime);
        std::printf("\n");
    }
}

}  // namespace beatatlas::bench
