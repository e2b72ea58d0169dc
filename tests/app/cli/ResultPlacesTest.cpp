// SPDX-License-Identifier: MIT
#include "cli/ResultPlaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/displayName.h"

namespace app {
namespace {

using testing::ElementsAre;

TEST(ResultPlaces, NamesResultsAfterTheirTracks) {
    EXPECT_THAT(resultNames({"music/One.flac", "two.mp3", "three", ".four.ogg"}, ".png"),
                ElementsAre("One.png", "two.png", "three.png", ".four.png"));
}

TEST(ResultPlaces, KeepsTheEndingWhereTracksDifferInItAlone) {
    EXPECT_THAT(resultNames({"a.mp3", "b.mp3", "a.flac"}, ".svg"),
                ElementsAre("a.mp3.svg", "b.svg", "a.flac.svg"));
}

TEST(ResultPlaces, NumbersTracksOfOneName) {
    EXPECT_THAT(resultNames({"x/a.mp3", "y/a.mp3", "z/a.mp3"}, ".png"),
                ElementsAre("a.mp3.png", "a.mp3 (2).png", "a.mp3 (3).png"));
}

TEST(ResultPlaces, TakesCapitalsForTheSameName) {
    EXPECT_THAT(resultNames({"x/Song.mp3", "y/SONG.MP3"}, ".png"),
                ElementsAre("Song.mp3.png", "SONG.MP3 (2).png"));
}

TEST(ResultPlaces, NeverGivesAwayTheNameOfAnotherTrack) {
    EXPECT_THAT(resultNames({"x/a.mp3", "y/a.mp3", "a.mp3.wav", "a.mp3 (2).wav"}, ".png"),
                ElementsAre("a.mp3 (3).png", "a.mp3 (4).png", "a.mp3.png", "a.mp3 (2).png"));
}

// 85 letters of three bytes; the name of the result has to fit into 255 with what is written after it.
TEST(ResultPlaces, ShortensNamesThatAreTooLongForAResult) {
    std::string longest;
    for (int i = 0; i < 83; ++i) longest += "音";
    const auto names = resultNames({"x/" + longest + ".mp3", "y/" + longest + ".mp3"}, ".png");
    EXPECT_NE(names[0], names[1]);
    for (const std::string& name : names) {
        EXPECT_LE(name.size(), 240U);
        EXPECT_TRUE(base::isUtf8(name));
    }
}

}  // namespace
}  // namespace app
