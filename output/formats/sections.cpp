// SPDX-License-Identifier: MIT
#include "output/formats/sections.h"

#include <algorithm>

#include "output/textFormat.h"

namespace output {

namespace {

constexpr double kShortestSeconds = 1.0;

/** Of parts in order of time, the last one that has begun by then; the first where none has. */
template <class Part>
const Part* partAt(const std::vector<Part>& parts, double seconds) {
    const Part* found = nullptr;
    for (const Part& part : parts) {
        if (found == nullptr || part.fromSeconds <= seconds) found = &part;
    }
    return found;
}

std::vector<double> changesOf(const beatatlas::track::TrackResult& analysis) {
    std::vector<double> changes;
    const auto addBeginnings = [&](const auto& parts) {
        for (std::size_t i = 1; i < parts.size(); ++i) changes.push_back(parts[i].fromSeconds);
    };
    if (analysis.judgement) addBeginnings(analysis.judgement->stretches);
    if (analysis.key) addBeginnings(analysis.key->segments);
    std::sort(changes.begin(), changes.end());
    return changes;
}

Section sectionBetween(const TrackReport& report, double from, double to) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    Section section{from, to, analysis.bpm, std::nullopt};
    const double middle = (from + to) / 2.0;
    if (analysis.judgement) {
        if (const auto* stretch = partAt(analysis.judgement->stretches, middle))
            section.bpm = stretch->bpm;
    }
    if (analysis.key) {
        const auto* segment = partAt(analysis.key->segments, middle);
        section.key = segment == nullptr ? analysis.key->best() : segment->key;
    }
    return section;
}

}  // namespace

std::vector<Section> sectionsOf(const TrackReport& report) {
    const double end = report.startSeconds() + report.analysis.seconds();
    double from = std::max(0.0, report.startSeconds());
    std::vector<Section> sections;
    if (!(from < end)) return sections;
    for (const double change : changesOf(report.analysis)) {
        if (change - from < kShortestSeconds || end - change < kShortestSeconds) continue;
        sections.push_back(sectionBetween(report, from, change));
        from = change;
    }
    sections.push_back(sectionBetween(report, from, end));
    return sections;
}

std::string sectionTitle(const Section& section, const std::optional<KeyNotation>& notation) {
    const std::string tempo = section.bpm ? bpmText(*section.bpm) + " BPM" : "no tempo";
    if (!section.key) return tempo;
    return tempo + ", " + KeyName(*section.key).in(notation.value_or(KeyNotation::standard));
}

}  // namespace output
