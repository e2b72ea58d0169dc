// SPDX-License-Identifier: MIT
#include "extremes/ExtremeSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/TrackSynth.h"
#include "support/signals.h"

namespace beatatlas::test {

namespace {

constexpr float kPeak = 20000.0F;

class Noise : public ExtremeSignal {
public:
    void next(int count, float* left, float* right) override {
        for (int i = 0; i < count; ++i) {
            left[i] = kPeak * draw();
            right[i] = kPeak * draw();
        }
    }

    /** -1 … 1. */
    float draw() {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<float>(state_ >> 8) / 8388608.0F - 1.0F;
    }

private:
    std::uint32_t state_ = 1;
};

/** A stretch over and over. */
class Loop : public ExtremeSignal {
public:
    explicit Loop(StereoTrack stretch) : stretch_(std::move(stretch)) {}

    void next(int count, float* left, float* right) override {
        for (int done = 0; done < count;) {
            const int part = std::min(count - done, stretch_.frames() - at_);
            std::copy_n(stretch_.left.begin() + at_, part, left + done);
            std::copy_n(stretch_.right.begin() + at_, part, right + done);
            done += part;
            at_ = (at_ + part) % stretch_.frames();
        }
    }

private:
    StereoTrack stretch_;
    int at_ = 0;
};

/** Bursts of 20 ms, 84 to 156 a minute and back again every two minutes. */
class Dense : public ExtremeSignal {
public:
    explicit Dense(int rate) : rate_(rate) {}

    void next(int count, float* left, float* right) override {
        for (int i = 0; i < count; ++i) {
            if (static_cast<double>(at_) >= nextOnset_) beginBurst();
            const double age = static_cast<double>(at_++) - onset_;
            const double gain = std::max(0.0, 1.0 - age / (kBurstSeconds * rate_));
            left[i] = right[i] = kPeak * static_cast<float>(gain) * noise_.draw();
        }
    }

private:
    static constexpr double kBurstSeconds = 0.02;
    static constexpr double kGlideSeconds = 20.0;

    void beginBurst() {
        onset_ = nextOnset_;
        const double hertz = 2.0 * (1.0 + 0.3 * std::sin(onset_ / rate_ / kGlideSeconds));
        nextOnset_ = onset_ + rate_ / hertz;
    }

    int rate_;
    Noise noise_;
    std::int64_t at_ = 0;
    double onset_ = 0.0;
    double nextOnset_ = 0.0;
};

StereoTrack bothChannels(const std::vector<float>& mono) {
    return {mono, mono};
}

StereoTrack minuteOfMusic(int rate) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = std::int64_t{rate} * 60;
    plan.bpm = 120.0;
    return TrackSynth(plan).renderAll();
}

}  // namespace

std::unique_ptr<ExtremeSignal> makeExtremeSignal(const std::string& name, int rate) {
    const auto second = static_cast<std::size_t>(rate);
    if (name == "silence") return std::make_unique<Loop>(bothChannels(silence(second)));
    if (name == "noise") return std::make_unique<Noise>();
    if (name == "click")
        return std::make_unique<Loop>(
            bothChannels(impulse(60 * second, second, static_cast<double>(kPeak))));
    if (name == "tone")
        return std::make_unique<Loop>(
            bothChannels(sine(second, 440.0, rate, static_cast<double>(kPeak))));
    if (name == "music") return std::make_unique<Loop>(minuteOfMusic(rate));
    if (name == "dense") return std::make_unique<Dense>(rate);
    return nullptr;
}

}  // namespace beatatlas::test
