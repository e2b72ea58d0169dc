// SPDX-License-Identifier: MIT
#include "vamp/outputs.h"

#include <array>
#include <string>

namespace beatatlas::vamp {

namespace {

using Feature = Vamp::Plugin::Feature;
using FeatureList = Vamp::Plugin::FeatureList;
using OutputDescriptor = Vamp::Plugin::OutputDescriptor;
using Vamp::RealTime;

constexpr float kZoomPointsPerSecond = 150.0F;
constexpr float kZoomLevels = 31.0F;
constexpr int kNotes = 12;
constexpr int kFromAToC = 3;

constexpr std::array<const char*, track::kKeyCount> kKeyNames = {
    "A major",  "Bb major", "B major",  "C major",  "Db major", "D major",  "Eb major", "E major",
    "F major",  "F# major", "G major",  "Ab major", "A minor",  "Bb minor", "B minor",  "C minor",
    "C# minor", "D minor",  "Eb minor", "E minor",  "F minor",  "F# minor", "G minor",  "G# minor"};

std::string keyName(int key) {
    return kKeyNames.at(static_cast<std::size_t>(key));
}

/** Hosts show keys as 1 to 12, C major to B major, and 13 to 24, C minor to B minor. */
int keyInHosts(int key) {
    const int tonicFromC = (key % kNotes - kFromAToC + kNotes) % kNotes;
    return tonicFromC + 1 + (key >= kNotes ? kNotes : 0);
}

/** An output whose results have times of their own. */
OutputDescriptor describe(const char* identifier, const char* name, const char* description,
                          std::size_t values) {
    OutputDescriptor output;
    output.identifier = identifier;
    output.name = name;
    output.description = description;
    output.hasFixedBinCount = true;
    output.binCount = values;
    output.sampleType = OutputDescriptor::VariableSampleRate;
    return output;
}

void limit(OutputDescriptor& output, float lowest, float highest, float step) {
    output.hasKnownExtents = true;
    output.minValue = lowest;
    output.maxValue = highest;
    output.isQuantized = step > 0.0F;
    output.quantizeStep = step;
}

OutputDescriptor describeTempo() {
    OutputDescriptor tempo = describe(
        "tempo", "Tempo", "Sections of nearly one tempo; a single one where it is steady", 1);
    tempo.unit = "BPM";
    tempo.hasDuration = true;
    return tempo;
}

OutputDescriptor describeKey() {
    OutputDescriptor key =
        describe("key", "Key", "Sections in one key: 1 to 12, C to B major; 13 to 24, minor", 1);
    limit(key, 1.0F, track::kKeyCount, 1.0F);
    key.hasDuration = true;
    return key;
}

OutputDescriptor describeRanking() {
    OutputDescriptor ranking =
        describe("keyranking", "Key Ranking", "The probability of each key, adding up to 1",
                 track::kKeyCount);
    for (int number = 1; number <= track::kKeyCount; ++number)
        for (int key = 0; key < track::kKeyCount; ++key)
            if (keyInHosts(key) == number) ranking.binNames.push_back(keyName(key));
    limit(ranking, 0.0F, 1.0F, 0.0F);
    return ranking;
}

OutputDescriptor describeZoom() {
    OutputDescriptor zoom =
        describe("zoom", "Zoomed Waveform", "Peak level, 31 is the loudest, 150 times a second", 1);
    limit(zoom, 0.0F, kZoomLevels, 1.0F);
    zoom.sampleType = OutputDescriptor::FixedSampleRate;
    zoom.sampleRate = kZoomPointsPerSecond;
    return zoom;
}

Feature featureAt(RealTime time, std::vector<float> values = {}, std::string label = {}) {
    Feature feature;
    feature.hasTimestamp = true;
    feature.timestamp = time;
    feature.values = std::move(values);
    feature.label = std::move(label);
    return feature;
}

RealTime after(RealTime start, double seconds) {
    return start + RealTime::fromSeconds(seconds);
}

Feature featureOver(RealTime start, double from, double to, float value, std::string label) {
    Feature feature = featureAt(after(start, from), {value}, std::move(label));
    feature.hasDuration = true;
    feature.duration = RealTime::fromSeconds(to - from);
    return feature;
}

FeatureList beatsOf(const track::TrackResult& result, RealTime start) {
    FeatureList beats;
    for (const track::Beat& beat : result.beats)
        beats.push_back(
            featureAt(after(start, beat.seconds), {}, std::to_string(beat.numberInBar)));
    return beats;
}

FeatureList barsOf(const track::TrackResult& result, RealTime start) {
    FeatureList bars;
    for (const track::Beat& beat : result.beats)
        if (beat.isDownbeat())
            bars.push_back(
                featureAt(after(start, beat.seconds), {}, std::to_string(bars.size() + 1)));
    return bars;
}

std::string bpmText(double bpm) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f BPM", bpm);
    return text.data();
}

FeatureList tempoOf(const track::TrackResult& result, RealTime start) {
    FeatureList tempo;
    if (!result.bpm) return tempo;
    const auto add = [&](double from, double to, double bpm) {
        tempo.push_back(featureOver(start, from, to, static_cast<float>(bpm), bpmText(bpm)));
    };
    if (!result.judgement)
        add(0.0, result.seconds(), *result.bpm);
    else
        for (const track::TempoStretch& stretch : result.judgement->stretches)
            add(stretch.fromSeconds, stretch.toSeconds, stretch.bpm);
    return tempo;
}

FeatureList keysOf(const track::Key& key, RealTime start) {
    FeatureList keys;
    for (const track::KeySegment& segment : key.segments)
        keys.push_back(featureOver(start, segment.fromSeconds, segment.toSeconds,
                                   static_cast<float>(keyInHosts(segment.key)),
                                   keyName(segment.key)));
    return keys;
}

FeatureList rankingOf(const track::Key& key, RealTime start) {
    std::vector<float> shares(track::kKeyCount);
    for (const track::KeyCandidate& candidate : key.ranking)
        shares.at(static_cast<std::size_t>(keyInHosts(candidate.key) - 1)) =
            static_cast<float>(candidate.probability);
    return {featureAt(start, std::move(shares), keyName(key.best()))};
}

/** @param seconds  from one point to the next */
FeatureList waveOf(const std::vector<track::WavePoint>& wave, double seconds, RealTime start) {
    FeatureList points;
    for (const track::WavePoint& point : wave) {
        const double time = static_cast<double>(points.size()) * seconds;
        points.push_back(featureAt(after(start, time), {point.level}));
    }
    return points;
}

double spacing(const track::TrackResult& result, std::size_t points) {
    return points == 0 ? 0.0 : result.seconds() / static_cast<double>(points);
}

}  // namespace

Vamp::Plugin::OutputList describeOutputs() {
    return {
        describe("beats", "Beats", "The beat grid; labels count the beats of a bar from 1", 0),
        describe("bars", "Bars", "The downbeats; labels count the bars from 1", 0),
        describeTempo(),
        describeKey(),
        describeRanking(),
        describe("loudness", "Loudness", "400 points over the track; 32768 is full scale", 1),
        describe("bass", "Bass", "100 points over the track: strength of the bass", 1),
        describeZoom(),
    };
}

Vamp::Plugin::FeatureSet featuresOf(const track::TrackResult& result, RealTime start) {
    Vamp::Plugin::FeatureSet features;
    features[kBeats] = beatsOf(result, start);
    features[kBars] = barsOf(result, start);
    features[kTempo] = tempoOf(result, start);
    if (result.key) {
        features[kKey] = keysOf(*result.key, start);
        features[kKeyRanking] = rankingOf(*result.key, start);
    }
    features[kLoudWave] = waveOf(result.loudWave, spacing(result, result.loudWave.size()), start);
    features[kDotsWave] = waveOf(result.dotsWave, spacing(result, result.dotsWave.size()), start);
    features[kZoomWave] = waveOf(result.zoomWave, 1.0 / kZoomPointsPerSecond, start);
    return features;
}

}  // namespace beatatlas::vamp
