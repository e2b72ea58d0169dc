// SPDX-License-Identifier: MIT
// A small part of the table that measure_damage makes: always the same damage, of every kind.
#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "damage/DamageTrial.h"
#include "media/TrackFile.h"

namespace media {
namespace {

using test::DamageFormat;
using test::DamageKind;
using test::DamageTrial;

const DamageFormat& formatNamed(const std::string& name) {
    return *std::find_if(test::damageFormats().begin(), test::damageFormats().end(),
                         [&](const DamageFormat& format) { return format.name == name; });
}

const DamageKind& kindNamed(const std::string& name) {
    return *std::find_if(test::damageKinds().begin(), test::damageKinds().end(),
                         [&](const DamageKind& kind) { return kind.name == name; });
}

struct DamageCase {
    const char* name;
    const char* format;
    std::vector<const char*> kinds;
};

class DamagedFile : public testing::TestWithParam<DamageCase> {};

// The oracle is the sound of the undamaged file: what is heard behind the damage stands where it
// stood there.
TEST_P(DamagedFile, KeepsTheTimeBehindTheDamageAndSaysWhatIsMissing) {
    const DamageTrial trial(formatNamed(GetParam().format), 6.0);
    for (const char* kind : GetParam().kinds) {
        for (const std::uint32_t seed : {1U, 2U}) {
            const test::DamageOutcome outcome = trial.run(kindNamed(kind), seed);
            SCOPED_TRACE(std::string(kind) + ", seed " + std::to_string(seed));
            EXPECT_EQ(outcome.refusal, "");
            EXPECT_TRUE(outcome.isWarned);
            EXPECT_FALSE(outcome.isCutOff);
            EXPECT_FALSE(outcome.isOutOfPlace) << outcome.sound.worst << " s out of place, "
                                               << outcome.sound.missing << " s missing";
            // Matroska goes on with the next cluster, which is five seconds of six.
            EXPECT_GT(outcome.sound.heard, 0.3);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, DamagedFile,
    testing::Values(
        DamageCase{"Flac", "flac", {"flips 1e-4", "zeroed", "removed", "doubled", "beginning"}},
        DamageCase{"Vorbis", "ogg vorbis", {"zeroed", "removed", "doubled"}},
        DamageCase{"Opus", "ogg opus", {"zeroed", "removed", "doubled", "beginning"}},
        DamageCase{"Mp3", "mp3 CBR", {"zeroed"}},
        DamageCase{"Adts", "adts aac", {"flips 1e-4", "zeroed"}},
        DamageCase{"Ac3", "ac3", {"zeroed"}}, DamageCase{"Mp4", "m4a aac", {"zeroed"}},
        DamageCase{"Alac", "m4a alac", {"zeroed", "beginning"}},
        DamageCase{"Matroska", "mka vorbis", {"zeroed", "removed", "doubled"}},
        DamageCase{"FlacInMatroska", "mka flac", {"zeroed"}},
        DamageCase{"WebM", "webm opus", {"zeroed", "removed", "doubled"}},
        DamageCase{"TransportStream", "ts aac", {"zeroed", "removed"}},
        DamageCase{"Flv", "flv aac", {"zeroed", "removed", "doubled"}},
        DamageCase{"Wma", "asf wma2", {"zeroed", "removed"}}),
    [](const auto& instance) { return std::string(instance.param.name); });

class DamagedFiles : public testing::Test {
protected:
    std::string write(const std::string& name, const test::FileKind& kind,
                      const test::Sound& sound) {
        test::writeAudioFile(folder_.file(name), kind, sound);
        return test::readFile(folder_.file(name));
    }

    base::TrackSource read(const std::string& bytes) {
        test::writeFile(folder_.file("read"), bytes);
        TrackDecoder decoder(folder_.file("read"));
        sound_ = {};
        decoder.run(sound_);
        return usableTrack("read", decoder, static_cast<std::int64_t>(sound_.left.size()), true);
    }

    test::TemporaryFolder folder_;
    test::Recorder sound_;
};

// Seconds, not frames, are what the two halves have in common: 2 s at 22,050 Hz and 2 s at 44,100
// are 4 s, which is 176,400 frames at the session's rate.
TEST_F(DamagedFiles, AreNotThoseThatChangeTheirRateOnTheWay) {
    const std::string slow = write("slow", {"ogg", "libvorbis", "", false, "", 80000},
                                   test::clicks(22050, 2, 2.0, {0.5}));
    const std::string fast =
        write("fast", {"ogg", "libvorbis"}, test::clicks(44100, 2, 2.0, {1.5}));
    const base::TrackSource file = read(slow + fast);
    EXPECT_EQ(file.format.trackRate, 22050);
    EXPECT_EQ(file.format.channels, 2);
    EXPECT_TRUE(file.format.changes);
    EXPECT_THAT(file.gaps, testing::IsEmpty());
    EXPECT_EQ(file.repeatedPackets, 0);
    EXPECT_NEAR(static_cast<double>(sound_.left.size()), 4.0 * 44100, 0.05 * 44100);
    EXPECT_NEAR(test::clickNear(sound_.left, 44100, 3.5), 3.5 * 44100, 0.03 * 44100);
}

// Both begin with the same silence, and so do two copies of one recording: what begins anew is not
// there twice.
TEST_F(DamagedFiles, AreNotRecordingsThatAreJoined) {
    const test::FileKind kind = {"mpegts", "mp2"};
    const std::string one = write("one", kind, test::clicks(44100, 2, 4.0, {1.5}));
    const std::string other = write("other", kind, test::clicks(44100, 2, 3.0, {2.0}));
    for (const std::string& second : {other, one}) {
        const base::TrackSource file = read(one + second);
        EXPECT_EQ(file.repeatedPackets, 0);
        EXPECT_THAT(file.gaps, testing::IsEmpty());
        const double place = second == one ? 4.0 + 1.5 : 4.0 + 2.0;
        EXPECT_NEAR(test::clickNear(sound_.left, 44100, place), place * 44100, 0.05 * 44100);
    }
}

// A second recording whose silent beginning was cut off begins at a time that the first had too,
// with packets that it had: the music after it shows that it is another.
TEST_F(DamagedFiles, AreNotRecordingsThatAreJoinedWithoutTheirBeginning) {
    constexpr std::size_t kTsPacketBytes = 188;
    const test::FileKind kind = {"mpegts", "mp2"};
    test::Sound music = test::unmistakableSound(44100, 6.0);
    for (auto& channel : music.channels) std::fill_n(channel.begin(), 44100, 0.0F);
    const std::string one = write("one", kind, test::clicks(44100, 2, 6.0, {}));
    const std::string other = write("other", kind, music);
    const base::TrackSource file = read(one + other.substr(100 * kTsPacketBytes));
    EXPECT_EQ(file.repeatedPackets, 0);
    // A hundred packets are at most a second of silence.
    EXPECT_GT(sound_.left.size(), 11 * 44100);
    EXPECT_LT(sound_.left.size(), 12 * 44100);
}

/** Delays the tags of an FLV file by 0 to 14 ms, as live recordings have them. */
std::string wavering(std::string flv) {
    constexpr std::size_t kFirstTag = 13;
    constexpr std::size_t kTagFrame = 11 + 4;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(flv[at]); };
    const auto three = [&](std::size_t at) {
        return (std::size_t{byte(at)} << 16) | (std::size_t{byte(at + 1)} << 8) | byte(at + 2);
    };
    std::size_t tag = 0;
    for (std::size_t at = kFirstTag; at + kTagFrame <= flv.size();
         at += kTagFrame + three(at + 1)) {
        const std::size_t time = three(at + 4) + tag++ * 13 % 15;
        for (const std::size_t i : {0, 1, 2})
            flv[at + 4 + i] = static_cast<char>(time >> (16 - 8 * i) & 0xFF);
    }
    return flv;
}

TEST_F(DamagedFiles, AreNotThoseWhoseTimesWaver) {
    const std::string steady = write("a", {"flv", "aac"}, test::unmistakableSound(44100, 6.0));
    read(steady);
    const test::Recorder sound = sound_;
    const base::TrackSource file = read(wavering(steady));
    EXPECT_THAT(file.gaps, testing::IsEmpty());
    EXPECT_EQ(file.repeatedPackets, 0);
    EXPECT_EQ(sound_.left, sound.left);
}

TEST_F(DamagedFiles, OfOggAreReadThoughOneBitOfAPageIsWrong) {
    std::string bytes = write("a", {"ogg", "libvorbis"}, test::unmistakableSound(44100, 6.0));
    const base::TrackSource sound = read(bytes);
    const std::size_t frames = sound_.left.size();
    EXPECT_EQ(sound.damagedPackets, 0);
    EXPECT_FALSE(sound.lacksEnd);
    bytes[bytes.size() / 2] ^= 4;
    const base::TrackSource file = read(bytes);
    EXPECT_EQ(file.damagedPackets, 1);
    EXPECT_EQ(sound_.left.size(), frames);
}

// The last page is the one that says that it is the last.
TEST_F(DamagedFiles, OfOggTellWhenTheirLastPageIsMissing) {
    const std::string bytes = write("a", {"ogg", "libopus"}, test::unmistakableSound(48000, 6.0));
    const base::TrackSource file = read(bytes.substr(0, bytes.rfind("OggS")));
    EXPECT_TRUE(file.lacksEnd);
}

TEST_F(DamagedFiles, GiveTheSameSamplesInEveryPass) {
    for (const char* name : {"ogg vorbis", "flac", "mp3 VBR", "mka aac", "ts aac"}) {
        const DamageFormat& format = formatNamed(name);
        const std::string bytes =
            test::damaged(write("a", format.kind, test::unmistakableSound(format.rate, 4.0)),
                          kindNamed("zeroed"), 5);
        read(bytes);
        const test::Recorder first = sound_;
        read(bytes);
        EXPECT_EQ(sound_.left, first.left) << name;
        EXPECT_EQ(sound_.right, first.right) << name;
    }
}

}  // namespace
}  // namespace media
