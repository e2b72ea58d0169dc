// SPDX-License-Identifier: MIT
#include "track/evidence/EvidenceListener.h"

#include <cfenv>
#include <vector>

#include <gtest/gtest.h>

#include "support/TrackSynth.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

StereoTrack music(int rate) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = rate * 6 + 123;
    plan.stereoWidth = 0.7;
    return TrackSynth(plan).renderAll();
}

Evidence evidenceOf(int rate, const StereoTrack& track, int block) {
    EvidenceListener listener(rate);
    for (int i = 0; i < track.frames(); i += block)
        listener.hear(Block{track.left.data() + i, track.right.data() + i,
                            std::min(block, track.frames() - i)});
    return listener.finish();
}

void expectEqual(const Evidence& a, const Evidence& b) {
    EXPECT_EQ(a.seconds, b.seconds);
    EXPECT_EQ(a.onsets.sharp, b.onsets.sharp);
    EXPECT_EQ(a.onsets.full, b.onsets.full);
    EXPECT_EQ(a.onsets.upper, b.onsets.upper);
    EXPECT_EQ(a.onsets.strength, b.onsets.strength);
    EXPECT_EQ(a.onsets.level, b.onsets.level);
    EXPECT_EQ(a.chroma, b.chroma);
    EXPECT_EQ(a.changes.curves, b.changes.curves);
}

TEST(EvidenceListener, GivesTheSameBitsForBlocksOfEverySize) {
    for (const int rate : {44100, 48000}) {
        const StereoTrack track = music(rate);
        const Evidence expected = evidenceOf(rate, track, track.frames());
        for (const int block : {1, 587, 16384})
            expectEqual(evidenceOf(rate, track, block), expected);
    }
}

TEST(EvidenceListener, GivesTheSameBitsInEveryVectorForm) {
    const StereoTrack track = music(44100);
    const Evidence expected = evidenceOf(44100, track, 16384);
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        expectEqual(evidenceOf(44100, track, 16384), expected);
    }
}

TEST(EvidenceListener, GivesTheSameBitsInEveryRoundingModeAndLeavesIt) {
    const StereoTrack track = music(44100);
    const Evidence expected = evidenceOf(44100, track, 16384);
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        const Evidence got = evidenceOf(44100, track, 16384);
        const int left = std::fegetround();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(left, mode);
        expectEqual(got, expected);
    }
}

TEST(EvidenceListener, HearsTheMeanOfBothChannels) {
    StereoTrack track = music(44100);
    StereoTrack mono = track;
    for (std::size_t i = 0; i < mono.left.size(); ++i)
        mono.left[i] = mono.right[i] = 0.5F * (track.left[i] + track.right[i]);
    expectEqual(evidenceOf(44100, mono, 16384), evidenceOf(44100, track, 16384));
}

TEST(EvidenceListener, HasSomethingToSayOfASingleFrame) {
    const float sample = 1000.0F;
    EvidenceListener listener(44100);
    listener.hear(Block{&sample, &sample, 1});
    const Evidence evidence = listener.finish();
    EXPECT_EQ(evidence.onsets.sharp.size(), 1U);
    EXPECT_TRUE(evidence.chroma.empty());
}

}  // namespace
