// SPDX-License-Identifier: MIT
// beatatlas_tempo_features [--features] FILE.wav...
//
// The automatic tempo of 16-bit stereo files of 44.1 or 48 kHz, one line of JSON each: for scores and for fitting
// weights. With --features a line follows for each reading that was weighed.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "track/tempo/AutoTempo.h"

namespace {

using beatatlas::track::inner::AutoTempo;
using beatatlas::track::inner::BarReading;
using beatatlas::track::inner::Block;
using beatatlas::track::inner::MetreReading;
using beatatlas::track::inner::TempoAnswer;

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

TempoAnswer analyze(const Wave& wave) {
    constexpr std::size_t kBlock = 16384;
    AutoTempo tempo(wave.rate, static_cast<int>(wave.left.size()), {}, false);
    for (std::size_t from = 0; from < wave.left.size(); from += kBlock) {
        const std::size_t count = std::min(kBlock, wave.left.size() - from);
        tempo.hear(
            Block{wave.left.data() + from, wave.right.data() + from, static_cast<int>(count)});
    }
    return tempo.finish();
}

void printTimes(const char* name, const std::vector<double>& times) {
    std::printf(", \"%s\": [", name);
    for (std::size_t i = 0; i < times.size(); ++i)
        std::printf("%s%.4f", i == 0 ? "" : ", ", times[i]);
    std::printf("]");
}

void printAnswer(const std::string& id, const TempoAnswer& answer) {
    std::printf("{\"id\": \"%s\", \"bpm\": %.3f, \"varied\": %s, \"coherence\": %.4f, "
                "\"q\": %.4f, \"local\": %.3f, \"clarity\": %.3f",
                id.c_str(), answer.bpm, answer.steadiness.isSteady ? "false" : "true",
                answer.steadiness.coherence, answer.steadiness.evenness, answer.standing,
                answer.clarity);
    printTimes("beats", answer.beats);
    std::vector<double> downbeats;
    for (std::size_t i = 0; i < answer.beats.size(); ++i)
        if (answer.bar.numberOf(i) == 1) downbeats.push_back(answer.beats[i]);
    printTimes("downbeats", downbeats);
    std::printf("}\n");
}

template <class Values, class Weights>
void printFeatures(const Values& features, const Weights& weights, double score, double share) {
    for (std::size_t i = 0; i < features.size(); ++i)
        std::printf(", \"%s\": %.6f", weights[i].name, features[i]);
    std::printf(", \"score\": %.6f, \"share\": %.6f}\n", score, share);
}

void printReadings(const std::string& id, const TempoAnswer& answer) {
    for (const MetreReading& metre : answer.metres) {
        std::printf("{\"track\": \"%s\", \"kind\": \"metre\", \"period\": %d, \"phase\": %d",
                    id.c_str(), metre.period, metre.phase);
        printFeatures(metre.features, beatatlas::track::inner::kMetreWeights, metre.score,
                      metre.share);
    }
    for (const BarReading& bar : answer.bars) {
        std::printf("{\"track\": \"%s\", \"kind\": \"bars\", \"beats\": %d, \"phase\": %d",
                    id.c_str(), bar.beats, bar.phase);
        printFeatures(bar.features, beatatlas::track::inner::kBarWeights, bar.score, bar.share);
    }
}

void answerFile(const char* path, bool wantsFeatures) {
    const std::string id = std::filesystem::path(path).stem().string();
    const TempoAnswer answer = analyze(readWave(path));
    printAnswer(id, answer);
    if (wantsFeatures) printReadings(id, answer);
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
