// SPDX-License-Identifier: MIT
#include "envelope/RhythmFigures.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using RhythmFiguresTest = RoundTowardZero;
using Indices = std::vector<int>;

// With beats of 100 values a gap of f beats lies strictly between trunc(90 f) and trunc(110 f) + 1:
// one beat 91..110, one and a half 136..165, two 181..220, two and a half 226..275.
RhythmFigures figuresOf(const Indices& peaks, double beat = 100.0) {
    EnvelopeGrid grid;
    grid.beatIndex = {1};
    grid.beatLength = {beat};
    return findRhythmFigures(peaks, grid);
}

bool startsFigureA(int gap, int nextGap) {
    return !figuresOf({50, 50 + gap, 50 + gap + nextGap}).figureA.empty();
}

bool startsFigureB(int gap) {
    return !figuresOf({50, 50 + gap, 1000}).figureB.empty();
}

TEST_F(RhythmFiguresTest, FigureAIsTwoAndAHalfBeatsThenOneAndAHalfOrTwo) {
    EXPECT_EQ(figuresOf({50, 300, 450}).figureA, Indices{50});
    EXPECT_EQ(figuresOf({50, 300, 500}).figureA, Indices{50});
    EXPECT_FALSE(startsFigureA(250, 100));
    EXPECT_FALSE(startsFigureA(200, 150));
}

TEST_F(RhythmFiguresTest, GapsMayBeATenthOff) {
    EXPECT_FALSE(startsFigureA(225, 150));
    EXPECT_TRUE(startsFigureA(226, 150));
    EXPECT_TRUE(startsFigureA(275, 150));
    EXPECT_FALSE(startsFigureA(276, 150));
    EXPECT_FALSE(startsFigureA(250, 135));
    EXPECT_TRUE(startsFigureA(250, 136));
    EXPECT_TRUE(startsFigureA(250, 165));
    EXPECT_FALSE(startsFigureA(250, 166));
    EXPECT_FALSE(startsFigureA(250, 180));
    EXPECT_TRUE(startsFigureA(250, 181));
    EXPECT_TRUE(startsFigureA(250, 220));
    EXPECT_FALSE(startsFigureA(250, 221));
}

TEST_F(RhythmFiguresTest, FigureBIsAGapOfOneAndAHalfBeats) {
    EXPECT_FALSE(startsFigureB(135));
    EXPECT_TRUE(startsFigureB(136));
    EXPECT_TRUE(startsFigureB(165));
    EXPECT_FALSE(startsFigureB(166));
}

// Three gaps of a beat start at 50, 150 and 250; only the first two have a gap after them.
TEST_F(RhythmFiguresTest, PlainBeatsCountAgainstFigureB) {
    const RhythmFigures figures = figuresOf({50, 150, 250, 350, 500, 1000});
    EXPECT_EQ(figures.figureB, Indices{350});
    EXPECT_EQ(figures.countB, 1 - 2);
    EXPECT_EQ(figuresOf({50, 141, 241}).countB, -1);
    EXPECT_EQ(figuresOf({50, 140, 240}).countB, 0);
    EXPECT_EQ(figuresOf({50, 150, 260}).countB, -1);
    EXPECT_EQ(figuresOf({50, 150, 261}).countB, 0);
}

TEST_F(RhythmFiguresTest, FiguresMayOverlap) {
    EXPECT_EQ(figuresOf({0, 250, 400, 550, 1000}).figureA, Indices{0});
    EXPECT_EQ(figuresOf({0, 250, 400, 550, 1000}).figureB, (Indices{250, 400}));
}

TEST_F(RhythmFiguresTest, FewerThanThreePeaksGiveNoFigures) {
    for (const Indices& peaks : {Indices{}, Indices{1}, Indices{1, 151}}) {
        EXPECT_TRUE(figuresOf(peaks).figureB.empty());
    }
}

TEST_F(RhythmFiguresTest, BeatLengthIsThatInForceAtTheStart) {
    EnvelopeGrid grid;
    grid.beatIndex = {1, 500};
    grid.beatLength = {100.0, 50.0};
    EXPECT_EQ(findRhythmFigures({50, 200, 600, 675, 1000}, grid).figureB, (Indices{50, 600}));
}

TEST_F(RhythmFiguresTest, WithoutAUsableBeatLengthThereAreNone) {
    for (const double beat : {0.0, -100.0, 1e300, std::nan("")}) {
        const RhythmFigures figures = figuresOf({1, 2, 3, 4, 5}, beat);
        EXPECT_TRUE(figures.figureA.empty());
        EXPECT_TRUE(figures.figureB.empty());
        EXPECT_EQ(figures.countB, 0);
    }
}

TEST_F(RhythmFiguresTest, ElevenFiguresAAreTrustedBeforeFiguresB) {
    RhythmFigures figures;
    figures.countB = 81;
    figures.figureA.resize(10);
    EXPECT_EQ(figures.trusted(), &figures.figureB);
    figures.figureA.resize(11);
    EXPECT_EQ(figures.trusted(), &figures.figureA);
}

TEST_F(RhythmFiguresTest, EightyNetFiguresBAreNotTrusted) {
    RhythmFigures figures;
    figures.figureB.resize(500);
    figures.countB = 80;
    EXPECT_EQ(figures.trusted(), nullptr);
    figures.countB = 81;
    EXPECT_EQ(figures.trusted(), &figures.figureB);
}

}  // namespace
}  // namespace beatatlas::test
