// SPDX-License-Identifier: MIT
// What a session does with arguments that no export passes on, and which phrase it measures over.
#include "session/Analyzer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "support/signals.h"

namespace {

using beatatlas::Analyzer;
using beatatlas::test::impulse;
using beatatlas::test::mixInto;
using beatatlas::test::silence;
using beatatlas::test::sine;

constexpr int kRate = 44100;

// A kick of 30 ms at each time in seconds, in 16-bit scale.
std::vector<float> kicks(int frames, const std::vector<double>& times) {
    std::vector<float> kick = sine(static_cast<std::size_t>(kRate) * 30 / 1000, 100.0, kRate, 1.0);
    for (std::size_t i = 0; i < kick.size(); ++i)
        kick[i] *= 20000.0F * std::exp(-static_cast<float>(i) / 400.0F);
    std::vector<float> track = silence(static_cast<std::size_t>(frames));
    for (const double time : times)
        mixInto(track, kick, static_cast<std::size_t>(std::lround(time * kRate)));
    return track;
}

std::vector<double> steadyTimes(double bpm, double endSeconds) {
    std::vector<double> times;
    for (int i = 0; i * 60.0 / bpm < endSeconds; ++i) times.push_back(i * 60.0 / bpm);
    return times;
}

class AnalyzerTest : public beatatlas::test::RoundTowardZero {
protected:
    AnalyzerTest() { analyzer_.setQuiet(true); }

    static void feed(Analyzer& analyzer, const std::vector<float>& mono) {
        analyzer.setSample(mono.data(), mono.data(), static_cast<int>(mono.size()));
    }

    Analyzer analyzer_;
};

TEST_F(AnalyzerTest, RefusesARateThatIsNoSessionRateAndATrackWithoutFrames) {
    for (const int rate : {0, 22050, 44101, 96000}) {
        analyzer_.create(rate, 1000, 32, false, true, true, false);
        analyzer_.createSimple(rate, 1000, 0, 1000, true, true, false);
        feed(analyzer_, silence(1000));
        EXPECT_FALSE(analyzer_.isAnalyzed()) << rate;
    }
    for (const int frames : {0, -1}) {
        analyzer_.createSimple(kRate, frames, 0, 1000, true, true, false);
        feed(analyzer_, silence(1000));
        EXPECT_FALSE(analyzer_.isAnalyzed()) << frames;
    }
}

// 1000 of 2000 frames would not complete the track.
TEST_F(AnalyzerTest, CreatedASecondTimeItStaysWhatItWas) {
    analyzer_.create(kRate, 1000, 32, false, true, true, false);
    analyzer_.create(kRate, 2000, 32, false, true, true, false);
    analyzer_.createSimple(kRate, 2000, 0, 2000, true, true, false);
    feed(analyzer_, silence(1000));
    EXPECT_TRUE(analyzer_.isAnalyzed());
}

TEST_F(AnalyzerTest, IsClosedOnceAndOnlyAfterItsCreation) {
    analyzer_.analyze();
    EXPECT_FALSE(analyzer_.isAnalyzed());
    analyzer_.create(kRate, 1000, 0, false, false, true, false);
    feed(analyzer_, silence(500));
    analyzer_.analyze();
    EXPECT_TRUE(analyzer_.isAnalyzed());
    const int points = analyzer_.getZoomNum();
    analyzer_.analyze();
    feed(analyzer_, silence(500));
    EXPECT_EQ(analyzer_.getZoomNum(), points);
}

// Twelve seconds of 100 BPM, then silence.
TEST_F(AnalyzerTest, ASimpleSessionSensesBeatsFromItsStartSample) {
    constexpr int kFrames = 25 * kRate;
    const std::vector<float> track = kicks(kFrames, steadyTimes(100.0, 12.0));
    const auto tempoFrom = [&track](int start) {
        Analyzer analyzer;
        analyzer.setQuiet(true);
        analyzer.createSimple(kRate, kFrames, start, kFrames, false, false, false);
        feed(analyzer, track);
        return analyzer.getBpm();
    };
    EXPECT_NEAR(tempoFrom(0), 10000, 20);
    EXPECT_EQ(tempoFrom(13 * kRate), 0);
    EXPECT_NEAR(tempoFrom(-1), 10000, 20) << "counts as 0";
    EXPECT_NEAR(tempoFrom(kFrames), 10000, 20) << "behind the range: counts as 0";
}

/** Beats at 120 BPM, from the 48th on 10 ms late. */
class PhraseTest : public AnalyzerTest {
protected:
    static peakss::BeatList beatsFor(int sectionBeats) {
        constexpr int kFrames = 48 * kRate;
        std::vector<double> times = steadyTimes(120.0, 48.0);
        for (std::size_t i = kLate; i < times.size(); ++i) times[i] += 0.01;
        Analyzer analyzer;
        analyzer.setQuiet(true);
        analyzer.create(kRate, kFrames, sectionBeats, true, false, false, false);
        feed(analyzer, kicks(kFrames, times));
        return analyzer.getBeatList();
    }
    static constexpr std::size_t kLate = 48;

    static bool areSame(const peakss::BeatList& a, const peakss::BeatList& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](const peakss::BeatInfo& x, const peakss::BeatInfo& y) {
                              return x.pos == y.pos && x.group == y.group &&
                                     x.interval == y.interval;
                          });
    }
};

// Ten milliseconds more in a phrase of n beats are 10/n ms a beat. The first bar whose phrase meets
// the late beat shows them.
TEST_F(PhraseTest, TheTempoOfABarIsThatOfThePhraseAroundIt) {
    for (const int sectionBeats : {4, 8, 16, 32, 64}) {
        const peakss::BeatList beats = beatsFor(sectionBeats);
        const auto first =
            std::find_if(beats.begin(), beats.end(),
                         [](const peakss::BeatInfo& beat) { return beat.interval > 500.05F; });
        ASSERT_NE(first, beats.end());
        EXPECT_NEAR(first->interval, 500.0 + 10.0 / sectionBeats, 0.005) << sectionBeats;
    }
}

TEST_F(PhraseTest, APhraseOfOneBarLeavesTheOtherBarsAlone) {
    const peakss::BeatList beats = beatsFor(4);
    EXPECT_EQ(std::count_if(beats.begin(), beats.end(),
                            [](const peakss::BeatInfo& beat) {
                                return std::abs(beat.interval - 500.0F) > 0.05F;
                            }),
              1);
}

TEST_F(PhraseTest, LengthsThatAreNoBarsTimesAPowerOfTwoCountAsThirtyTwoBeats) {
    const peakss::BeatList usual = beatsFor(32);
    ASSERT_FALSE(usual.empty());
    EXPECT_FALSE(areSame(beatsFor(8), usual));
    for (const int beats : {1, 3, 6, 12, 33, 48})
        EXPECT_TRUE(areSame(beatsFor(beats), usual)) << beats;
}

}  // namespace
