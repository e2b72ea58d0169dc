// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doctor/KnownTrack.h"
#include "doctor/Report.h"
#include "doctor/libraries.h"
#include "doctor/selfCheck.h"
#include "doctor/surroundings.h"

namespace app {
namespace {

using beatatlas::track::TrackResult;
using testing::HasSubstr;

TEST(DoctorChecks, MissADecoderThatFfmpegLacks) {
    // FFmpeg knows this codec's name and has no decoder for it.
    ASSERT_EQ(avcodec_find_decoder(AV_CODEC_ID_MPEGH_3D_AUDIO), nullptr);
    const Check check = checkDecoders(
        {{"FLAC", "flac", AV_CODEC_ID_FLAC}, {"MPEG-H", "mov", AV_CODEC_ID_MPEGH_3D_AUDIO}});
    EXPECT_EQ(check.outcome, Outcome::failed);
    EXPECT_THAT(check.text, HasSubstr("MPEG-H"));
    EXPECT_THAT(check.text, Not(HasSubstr("FLAC")));
    EXPECT_EQ(checkDecoders({{"X", "no such container", AV_CODEC_ID_FLAC}}).outcome,
              Outcome::failed);
    EXPECT_EQ(checkDecoders(usualFormats()).outcome, Outcome::ok);
}

TEST(DoctorChecks, RefuseALibraryOlderThanItsHeaders) {
    EXPECT_TRUE((Library{"x", "1.2.3", "1.2.3"}).fits());
    EXPECT_TRUE((Library{"x", "1.9", "1.10"}).fits()) << "numbers, not letters";
    EXPECT_TRUE((Library{"x", "1.2", ""}).fits()) << "it does not say";
    EXPECT_FALSE((Library{"x", "1.2.3", "1.2.2"}).fits());
    EXPECT_FALSE((Library{"x", "1.2.3", "2.0.0"}).fits());
    EXPECT_FALSE((Library{"x", "1.2.3", "unknown"}).fits());
    EXPECT_EQ(checkLibraries({{"x", "1.2", "1.1"}}).outcome, Outcome::failed);
    EXPECT_EQ(checkLibraries(libraries()).outcome, Outcome::ok);
}

/** What an analysis without a fault would find. */
TrackResult truth() {
    TrackResult result;
    result.rate = KnownTrack::kRate;
    result.bpm = KnownTrack::kBpm;
    for (int i = 0; i < KnownTrack::kBeats; ++i) {
        const std::int64_t frame = KnownTrack::kFirstBeat + i * KnownTrack::kBeatFrames;
        result.beats.push_back({static_cast<double>(frame) / KnownTrack::kRate, KnownTrack::kBpm,
                                frame, i % KnownTrack::kBeatsPerBar + 1});
    }
    result.key.emplace();
    result.key->ranking[0].key = KnownTrack::kKey;
    return result;
}

TEST(DoctorChecks, AcceptTheTruthAboutTheKnownTrack) {
    for (const Check& check : {checkTempo(truth()), checkBeats(truth()), checkKey(truth())})
        EXPECT_EQ(check.outcome, Outcome::ok) << check.subject << ": " << check.text;
}

TEST(DoctorChecks, NoticeEveryKindOfWrongResult) {
    TrackResult half = truth();
    half.bpm = KnownTrack::kBpm / 2;
    EXPECT_EQ(checkTempo(half).outcome, Outcome::failed);
    TrackResult late = truth();
    for (auto& beat : late.beats) beat.seconds += 0.03;
    EXPECT_EQ(checkBeats(late).outcome, Outcome::failed);
    TrackResult turned = truth();
    for (auto& beat : turned.beats) beat.numberInBar = beat.numberInBar % 4 + 1;
    EXPECT_EQ(checkBeats(turned).outcome, Outcome::failed);
    TrackResult twice = truth();
    twice.beats.insert(twice.beats.end(), twice.beats.begin(), twice.beats.end());
    EXPECT_EQ(checkBeats(twice).outcome, Outcome::failed);
    TrackResult other = truth();
    other.key->ranking[0].key = 0;
    EXPECT_EQ(checkKey(other).outcome, Outcome::failed);
    for (const auto& check : {checkTempo({}), checkBeats({}), checkKey({})})
        EXPECT_EQ(check.outcome, Outcome::failed) << check.subject;
}

TEST(DoctorChecks, TellResultsApartThatDifferInOneBit) {
    const std::uint64_t digest = digestOf(truth());
    EXPECT_EQ(digestOf(truth()), digest);
    TrackResult other = truth();
    other.beats[40].bpm = std::nextafter(other.beats[40].bpm, 1000.0);
    EXPECT_NE(digestOf(other), digest);
    other = truth();
    other.zoomWave.push_back({});
    EXPECT_NE(digestOf(other), digest);
}

TEST(DoctorReport, IsWellWhileNoCheckFailed) {
    EXPECT_TRUE(Report({}, {{"a", Outcome::ok, ""}, {"b", Outcome::note, ""}}).isWell());
    const Report ill({}, {{"a", Outcome::ok, ""}, {"b", Outcome::failed, "it is broken"}});
    EXPECT_FALSE(ill.isWell());
    EXPECT_THAT(ill.text(), HasSubstr("failed  b             it is broken\n"));
    EXPECT_THAT(ill.text(), HasSubstr("2 checks: 1 ok, 0 noted, 1 failed\n"));
}

}  // namespace
}  // namespace app
