// SPDX-License-Identifier: MIT
// beatatlas_tempo_features [--features] FILE.wav...
// Prints the automatic tempo of 16-bit stereo files of 44.1 or 48 kHz, one line of JSON each. With
// --features it prints the features behind the decision instead, for programs that fit their
// weights: one line with all readings of the beats, and one with all readings of the bars.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/BeatLine.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/decideTempo.h"
#include "track/tempo/layBeats.h"

namespace {

using namespace beatatlas::track::inner;

struct File {
    explicit File(const char* path) : handle(std::fopen(path, "rb")) {
        if (handle == nullptr) throw std::runtime_error(std::string("cannot open ") + path);
    }
    ~File() { std::fclose(handle); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::FILE* handle;
};

struct Wave {
    int rate = 0;
    std::vector<float> left;  // in 16-bit scale
    std::vector<float> right;
};

std::uint32_t number(const unsigned char* bytes, int count) {
    std::uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i) value = value << 8 | bytes[i];
    return value;
}

void readSamples(std::FILE* file, std::uint32_t bytes, Wave& wave) {
    std::vector<unsigned char> data(bytes);
    data.resize(std::fread(data.data(), 1, data.size(), file));
    for (std::size_t i = 0; i + 4 <= data.size(); i += 4) {
        wave.left.push_back(static_cast<float>(static_cast<std::int16_t>(number(&data[i], 2))));
        wave.right.push_back(
            static_cast<float>(static_cast<std::int16_t>(number(&data[i + 2], 2))));
    }
}

Wave readWave(const char* path) {
    const File file(path);
    unsigned char head[12];
    unsigned char chunk[8];
    Wave wave;
    if (std::fread(head, 1, sizeof head, file.handle) != sizeof head)
        throw std::runtime_error("no WAVE file");
    while (std::fread(chunk, 1, sizeof chunk, file.handle) == sizeof chunk) {
        const std::uint32_t bytes = number(chunk + 4, 4);
        if (std::memcmp(chunk, "data", 4) == 0) {
            readSamples(file.handle, bytes, wave);
            break;
        }
        std::vector<unsigned char> body((bytes + 1) & ~std::uint32_t{1});
        if (std::fread(body.data(), 1, body.size(), file.handle) != body.size()) break;
        if (std::memcmp(chunk, "fmt ", 4) != 0 || bytes < 16) continue;
        if (number(&body[2], 2) != 2 || number(&body[14], 2) != 16)
            throw std::runtime_error("not 16 bits and stereo");
        wave.rate = static_cast<int>(number(&body[4], 4));
    }
    if (wave.rate != 44100 && wave.rate != 48000) throw std::runtime_error("not of a known rate");
    if (wave.left.empty()) throw std::runtime_error("no samples");
    return wave;
}

/** The evidence of a track, and the answer. */
struct Analysis {
    Evidence evidence;
    SessionDownbeats downbeats;
    TempoAnswer answer;
};

std::vector<double> downbeatsOf(const SessionGrid& grid, int rate) {
    std::vector<double> seconds;
    for (const auto& beat : grid.beats)
        if (beat.group == 1) seconds.push_back(static_cast<double>(beat.pos) / rate);
    return seconds;
}

Analysis analyze(const Wave& wave) {
    constexpr std::size_t kBlock = 16384;
    SessionPair sessions(wave.rate, static_cast<int>(wave.left.size()), false);
    EvidenceListener listener(wave.rate);
    for (std::size_t from = 0; from < wave.left.size(); from += kBlock) {
        const std::size_t count = std::min(kBlock, wave.left.size() - from);
        const Block block{wave.left.data() + from, wave.right.data() + from,
                          static_cast<int>(count)};
        sessions.hear(block);
        listener.hear(block);
    }
    sessions.close();
    Analysis analysis{listener.finish(),
                      {downbeatsOf(sessions.grids().simple, wave.rate),
                       downbeatsOf(sessions.grids().varied, wave.rate)},
                      {}};
    analysis.answer = decideTempo(analysis.evidence, sessions.grids(), wave.rate, {});
    return analysis;
}

template <class Values>
void printList(const char* name, const Values& values, int decimals) {
    std::printf(", \"%s\": [", name);
    for (std::size_t i = 0; i < values.size(); ++i)
        std::printf("%s%.*f", i == 0 ? "" : ", ", decimals, values[i]);
    std::printf("]");
}

void printAnswer(const std::string& id, const TempoAnswer& answer) {
    std::printf("{\"id\": \"%s\", \"bpm\": %.3f, \"varied\": %s, \"coherence\": %.4f, "
                "\"q\": %.4f, \"local\": %.3f, \"clarity\": %.3f, \"c_pulse\": %.2f, "
                "\"c_level\": %.2f, \"c_phase\": %.2f, \"c_bars\": %.2f",
                id.c_str(), answer.bpm, answer.isSteady ? "false" : "true",
                answer.steadiness.coherence, answer.steadiness.evenness, answer.standing,
                answer.clarity, answer.confidence.pulse, answer.confidence.level,
                answer.confidence.phase, answer.confidence.bars);
    printList("beats", answer.beats, 4);
    printList("downbeats", answer.downbeats, 4);
    std::printf("}\n");
}

template <class Weights>
void beginGroup(const std::string& id, const char* kind, const Weights& weights) {
    std::printf("{\"id\": \"%s\", \"kind\": \"%s\", \"features\": [", id.c_str(), kind);
    for (std::size_t i = 0; i < weights.size(); ++i)
        std::printf("%s\"%s\"", i == 0 ? "" : ", ", weights[i].name);
    std::printf("], \"hypotheses\": [");
}

template <class Features>
void printReading(bool isFirst, int length, int phase, const std::vector<double>& times,
                  const Features& features) {
    std::printf("%s{\"name\": \"%d/%d\"", isFirst ? "" : ", ", length, phase);
    printList("times", times, 4);
    printList("values", features, 6);
    std::printf("}");
}

void printReadings(const std::string& id, const Analysis& analysis) {
    const TempoAnswer& answer = analysis.answer;
    if (answer.metres.empty()) return;
    const BeatLine line(answer.line);
    beginGroup(id, "level", kMetreWeights);
    for (const MetreReading& metre : answer.metres)
        printReading(&metre == &answer.metres.front(), metre.period, metre.phase,
                     layBeats(analysis.evidence.onsets.sharp, analysis.evidence.seconds, line,
                              metre, answer.isSteady),
                     metre.features);
    std::printf("]}\n");
    if (answer.beats.size() < kLeastBeatsForBars) return;
    const std::vector<BarReading> bars = judgeBars(
        analysis.evidence, answer.beats, analysis.downbeats.simple, analysis.downbeats.varied);
    beginGroup(id, "bar", kBarWeights);
    for (const BarReading& bar : bars) {
        std::vector<double> downbeats;
        for (auto k = static_cast<std::size_t>(bar.phase); k < answer.beats.size();
             k += static_cast<std::size_t>(bar.beats))
            downbeats.push_back(answer.beats[k]);
        printReading(&bar == &bars.front(), bar.beats, bar.phase, downbeats, bar.features);
    }
    std::printf("]}\n");
}

void answerFile(const char* path, bool wantsFeatures) {
    const std::string id = std::filesystem::path(path).stem().string();
    const Analysis analysis = analyze(readWave(path));
    if (wantsFeatures)
        printReadings(id, analysis);
    else
        printAnswer(id, analysis.answer);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const bool wantsFeatures = argc > 1 && std::strcmp(argv[1], "--features") == 0;
    int failures = 0;
    for (int i = wantsFeatures ? 2 : 1; i < argc; ++i) {
        try {
            answerFile(argv[i], wantsFeatures);
        } catch (const std::exception& fault) {
            std::fprintf(stderr, "%s: %s\n", argv[i], fault.what());
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}
