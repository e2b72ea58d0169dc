// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatSensor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "peakss/sensing/BeatSensorSignal.h"
#include "peakss/sensing/BeatSignals.h"
#include "peakss/sensing/MonoFedSensor.h"
#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/PlainBeatSensor.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"
#include "view/LVMakeBase.h"

namespace {

using beatatlas::test::addHit;
using beatatlas::test::addHits;
using beatatlas::test::drumLoop;
using beatatlas::test::MonoFedSensor;
using beatatlas::test::PlainBeatSensor;
using beatatlas::test::silence;
using peakss::PeakBuffer;

constexpr int kRate = 48000;
constexpr int kBlock = 640;
constexpr int kNoEnd = std::numeric_limits<int>::max();

struct Beat {
    float interval;
    int pos;
    float level;
    int band;
    bool operator==(const Beat&) const = default;
};

/** Keeps what it is told. */
class Recorder : public peakss::BeatSensorSignal {
public:
    void changeStat(float interval, int pos, float level, PeakBuffer* buffer) override {
        beats.push_back({interval, pos, level, buffer->band()});
    }

    std::vector<Beat> beats;
};

/** A view that keeps the bands it is sent. */
class RecordingView : public beatatlas::LVMakeBase {
public:
    int analyzePeak(const float* in, float* low, float* mid, float* high, int n) override {
        lengths.push_back(n);
        input.insert(input.end(), in, in + n);
        if (low != nullptr) lows.insert(lows.end(), low, low + n);
        if (mid != nullptr) mids.insert(mids.end(), mid, mid + n);
        if (high != nullptr) highs.insert(highs.end(), high, high + n);
        return 1;
    }

    std::vector<int> lengths;
    std::vector<float> input;
    std::vector<float> lows;
    std::vector<float> mids;
    std::vector<float> highs;
};

class BeatSensorTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        sensor_.setSignal(&recorder_);
    }

    bool put(const std::vector<float>& signal, beatatlas::LVMakeBase* view = nullptr) {
        return sensor_.put(signal.data(), static_cast<int>(signal.size()), view);
    }

    // The beats of a fresh six-band sensor that takes the signal in blocks of one length.
    static std::vector<Beat> beatsInBlocks(const std::vector<float>& signal, int rate, int block) {
        Recorder recorder;
        MonoFedSensor sensor;
        sensor.setSignal(&recorder);
        sensor.create(rate, 0, static_cast<int>(signal.size()), 8, 6);
        const int size = static_cast<int>(signal.size());
        for (int done = 0; done < size; done += block)
            sensor.put(signal.data() + done, std::min(block, size - done), nullptr);
        return recorder.beats;
    }

    Recorder recorder_;
    MonoFedSensor sensor_;
};

TEST_F(BeatSensorTest, SensorNeverCreatedIgnoresSamples) {
    const std::vector<float> signal(1000, 0.5F);
    EXPECT_FALSE(put(signal));
    EXPECT_EQ(sensor_.selectBand(), nullptr);
    sensor_.reset();
    sensor_.release();
}

TEST_F(BeatSensorTest, SilenceHasNoBeat) {
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    EXPECT_FALSE(put(silence(kRate, 10)));
    EXPECT_TRUE(recorder_.beats.empty());
}

// A beat every 22500 samples: all bands must tell 468.75 ms, but for the 8 samples a level stands
// for.
TEST_F(BeatSensorTest, ClickTrainTellsItsInterval) {
    std::vector<float> clicks = silence(kRate, 20);
    for (std::size_t i = 22500; i < clicks.size(); i += 22500) clicks[i] = 0.9F;
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    EXPECT_TRUE(put(clicks));
    ASSERT_GT(recorder_.beats.size(), 100U);
    for (const Beat& beat : recorder_.beats) EXPECT_NEAR(beat.interval, 468.75F, 0.17F);
    // The last click, the 42nd, comes at 945000; the filters' delay puts the peak of its level
    // within 10 ms.
    EXPECT_NEAR(recorder_.beats.back().pos, 945000, 480);
    EXPECT_GT(recorder_.beats.back().level, 0.0F);
}

TEST_F(BeatSensorTest, DrumLoopsTellTheirTempo) {
    for (const int rate : {44100, 48000}) {
        for (const double bpm : {93.47, 110.0, 127.996, 150.5}) {
            const std::vector<Beat> beats = beatsInBlocks(drumLoop(rate, 15, bpm), rate, rate / 75);
            ASSERT_GT(beats.size(), 20U) << bpm;
            // Half and double time are other readings of the same pulse, dotted ones must stay
            // exceptions.
            std::size_t sameTempo = 0;
            std::size_t sameBeat = 0;
            for (const Beat& beat : beats) {
                const double share = static_cast<double>(beat.interval) * bpm / 60000.0;
                const auto isNear = [share](double to) {
                    return std::fabs(share / to - 1) < 0.005;
                };
                sameTempo += isNear(1.0) || isNear(2.0) || isNear(0.5) ? 1 : 0;
                sameBeat += isNear(1.0) ? 1 : 0;
            }
            EXPECT_GE(sameTempo * 10, beats.size() * 9) << bpm;
            EXPECT_GE(sameBeat * 2, beats.size()) << bpm;
        }
    }
}

TEST_F(BeatSensorTest, AgreesWithThePlainSensorBitForBit) {
    for (const int rate : {44100, 48000}) {
        std::vector<float> signal = drumLoop(rate, 12, 128.0);
        addHits(signal, rate, 97.0, 1000.0, 20.0, 0.4);
        std::vector<float> next = drumLoop(rate, 12, 87.0);
        signal.insert(signal.end(), next.begin(), next.end());
        const int start = 2 * rate + 13;
        const int end = 22 * rate + 5;
        Recorder plainRecorder;
        PlainBeatSensor plain(rate, start, end, &plainRecorder);
        bool plainChosen = false;
        for (const float sample : signal) plainChosen = plain.put(sample) || plainChosen;
        recorder_.beats.clear();
        sensor_.create(rate, start, end, 8, 6);
        EXPECT_EQ(put(signal), plainChosen);
        EXPECT_EQ(recorder_.beats, plainRecorder.beats);
        EXPECT_GT(recorder_.beats.size(), 50U);
    }
}

TEST_F(BeatSensorTest, EveryVectorFormGivesTheSameBeats) {
    const std::vector<float> signal = drumLoop(kRate, 10, 126.0);
    const std::vector<Beat> expected = beatsInBlocks(signal, kRate, kBlock);
    ASSERT_FALSE(expected.empty());
    for (const beatatlas::VectorForm form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        EXPECT_EQ(beatsInBlocks(signal, kRate, kBlock), expected) << beatatlas::test::nameOf(form);
    }
}

TEST_F(BeatSensorTest, BlockLengthDoesNotChangeTheBeats) {
    const std::vector<float> signal = drumLoop(44100, 8, 127.0);
    const std::vector<Beat> whole = beatsInBlocks(signal, 44100, static_cast<int>(signal.size()));
    ASSERT_GT(whole.size(), 10U);
    for (const int block : {1, 2, 3, 587, 588, 589, 640, 4096})
        EXPECT_EQ(beatsInBlocks(signal, 44100, block), whole) << block;
}

TEST_F(BeatSensorTest, PutReturnsWhetherABeatWasChosenDuringTheCall) {
    const std::vector<float> signal = drumLoop(kRate, 8, 120.0);
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    std::size_t known = 0;
    for (std::size_t done = 0; done < signal.size(); done += kBlock) {
        const bool chosen = sensor_.put(signal.data() + done, kBlock, nullptr);
        EXPECT_EQ(chosen, recorder_.beats.size() > known);
        known = recorder_.beats.size();
    }
    EXPECT_GT(known, 0U);
}

TEST_F(BeatSensorTest, WithoutReceiverBeatsAreChosenAllTheSame) {
    sensor_.setSignal(nullptr);
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    EXPECT_TRUE(put(drumLoop(kRate, 8, 120.0)));
}

TEST_F(BeatSensorTest, BandsReportInBandOrder) {
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    std::vector<float> clicks = silence(kRate, 8);
    addHits(clicks, kRate, 120.0, 0.0, 0.02, 0.9);
    std::size_t known = 0;
    for (const float& sample : clicks) {
        if (!sensor_.put(&sample, 1, nullptr)) continue;
        for (std::size_t i = known + 1; i < recorder_.beats.size(); ++i)
            EXPECT_LT(recorder_.beats[i - 1].band, recorder_.beats[i].band);
        known = recorder_.beats.size();
    }
    EXPECT_GT(known, 0U);
}

// Two bands without filters see the same, so their beats are equally steady.
TEST_F(BeatSensorTest, FirstOfEquallySteadyBandsIsTheBest) {
    sensor_.create(kRate, 0, kNoEnd, 8, 2);
    std::vector<float> clicks = silence(kRate, 4);
    for (std::size_t i = 24000; i < clicks.size(); i += 24000) clicks[i] = 0.9F;
    bool chosen = false;
    for (std::size_t i = 0; i < clicks.size() && !chosen; ++i)
        chosen = sensor_.put(&clicks[i], 1, nullptr);
    ASSERT_TRUE(chosen);
    ASSERT_EQ(recorder_.beats.size(), 2U);
    // The bands keep their beats until the next level.
    const PeakBuffer* best = sensor_.selectBand();
    ASSERT_NE(best, nullptr);
    EXPECT_EQ(best->band(), 0);
}

// One band without a filter sees the signal itself. Pulses of 8 samples, each one level high.
class OneBandSensorTest : public BeatSensorTest {
protected:
    void SetUp() override {
        BeatSensorTest::SetUp();
        sensor_.create(kRate, 0, kNoEnd, 8, 1);
    }

    // A pulse so many ms after the last one, then silence until it must have been confirmed.
    bool pulseAfterMs(int ms) {
        std::vector<float> signal(static_cast<std::size_t>(ms) * 48, 0.0F);
        std::fill_n(signal.begin() + (static_cast<std::ptrdiff_t>(ms) - 300) * 48, 8, 1.0F);
        return put(signal);
    }

    bool pulsesAfterMs(const std::vector<int>& distances) {
        bool chosen = false;
        for (const int ms : distances) chosen = pulseAfterMs(ms);
        return chosen;
    }
};

// Levels end at multiples of 8 samples and are placed at their end; the pulses begin 200 ms, 9600
// samples, after a beat.
TEST_F(OneBandSensorTest, PeakLiesAtTheEndOfItsLevel) {
    pulsesAfterMs({500, 500, 500, 500, 500});
    ASSERT_FALSE(recorder_.beats.empty());
    EXPECT_EQ(recorder_.beats[0].pos, 4 * 24000 + 9600 + 8);
    EXPECT_EQ(recorder_.beats[0].interval, 500.0F);
    EXPECT_EQ(recorder_.beats[0].level, 1.0F);
}

TEST_F(OneBandSensorTest, LevelIsTheMeanMagnitudeOfAStep) {
    std::vector<float> signal(24000, 0.0F);
    for (std::size_t i = 0; i < 8; ++i) signal[9600 + i] = i % 2 == 0 ? -1.0F : 0.5F;
    for (int pulse = 0; pulse < 6; ++pulse) put(signal);
    ASSERT_FALSE(recorder_.beats.empty());
    EXPECT_EQ(recorder_.beats[0].level, 0.75F);
}

// A perfectly steady pulse has four votes at once.
TEST_F(OneBandSensorTest, SteadyBeatIsChosenAtItsFirstVote) {
    EXPECT_FALSE(pulsesAfterMs({500, 500, 500, 500}));
    EXPECT_TRUE(pulseAfterMs(500));
}

// Every other interval is 10 ms longer: from the mean of 500 ms each beat is 5 ms off, one vote
// each. Beats are found from the fifth pulse on; the third vote for 120 BPM comes with the seventh.
TEST_F(OneBandSensorTest, NoBeatIsChosenUntilATempoHasMoreThanTwoVotes) {
    EXPECT_FALSE(pulsesAfterMs({500, 495, 505, 495, 505}));
    EXPECT_FALSE(pulseAfterMs(495));
    EXPECT_TRUE(recorder_.beats.empty());
    EXPECT_TRUE(pulseAfterMs(505));
    EXPECT_EQ(recorder_.beats.size(), 1U);
}

// 120 BPM has the majority. After a break that no reading holds, intervals of 715 and 725 ms: the
// second and third pulse tell 360 ms (two beats each), from the fourth on 720 ms fill a bar.
// Neither agrees with 120 BPM, its double or half, and each beat, some ms off its mean, has one
// vote: 167 BPM two, then 83 BPM one, two, and with the third it takes the vote over.
TEST_F(OneBandSensorTest, NewTempoIsRefusedUntilItHasMoreThanTwoVotes) {
    pulsesAfterMs(std::vector<int>(10, 500));
    const std::size_t before = recorder_.beats.size();
    EXPECT_GT(before, 0U);
    EXPECT_FALSE(pulsesAfterMs({5000, 715, 725, 715, 725, 715}));
    EXPECT_EQ(recorder_.beats.size(), before);
    EXPECT_TRUE(pulseAfterMs(725));
    ASSERT_EQ(recorder_.beats.size(), before + 1);
    EXPECT_EQ(recorder_.beats.back().interval, 720.0F);
}

// Twenty steady pulses at 120 BPM have dozens of votes; after ten at 83 BPM these are gone, and
// unsteady ones at 120 BPM, found from the fourth interval on, must gather three votes anew.
TEST_F(OneBandSensorTest, OldTempoHasLostItsVotesAfterTheChange) {
    pulsesAfterMs(std::vector<int>(20, 500));
    pulseAfterMs(5000);
    EXPECT_TRUE(pulsesAfterMs(std::vector<int>(10, 720)));
    EXPECT_FALSE(pulsesAfterMs({5000, 495, 505, 495, 505, 495}));
    EXPECT_TRUE(pulseAfterMs(505));
}

TEST_F(OneBandSensorTest, VoteIsClearedByResetAlone) {
    pulsesAfterMs(std::vector<int>(20, 500));
    sensor_.reset();
    recorder_.beats.clear();
    EXPECT_FALSE(pulsesAfterMs({500, 495, 505, 495, 505, 495}));
    EXPECT_TRUE(pulseAfterMs(505));
}

TEST_F(OneBandSensorTest, ResetStartsPositionsAnew) {
    pulsesAfterMs({500, 500, 500, 500, 500, 500});
    const std::vector<Beat> first = recorder_.beats;
    recorder_.beats.clear();
    sensor_.reset();
    pulsesAfterMs({500, 500, 500, 500, 500, 500});
    EXPECT_EQ(recorder_.beats, first);
}

TEST_F(OneBandSensorTest, CreateAgainDropsTheTrackBefore) {
    pulsesAfterMs({500, 500, 500, 500});
    sensor_.create(kRate, 0, kNoEnd, 8, 1);
    EXPECT_FALSE(pulsesAfterMs({500, 500, 500, 500}));
    EXPECT_TRUE(pulseAfterMs(500));
}

TEST_F(OneBandSensorTest, StepsAreCountedAcrossCalls) {
    for (int pulse = 0; pulse < 6; ++pulse) {
        std::vector<float> signal(24000, 0.0F);
        std::fill_n(signal.begin() + 9600, 8, 1.0F);
        sensor_.put(signal.data(), 9603, nullptr);
        sensor_.put(signal.data() + 9603, 24000 - 9603, nullptr);
    }
    ASSERT_FALSE(recorder_.beats.empty());
    EXPECT_EQ(recorder_.beats[0].pos, 4 * 24000 + 9608);
    EXPECT_EQ(recorder_.beats[0].level, 1.0F);
}

// The sample at index i is used when start ≤ i + 1 < end. With one sample per level a lone sample
// is a peak or nothing.
class RangeTest : public BeatSensorTest {
protected:
    // Whether the first of five equal pulses is sensed: if it is, the fifth closes a beat.
    bool isSensed(int index, int start, int end) {
        constexpr int beat = 24000;
        sensor_.create(kRate, start, end, 1, 1);
        recorder_.beats.clear();
        std::vector<float> signal(static_cast<std::size_t>(index + 4 * beat + 20000), 0.0F);
        for (int pulse = 0; pulse < 5; ++pulse)
            signal[static_cast<std::size_t>(index + pulse * beat)] = 1.0F;
        put(signal);
        return !recorder_.beats.empty();
    }
};

TEST_F(RangeTest, RangeBeginsOneSampleBeforeItsStart) {
    EXPECT_FALSE(isSensed(997, 999, kNoEnd));
    EXPECT_TRUE(isSensed(998, 999, kNoEnd));
    EXPECT_TRUE(isSensed(999, 999, kNoEnd));
    // The first sensed sample is placed one step after the start.
    EXPECT_EQ(recorder_.beats.back().pos, 999 + 2 + 4 * 24000);
    EXPECT_TRUE(isSensed(0, 1, kNoEnd));
    EXPECT_TRUE(isSensed(0, 0, kNoEnd));
    EXPECT_TRUE(isSensed(0, -5, kNoEnd));
    EXPECT_FALSE(isSensed(0, 2, kNoEnd));
}

// The fifth pulse, at 100 + 96000, is confirmed by the sample 13919 later: that one must be in the
// range.
TEST_F(RangeTest, RangeEndsOneSampleBeforeItsEnd) {
    constexpr int confirming = 100 + 96000 + 13919;
    EXPECT_TRUE(isSensed(100, 0, confirming + 2));
    EXPECT_FALSE(isSensed(100, 0, confirming + 1));
}

TEST_F(RangeTest, EmptyAndInvertedRangesSenseNothing) {
    EXPECT_FALSE(isSensed(100, 0, 0));
    EXPECT_FALSE(isSensed(100, 0, -1));
    EXPECT_FALSE(isSensed(100, 5000, 5000));
    EXPECT_FALSE(isSensed(100, 200000, 5000));
    EXPECT_FALSE(isSensed(100, std::numeric_limits<int>::max(), std::numeric_limits<int>::max()));
    EXPECT_FALSE(isSensed(100, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()));
}

class ForwardingTest : public BeatSensorTest {
protected:
    RecordingView view_;
};

// The view's mid and high bands are the third and fourth of the sensor's.
TEST_F(ForwardingTest, ViewReceivesInputAndItsBands) {
    const std::vector<float> signal = drumLoop(kRate, 1, 120.0);
    for (const int bandNum : {3, 4, 6}) {
        RecordingView view;
        sensor_.create(kRate, 0, kNoEnd, 8, bandNum);
        put(signal, &view);
        beatatlas::test::PlainBands filters(kRate, bandNum);
        const peakss::BandSignals bands = filters.operate(signal.data(), kRate);
        const int mid = bandNum == 3 ? 1 : 2;
        EXPECT_EQ(view.input, signal);
        EXPECT_EQ(view.lows, std::vector<float>(bands.viewLow, bands.viewLow + kRate));
        EXPECT_EQ(view.mids, std::vector<float>(bands.bands[mid], bands.bands[mid] + kRate));
        EXPECT_EQ(view.highs,
                  std::vector<float>(bands.bands[mid + 1], bands.bands[mid + 1] + kRate));
    }
}

TEST_F(ForwardingTest, TooFewBandsSendNothing) {
    sensor_.create(kRate, 0, kNoEnd, 8, 2);
    put(drumLoop(kRate, 1, 120.0), &view_);
    EXPECT_TRUE(view_.input.empty());
}

TEST_F(ForwardingTest, ViewIsServedBeforeTheStartAndBehindTheEnd) {
    const std::vector<float> signal = drumLoop(kRate, 6, 120.0);
    sensor_.create(kRate, kRate, 4 * kRate, 8, 6);
    put(signal, &view_);
    EXPECT_EQ(view_.input, signal);
    RecordingView whole;
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    put(signal, &whole);
    EXPECT_EQ(view_.mids, whole.mids);
    EXPECT_EQ(view_.highs, whole.highs);
}

TEST_F(ForwardingTest, ServingTheViewBehindTheEndSensesNoMoreBeats) {
    const std::vector<float> signal = drumLoop(kRate, 10, 120.0);
    sensor_.create(kRate, 0, 6 * kRate, 8, 6);
    put(signal);
    const std::vector<Beat> alone = recorder_.beats;
    ASSERT_FALSE(alone.empty());
    recorder_.beats.clear();
    sensor_.create(kRate, 0, 6 * kRate, 8, 6);
    put(signal, &view_);
    EXPECT_EQ(recorder_.beats, alone);
}

// Bass at 120 BPM, hi-hat at 92: neither the other's double nor half. The bass bands are first with
// more votes.
TEST_F(BeatSensorTest, BandsThatDisagreeWithTheVoteReportNothing) {
    std::vector<float> signal = silence(kRate, 12);
    addHits(signal, kRate, 120.0, 60.0, 40.0, 0.8);
    std::vector<float> hats = silence(kRate, 12);
    addHits(hats, kRate, 92.0, 9000.0, 6.0, 0.4);
    for (std::size_t i = 0; i < hats.size(); ++i) signal[i] += hats[i];
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    std::size_t known = 0;
    for (const float& sample : signal) {
        if (!sensor_.put(&sample, 1, nullptr)) continue;
        // All reports of one moment tell one tempo.
        for (std::size_t i = known; i < recorder_.beats.size(); ++i) {
            const float ratio = recorder_.beats[i].interval / recorder_.beats[known].interval;
            const float octave = ratio > 1.5F ? ratio / 2.0F : ratio < 0.75F ? ratio * 2.0F : ratio;
            EXPECT_NEAR(octave, 1.0F, 0.08F);
        }
        known = recorder_.beats.size();
    }
    EXPECT_GT(known, 0U);
}

TEST_F(BeatSensorTest, BadArgumentsAreIgnored) {
    const std::vector<float> signal(1000, 0.5F);
    sensor_.create(kRate, 0, kNoEnd, 8, 6);
    EXPECT_FALSE(sensor_.put(nullptr, 100, nullptr));
    EXPECT_FALSE(sensor_.put(signal.data(), 0, nullptr));
    EXPECT_FALSE(sensor_.put(signal.data(), -5, nullptr));
    for (const int n : {-5, 0, kBlock + 1})
        EXPECT_FALSE(sensor_.BeatSensor::put(signal.data(), {nullptr, nullptr}, n, nullptr));
    for (const int bands : {-1, 0, 1, 2, 5, 7}) {
        EXPECT_TRUE(sensor_.create(kRate, 0, kNoEnd, 8, bands));
        EXPECT_EQ(sensor_.bandNum(), std::max(bands, 0));
        EXPECT_FALSE(put(signal));
    }
    for (const int rate : {-48000, 0, 74}) {
        EXPECT_TRUE(sensor_.create(rate, 0, kNoEnd, 8, 6));
        EXPECT_FALSE(put(signal));
    }
    EXPECT_TRUE(sensor_.create(kRate, 0, kNoEnd, 0, 6));
    EXPECT_FALSE(put(signal));
}

TEST_F(BeatSensorTest, AbsurdSamplesDoNoHarm) {
    const float absurd[] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -1e38F, 1e38F, 0.0F};
    for (const float value : absurd) {
        sensor_.create(kRate, 0, kNoEnd, 8, 6);
        std::vector<float> signal = drumLoop(kRate, 3, 120.0);
        for (std::size_t i = 1000; i < signal.size(); i += 24000) signal[i] = value;
        put(signal);
        put(std::vector<float>(kRate, value));
        sensor_.reset();
        put(signal);
    }
}

}  // namespace
