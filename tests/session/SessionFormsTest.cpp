// SPDX-License-Identifier: MIT
// A whole session gives the same bits in every vector form; the oracle is the baseline, whose
// kernels are compared with their plain forms one by one in the tests of their rooms.
#include <vector>

#include <gtest/gtest.h>

#include "support/HostSession.h"
#include "support/TrackSynth.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;
using namespace beatatlas::test;

StereoTrack trackAt(int rate) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = rate * 12LL + 321;
    plan.bpm = 127.0;
    plan.mode = KeyMode::minor;
    plan.stereoWidth = 0.7;
    return TrackSynth(plan).renderAll();
}

SessionResults resultsIn(VectorForm form, const SessionRequest& request, const StereoTrack& track) {
    const FormScope scope(form);
    return analyseTrack(request, track, {4096, 1, 577});
}

TEST(SessionFormsTest, EveryKindOfSessionGivesTheSameBitsInEveryForm) {
    for (const int rate : {44100, 48000}) {
        const StereoTrack track = trackAt(rate);
        for (const SessionKind kind :
             {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
            const SessionRequest request{.kind = kind, .rate = rate, .key = true};
            const SessionResults expected = resultsIn(VectorForm::baseline, request, track);
            ASSERT_TRUE(expected.analyzed);
            ASSERT_FALSE(expected.loud.empty());
            for (const VectorForm form : formsOfThisMachine())
                EXPECT_TRUE(sameBits(resultsIn(form, request, track), expected))
                    << nameOf(form) << ", rate " << rate << ", kind " << static_cast<int>(kind);
        }
    }
}

// Without beats the loudness view filters for itself.
TEST(SessionFormsTest, ViewsAloneGiveTheSameBitsInEveryForm) {
    const StereoTrack track = trackAt(44100);
    const SessionRequest request{.kind = SessionKind::constant, .sectionBeats = 0};
    const SessionResults expected = resultsIn(VectorForm::baseline, request, track);
    for (const VectorForm form : formsOfThisMachine())
        EXPECT_TRUE(sameBits(resultsIn(form, request, track), expected)) << nameOf(form);
    const SessionRequest withBeats{.kind = SessionKind::constant};
    const SessionResults shared = resultsIn(VectorForm::baseline, withBeats, track);
    ASSERT_EQ(shared.loud.size(), expected.loud.size());
    for (std::size_t i = 0; i < shared.loud.size(); ++i)
        EXPECT_EQ(shared.loud[i].level, expected.loud[i].level) << i;
}

}  // namespace
