// SPDX-License-Identifier: MIT
#include "FuzzSession.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "FuzzAudio.h"
#include "require.h"

namespace beatatlas::fuzz {

namespace {

constexpr int kLoudPoints = 400;
constexpr int kDotsPoints = 100;

int fuzzLength(FuzzInput& input) {
    const int kind = input.between(0, 31);
    if (kind == 0) return fuzzInt(input);
    if (kind == 1) return std::numeric_limits<int>::max() - input.between(0, 255);
    if (kind < 8) return 1 + input.between(0, 700);
    return 1 + static_cast<int>(input.bits32() % 120000U);
}

/** No NaN, and no sample so far beyond full scale that its level leaves the range of 32 bits. */
bool isAudio(const std::vector<float>& samples) {
    constexpr float kMost = 1e8F;
    return std::ranges::all_of(samples, [](float sample) { return std::abs(sample) <= kMost; });
}

}  // namespace

FuzzSession::FuzzSession(const ExportSet& exports, FuzzInput& input)
    : exports_(exports), input_(input) {
    const int kind = input.between(0, exports.createCount - 1);
    rate_ = kind % 2 == 0 ? 48000 : 44100;
    totalSamples_ = fuzzLength(input);
    const int second = fuzzInt(input);
    isInert_ = totalSamples_ <= 0 || (kind < 6 && second < 0);
    const std::uint8_t switches = input.byte();
    handle_ = exports.create[kind](totalSamples_, second, (switches & 1) != 0, (switches & 2) != 0,
                                   (switches & 4) != 0);
    require(handle_ != nullptr, "every create gives a handle");
    require(!exports.analyzed(handle_), "a new session is not analysed");
}

FuzzSession::~FuzzSession() {
    exports_.release(handle_);
}

void FuzzSession::step(int& frameBudget) {
    switch (input_.between(0, 9)) {
    case 0:
        return feedNothing();
    case 1:
    case 2:
        return feed(exports_.setSamplePre, frameBudget);
    case 3:
        readState();
        return readBeats();
    case 4:
        return readWaves();
    case 5:
        return readZoom();
    case 6:
        return readKey();
    default:
        return feed(exports_.setSample, frameBudget);
    }
}

void FuzzSession::feed(ExportSet::Feed call, int& frameBudget) {
    const int wanted = input_.flag() ? input_.between(1, 2000) : 1 + input_.bits16() * 4;
    const int count = std::min(wanted, frameBudget);
    frameBudget -= count;
    std::vector<float> left = fuzzSamples(input_, count);
    fedOnlyAudio_ = fedOnlyAudio_ && isAudio(left);
    if (input_.flag()) return call(handle_, left.data(), left.data(), count);
    std::vector<float> right = fuzzSamples(input_, count);
    fedOnlyAudio_ = fedOnlyAudio_ && isAudio(right);
    call(handle_, left.data(), right.data(), count);
}

void FuzzSession::feedNothing() {
    const auto call = input_.flag() ? exports_.setSample : exports_.setSamplePre;
    float sample = 1000.0F;
    const int count = fuzzInt(input_);
    if (count <= 0) call(handle_, &sample, &sample, count);
    call(handle_, nullptr, &sample, 1);
    call(handle_, &sample, nullptr, 1);
    call(handle_, nullptr, nullptr, count);
}

void FuzzSession::readState() {
    const bool analyzed = exports_.analyzed(handle_);
    require(analyzed || !wasAnalyzed_, "an analysed session stays analysed");
    require(!analyzed || !isInert_, "an inert session is never analysed");
    require(analyzed || exports_.getBpm(handle_) == 0, "no tempo before the analysis");
    require(analyzed || exports_.getBeatNum(handle_) == 0, "no beats before the analysis");
    wasAnalyzed_ = analyzed;
}

void FuzzSession::readBeats() {
    std::vector<BA_BeatInfo> beats(static_cast<std::size_t>(exports_.getBeatNum(handle_)));
    exports_.getBeatList(handle_, beats.data());
    for (const BA_BeatInfo& beat : beats)
        require(beat.beatNum >= 1 && beat.beatNum <= 4, "beats are numbered 1 to 4");
}

void FuzzSession::readWaves() {
    loudSeen_ = readWave(exports_.getLoudWave, kLoudPoints, loudSeen_);
    dotsSeen_ = readWave(exports_.getDotsWave, kDotsPoints, dotsSeen_);
}

// Points are prefilled with a level that none can have, which shows which points were copied.
int FuzzSession::readWave(WaveGetter getter, int most, int seen) {
    std::vector<BA_WaveInfo> out(static_cast<std::size_t>(most), {-1.0F, -1});
    const int have = fuzzInt(input_);
    const int count = getter(handle_, out.data(), have);
    require(count >= seen && count <= most, "a wave grows, up to its last point");
    for (int i = 0; i < most; ++i) {
        const BA_WaveInfo& point = out[static_cast<std::size_t>(i)];
        const bool isNew = i >= have && i < count;
        require(isNew || point.level == -1.0F, "only new points");
        require(!isNew || !fedOnlyAudio_ || point.level >= 0.0F, "levels of audio, from 0 up");
        require(isNew ? point.color >= 0 && point.color <= 5 : point.color == -1, "six colours");
    }
    require(getter(handle_, nullptr, most) == count, "a host that has all is told so");
    return count;
}

void FuzzSession::readZoom() {
    const int count = exports_.getZoomWave(handle_, nullptr);
    require(count >= 0 && count <= std::max(totalSamples_, 0) / (rate_ / 150) + 1,
            "150 zoom points a second");
    std::vector<BA_WaveInfo> out(static_cast<std::size_t>(count));
    require(exports_.getZoomWave(handle_, out.data()) == count, "reading makes no points");
    for (const BA_WaveInfo& point : out)
        require(point.color >= 0 && point.color <= 7 && point.level >= 0.0F, "zoom point ranges");
}

void FuzzSession::readKey() {
    const int key = exports_.getMainKey(handle_);
    require(key >= 0 && key <= 23, "24 keys");
    if (exports_.getKeyPoint == nullptr) return;
    std::array<double, 24> points{};
    std::array<int, 24> ranks{};
    std::array<int, 12> counts{};
    std::array<double, 12> values{};
    require(exports_.getKeyPoint(handle_, points.data()) == 24, "24 scores");
    require(exports_.getKeyRank(handle_, ranks.data()) == 24, "24 ranks");
    require(exports_.getNoteEncount(handle_, counts.data()) == 12, "12 counts");
    require(exports_.getNoteEncountVal(handle_, values.data()) == 12, "12 values");
    require(exports_.getKeyPoint(handle_, nullptr) == 24 &&
                exports_.getNoteEncountVal(handle_, nullptr) == 12,
            "a null array is told the count");
    std::sort(ranks.begin(), ranks.end());
    for (int i = 0; i < 24; ++i)
        require(ranks[static_cast<std::size_t>(i)] == (isInert_ ? 0 : i),
                "the ranking holds every key once; that of an inert session is empty");
}

void callUtility(const ExportSet& exports, void* handle, FuzzInput& input) {
    const int kind = input.between(0, 3);
    const int count = input.between(0, 12000);
    std::vector<float> samples = fuzzSamples(input, count);
    std::vector<float> out(samples.size());
    const float rate = fuzzFloat(input);
    const int first = input.between(-2, 17);
    const int mode = fuzzInt(input);
    switch (kind) {
    case 0:
        return exports.resample(handle, out.data(), count, samples.data(), count, rate,
                                fuzzInt(input), mode);
    case 1:
        return exports.cutBeats(handle, out.data(), samples.data(), count, rate, first, mode);
    case 2: {
        const float hertz = exports.pitchDetect(handle, samples.data(), count, rate, first, mode);
        return require(hertz >= 434.0F && hertz <= 446.0F, "a concert pitch");
    }
    default: {
        const int key =
            exports.getKey(handle, samples.data(), count, rate, fuzzFloat(input), first, mode);
        return require(key >= 0 && key <= 23, "24 keys of a buffer");
    }
    }
}

void callWithNull(const ExportSet& exports) {
    float sample = 1.0F;
    exports.release(nullptr);
    exports.setSamplePre(nullptr, &sample, &sample, 1);
    exports.setSample(nullptr, nullptr, nullptr, -1);
    exports.getBeatList(nullptr, nullptr);
    exports.resample(nullptr, &sample, 1, &sample, 1, 1.0F, 1, 0);
    exports.cutBeats(nullptr, &sample, &sample, 1, 44100.0F, 1, 0);
    require(!exports.analyzed(nullptr) && exports.getBpm(nullptr) == 0 &&
                exports.getBeatNum(nullptr) == 0 && exports.getLoudWave(nullptr, nullptr, 0) == 0 &&
                exports.getDotsWave(nullptr, nullptr, 0) == 0 &&
                exports.getZoomWave(nullptr, nullptr) == 0 && exports.getMainKey(nullptr) == 0 &&
                exports.pitchDetect(nullptr, &sample, 1, 44100.0F, 1, 0) == 0.0F &&
                exports.getKey(nullptr, &sample, 1, 44100.0F, 440.0F, 1, 0) == 0,
            "a null handle is answered neutrally");
    if (exports.getKeyPoint == nullptr) return;
    require(exports.getKeyPoint(nullptr, nullptr) == 0 &&
                exports.getKeyRank(nullptr, nullptr) == 0 &&
                exports.getNoteEncount(nullptr, nullptr) == 0 &&
                exports.getNoteEncountVal(nullptr, nullptr) == 0,
            "a null handle is answered neutrally");
}

}  // namespace beatatlas::fuzz
