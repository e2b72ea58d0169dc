// SPDX-License-Identifier: MIT
// Oracle: the analysers' own filters, in analysers that are fed with the track itself. It pauses for a while: constant
// signals take ways of their own.
#include "session/TrackFilters.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "key/KeyRankMaker.h"
#include "peakss/sensing/BeatListMaker.h"
#include "session/frameKernels.h"
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

/** What filters for itself, or hears through filters, of one track. */
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

void putFiltered(Analysers& to, TrackFilters& filters, const float* mono,
                 const std::int16_t* stereo, int n) {
    filters.operate(mono, stereo, n, &to.key);
    to.key.putSample(stereo, n);
    to.unit.putFiltered(filters.pulses(), n);
    to.simple.putFiltered(filters.bassLine(), n);
    to.zoom.putFiltered(stereo, filters.bass(), n);
    to.beats.putBands(mono, filters.bands(), n, &to.loud);
}

void putSamples(Analysers& to, const float* mono, const std::int16_t* stereo, int n) {
    to.unit.putSample(stereo, n);
    to.simple.putSample(stereo, n);
    to.zoom.putSample(stereo, n);
    to.beats.put(mono, n, nullptr);
    to.loud.analyzePeak(mono, nullptr, nullptr, nullptr, n);
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

TEST_F(TrackFiltersTest, AnalysersHearWhatTheyWouldFilterForThemselves) {
    for (const int rate : {44100, 48000}) {
        const int length = 9 * rate + 77;
        const Forms track(rate, length);
        for (const VectorForm form : formsOfThisMachine()) {
            SCOPED_TRACE(nameOf(form));
            const FormScope scope(form);
            Analysers expected(rate, length);
            Analysers got(rate, length);
            TrackFilters filters;
            filters.create(
                rate, rate / 75,
                {&got.unit.audioFilter(), &got.simple.audioFilter(), &got.zoom.bassFilter()});
            for (int at = 0; at < length; at += rate / 75) {
                const int n = std::min(rate / 75, length - at);
                const float* mono = track.mono.data() + at;
                const std::int16_t* stereo = track.stereo.data() + 2 * static_cast<std::size_t>(at);
                putSamples(expected, mono, stereo, n);
                putFiltered(got, filters, mono, stereo, n);
            }
            ASSERT_FALSE(expected.beats.list().empty());
            ASSERT_GT(keyOf(expected.key)[0], 0.0);
            expectSame(expected, got);
        }
    }
}

}  // namespace
