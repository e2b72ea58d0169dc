// SPDX-License-Identifier: MIT
// Oracle: the filters in their plain form. The track pauses for a while: constant signals take ways
// of their own.
#include "session/TrackFilters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/lanes/sampleLanes.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "key/KeyRankMaker.h"
#include "peakss/sensing/BeatListMaker.h"
#include "session/frameKernels.h"
#include "support/PlainBands.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"
#include "support/VectorForms.h"
#include "view/LoudViewMaker.h"
#include "view/ZoomViewMaker.h"

namespace {

using namespace beatatlas;
using namespace beatatlas::test;

/** A track in the two forms that a session hands on. */
struct Forms {
    Forms(int rate, int length) {
        TrackPlan plan;
        plan.sampleRate = rate;
        plan.lengthFrames = length;
        plan.bpm = 133.0;
        plan.stereoWidth = 0.6;
        StereoTrack track = TrackSynth(plan).renderAll();
        for (std::vector<float>* channel : {&track.left, &track.right})
            std::fill(channel->begin() + 4 * rate, channel->begin() + 5 * rate, 0.0F);
        mono.resize(track.left.size());
        stereo.resize(2 * track.left.size());
        convertFrames(track.left.data(), track.right.data(), length, mono.data(), stereo.data());
    }

    std::vector<float> mono;
    std::vector<std::int16_t> stereo;
};

/** The analysers of one track. */
struct Analysers {
    Analysers(int rate, int length) {
        unit.create(rate, length);
        simple.create(rate, length);
        zoom.create(rate, length, 150, false);
        beats.create(rate, 0, length);
        loud.create(rate, length);
        key.create(rate, length);
        key.setPreCheckData(length, 4000.0 * length, 30000.0, 0, 0.0, 0.0);
    }

    UnitEnvelopeMaker unit;
    SimpleEnvelopeMaker simple;
    ZoomViewMaker zoom;
    peakss::BeatListMaker beats;
    LoudViewMaker loud;
    KeyRankMaker key;
};

/** What they hear, section by section and sample by sample. */
struct PlainFilters {
    PlainFilters(int rate, const Analysers& analysers)
        : bands(rate, 6), pulses{analysers.unit.audioFilter(), analysers.unit.audioFilter()},
          bassLine(analysers.simple.audioFilter()), bass(analysers.zoom.bassFilter()) {}

    PlainBands bands;
    SecondOrderSection pulses[2];
    SecondOrderSection bassLine;
    SecondOrderSection bass;
};

void putFiltered(Analysers& to, TrackFilters& filters, const float* mono,
                 const std::int16_t* stereo, int n) {
    filters.operate(mono, stereo, n, &to.key);
    to.key.putSample(stereo, n);
    to.unit.putSample(filters.pulses(), n);
    to.simple.putSample(filters.bassLine(), n);
    to.zoom.putSample(stereo, filters.bass(), n);
    to.beats.put(mono, filters.bands(), n, &to.loud);
}

void putPlainlyFiltered(Analysers& to, PlainFilters& filters, const float* mono,
                        const std::int16_t* stereo, int n) {
    for (int i = 0; i < n; ++i) {
        const std::int16_t* frame = stereo + 2 * static_cast<std::size_t>(i);
        const double mean = monoOfFrame(frame);
        const double pulse = filters.pulses[1].step(filters.pulses[0].step(mean));
        const double bassLine = filters.bassLine.step(mean);
        const double bass = filters.bass.step(std::trunc(mean));
        to.unit.putSample(&pulse, 1);
        to.simple.putSample(&bassLine, 1);
        to.zoom.putSample(frame, &bass, 1);
    }
    const peakss::BandSignals bands = filters.bands.operate(mono, n);
    to.beats.put(mono, bands, n, nullptr);
    to.loud.analyzePeak(mono, bands.viewLow, bands.bands[2], bands.bands[3], n);
    to.key.putSample(stereo, n);
}

/** Scores and shares of energy, the best key first. */
std::vector<double> keyOf(const KeyRankMaker& key) {
    std::vector<double> results(24 + 12);
    key.getKeyPoint(results.data());
    key.getNoteEncountVal(results.data() + 24);
    results.push_back(key.getMainKey());
    return results;
}

void expectSame(const Analysers& expected, const Analysers& got) {
    EXPECT_EQ(got.unit.envelope(), expected.unit.envelope());
    EXPECT_EQ(got.simple.envelope(), expected.simple.envelope());
    ASSERT_EQ(got.zoom.count(), expected.zoom.count());
    for (int i = 0; i < expected.zoom.count(); ++i) {
        ASSERT_EQ(got.zoom.points()[i].level, expected.zoom.points()[i].level) << i;
        ASSERT_EQ(got.zoom.points()[i].color, expected.zoom.points()[i].color) << i;
    }
    ASSERT_EQ(got.beats.list().size(), expected.beats.list().size());
    for (std::size_t i = 0; i < expected.beats.list().size(); ++i) {
        ASSERT_EQ(got.beats.list()[i].pos, expected.beats.list()[i].pos) << i;
        ASSERT_EQ(got.beats.list()[i].interval, expected.beats.list()[i].interval) << i;
        ASSERT_EQ(got.beats.list()[i].band, expected.beats.list()[i].band) << i;
    }
    ASSERT_EQ(got.loud.loudNum(), expected.loud.loudNum());
    for (int i = 0; i < expected.loud.loudNum(); ++i)
        ASSERT_EQ(got.loud.loudWave()[i].level, expected.loud.loudWave()[i].level) << i;
    EXPECT_EQ(keyOf(got.key), keyOf(expected.key));
}

class TrackFiltersTest : public RoundTowardZero {};

TEST_F(TrackFiltersTest, AnalysersHearWhatPlainFiltersGive) {
    for (const int rate : {44100, 48000}) {
        const int length = 9 * rate + 77;
        const Forms track(rate, length);
        for (const VectorForm form : formsOfThisMachine()) {
            SCOPED_TRACE(nameOf(form));
            const FormScope scope(form);
            Analysers expected(rate, length);
            Analysers got(rate, length);
            TrackFilters filters;
            filters.create(rate, {.bands = true,
                                  .pulses = &got.unit.audioFilter(),
                                  .bassLine = &got.simple.audioFilter(),
                                  .bass = &got.zoom.bassFilter()});
            PlainFilters plain(rate, expected);
            for (int at = 0; at < length; at += rate / 75) {
                const int n = std::min(rate / 75, length - at);
                const float* mono = track.mono.data() + at;
                const std::int16_t* stereo = track.stereo.data() + 2 * static_cast<std::size_t>(at);
                putPlainlyFiltered(expected, plain, mono, stereo, n);
                putFiltered(got, filters, mono, stereo, n);
            }
            ASSERT_FALSE(expected.beats.list().empty());
            ASSERT_GT(keyOf(expected.key)[0], 0.0);
            expectSame(expected, got);
        }
    }
}

/** What a session hears that wants no more than this. */
TrackFilters filtersFor(int rate, const TrackFilters::Wanted& wanted) {
    TrackFilters filters;
    filters.create(rate, wanted);
    return filters;
}

// A session of beats without a zoom wave wants no more than one of them.
TEST_F(TrackFiltersTest, PulsesAndBassLineAreTheSameAloneAndInCompany) {
    constexpr int kRate = 44100;
    constexpr int kBlock = kRate / 75;
    const Forms track(kRate, 6 * kRate);
    const Analysers analysers(kRate, 6 * kRate);
    const SecondOrderSection& pulses = analysers.unit.audioFilter();
    const SecondOrderSection& bassLine = analysers.simple.audioFilter();
    const SecondOrderSection& bass = analysers.zoom.bassFilter();
    TrackFilters all = filtersFor(kRate, {true, &pulses, &bassLine, &bass});
    TrackFilters pulsesAlone = filtersFor(kRate, {true, &pulses, nullptr, nullptr});
    TrackFilters bassLineAlone = filtersFor(kRate, {true, nullptr, &bassLine, nullptr});
    for (int at = 0; at + kBlock <= 6 * kRate; at += kBlock) {
        for (TrackFilters* filters : {&all, &pulsesAlone, &bassLineAlone})
            filters->operate(track.mono.data() + at,
                             track.stereo.data() + 2 * static_cast<std::size_t>(at), kBlock,
                             nullptr);
        for (int i = 0; i < kBlock; ++i) {
            ASSERT_EQ(pulsesAlone.pulses()[i], all.pulses()[i]) << at + i;
            ASSERT_EQ(bassLineAlone.bassLine()[i], all.bassLine()[i]) << at + i;
        }
    }
}

// Whatever else is filtered, or nothing else.
TEST_F(TrackFiltersTest, BassIsTheSameAloneAndInCompany) {
    constexpr int kRate = 44100;
    constexpr int kBlock = kRate / 75;
    const Forms track(kRate, 6 * kRate);
    const Analysers analysers(kRate, 6 * kRate);
    const SecondOrderSection& bass = analysers.zoom.bassFilter();
    TrackFilters alone = filtersFor(kRate, {false, nullptr, nullptr, &bass});
    TrackFilters withBands = filtersFor(kRate, {true, nullptr, nullptr, &bass});
    TrackFilters withPulses =
        filtersFor(kRate, {false, &analysers.unit.audioFilter(), nullptr, &bass});
    for (int at = 0; at + kBlock <= 6 * kRate; at += kBlock) {
        for (TrackFilters* filters : {&alone, &withBands, &withPulses})
            filters->operate(track.mono.data() + at,
                             track.stereo.data() + 2 * static_cast<std::size_t>(at), kBlock,
                             nullptr);
        for (int i = 0; i < kBlock; ++i) {
            ASSERT_EQ(withBands.bass()[i], alone.bass()[i]) << at + i;
            ASSERT_EQ(withPulses.bass()[i], alone.bass()[i]) << at + i;
        }
    }
}

}  // namespace
