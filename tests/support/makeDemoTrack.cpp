// SPDX-License-Identifier: MIT
// beatatlas_make_demo_track OUT.wav [options]: writes a piece of synthesised music as a 16-bit
// stereo WAV file.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/TrackSynth.h"
#include "support/WavWriter.h"

namespace {

using beatatlas::test::InstrumentLevels;
using beatatlas::test::KeyMode;
using beatatlas::test::TrackPlan;
using beatatlas::test::TrackSynth;
using beatatlas::test::WavWriter;

constexpr const char* kUsage =
    "usage: beatatlas_make_demo_track OUT.wav [options]\n"
    "  --tempo BPM      20 to 400, default 126\n"
    "  --key NAME       A, A#, B … G#, followed by m for minor; default Am\n"
    "  --seconds S      length, default 120\n"
    "  --intro S        seconds before the first beat, default 4\n"
    "  --rate HZ        44100 (default) or 48000\n"
    "  --swing PART     place of the off-beat in its beat, 0.5 straight (default) to 0.75\n"
    "  --pitch HZ       what A4 is tuned to, default 440\n"
    "  --level PART     of full scale, 0 to 1, default 0.9\n"
    "  --width PART     of the stereo picture, 0 to 1, default 0.7\n"
    "  --dry-kicks      a kick on every beat and nothing else\n";

struct Options {
    std::string path;
    std::string key = "Am";
    bool isDryKicks = false;
    std::map<std::string, double, std::less<>> numbers = {
        {"--tempo", 126.0}, {"--seconds", 120.0}, {"--intro", 4.0}, {"--rate", 44100.0},
        {"--swing", 0.5},   {"--pitch", 440.0},   {"--level", 0.9}, {"--width", 0.7},
    };

    double number(std::string_view name) const { return numbers.find(name)->second; }
};

bool readNumber(const std::string& text, double& value) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0';
}

/** Reads the option at `place`, and its value if it has one; false if it is not valid. */
bool takeOption(const std::vector<std::string>& words, std::size_t& place, Options& options) {
    const std::string& word = words[place];
    if (word == "--dry-kicks") {
        options.isDryKicks = true;
        return true;
    }
    if (!word.starts_with("--")) {
        const bool isFirst = options.path.empty();
        options.path = word;
        return isFirst;
    }
    if (++place == words.size()) return false;
    if (word == "--key") {
        options.key = words[place];
        return true;
    }
    const auto number = options.numbers.find(word);
    return number != options.numbers.end() && readNumber(words[place], number->second);
}

bool readOptions(const std::vector<std::string>& words, Options& options) {
    for (std::size_t place = 0; place < words.size(); ++place)
        if (!takeOption(words, place, options)) return false;
    return !options.path.empty();
}

bool isWithin(double value, double low, double high) {
    return value >= low && value <= high;
}

bool areInRange(const Options& options) {
    const double rate = options.number("--rate");
    return (rate == 44100.0 || rate == 48000.0) && isWithin(options.number("--tempo"), 20, 400) &&
           isWithin(options.number("--seconds"), 0, 24000) &&
           isWithin(options.number("--intro"), 0, 24000) &&
           isWithin(options.number("--swing"), 0.5, 0.75) &&
           isWithin(options.number("--pitch"), 400, 480) &&
           isWithin(options.number("--level"), 0, 1) && isWithin(options.number("--width"), 0, 1);
}

/** False if the name is none of the 24 keys. */
bool readKey(const std::string& name, TrackPlan& plan) {
    static const std::vector<std::string> kTonics = {"A",  "A#", "B", "C",  "C#", "D",
                                                     "D#", "E",  "F", "F#", "G",  "G#"};
    const bool isMinor = name.ends_with('m');
    const auto tonic =
        std::find(kTonics.begin(), kTonics.end(), name.substr(0, name.size() - (isMinor ? 1 : 0)));
    plan.tonic = static_cast<int>(tonic - kTonics.begin());
    plan.mode = isMinor ? KeyMode::minor : KeyMode::major;
    return tonic != kTonics.end();
}

/** A build-up, a break halfway and an ending, so that the overview has a visible shape. */
void arrange(TrackPlan& plan, int barCount) {
    const InstrumentLevels full;
    const InstrumentLevels thin = {full.kick * 0.7, 0.0, full.hats, 0.0, full.chords * 0.6};
    const InstrumentLevels breakdown = {0.0, 0.0, full.hats * 0.5, full.bass * 0.5, full.chords};
    const int eighth = barCount / 8;
    plan.sections = {{0, thin},
                     {eighth, full},
                     {4 * eighth, breakdown},
                     {5 * eighth, full},
                     {barCount - eighth, thin}};
}

/** The requested music; false if the key has no such name. */
bool makePlan(const Options& options, TrackPlan& plan) {
    if (!readKey(options.key, plan)) return false;
    plan.sampleRate = static_cast<int>(options.number("--rate"));
    plan.lengthFrames = static_cast<std::int64_t>(options.number("--seconds") * plan.sampleRate);
    plan.introFrames = static_cast<std::int64_t>(options.number("--intro") * plan.sampleRate);
    plan.bpm = options.number("--tempo");
    plan.swing = options.number("--swing");
    plan.concertPitchHz = options.number("--pitch");
    plan.level = options.number("--level");
    plan.stereoWidth = options.number("--width");
    plan.progression = {0, 5, 3, 4};
    const double beats = (options.number("--seconds") * plan.bpm) / 60.0;
    arrange(plan, static_cast<int>(beats) / 4);
    if (options.isDryKicks) {
        plan.levels = beatatlas::test::dryKickPlan(plan.sampleRate, 0, plan.bpm).levels;
        plan.sections.clear();
    }
    return true;
}

bool writeTrack(const TrackSynth& synth, const std::string& path) {
    constexpr std::int64_t kBlockFrames = 65536;
    const std::int64_t length = synth.plan().lengthFrames;
    WavWriter file;
    if (!file.open(path, synth.plan().sampleRate, length)) return false;
    std::vector<float> left(kBlockFrames);
    std::vector<float> right(kBlockFrames);
    for (std::int64_t from = 0; from < length; from += kBlockFrames) {
        const std::int64_t count = std::min(kBlockFrames, length - from);
        synth.render(from, count, left.data(), right.data());
        file.write(left.data(), right.data(), count);
    }
    return file.close();
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    TrackPlan plan;
    if (!readOptions({argv + 1, argv + argc}, options) || !areInRange(options) ||
        !makePlan(options, plan)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (!writeTrack(TrackSynth(plan), options.path)) {
        std::fprintf(stderr, "%s: the file could not be written\n", options.path.c_str());
        return 1;
    }
    return 0;
}
