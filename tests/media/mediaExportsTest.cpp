// SPDX-License-Identifier: MIT
// libbeatatlas_media as a host uses it.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/media.h"
#include "beatatlas/track.hpp"
#include "media/FileAnalysis.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/sameResults.h"

namespace media {
namespace {

using testing::HasSubstr;

/** An outcome that is released with its owner. */
class Outcome {
public:
    Outcome() = default;
    ~Outcome() { BA_FileRelease(file_); }
    Outcome(const Outcome&) = delete;
    Outcome& operator=(const Outcome&) = delete;

    int ofFile(const std::string& path, const BA_TrackOptions* track = nullptr,
               const BA_FileOptions* options = nullptr) {
        return BA_FileAnalyze(path.c_str(), track, options, &file_);
    }
    int ofSamples(const std::vector<float>& samples, int rate, int channels,
                  const BA_TrackOptions* track = nullptr) {
        const auto frames = static_cast<std::int64_t>(samples.size()) / channels;
        return BA_FileAnalyzeSamples(samples.data(), rate, channels, frames, track, &file_);
    }

    BA_File* file() const { return file_; }
    std::string reason() const { return BA_FileReason(file_); }
    beatatlas::track::TrackResult result() const {
        return beatatlas::track::resultOf(BA_FileTrack(file_));
    }

private:
    BA_File* file_ = nullptr;
};

BA_TrackOptions usualOptions() {
    BA_TrackOptions options;
    BA_TrackOptionsInit(&options, sizeof options);
    return options;
}

BA_FileOptions usualFileOptions() {
    BA_FileOptions options;
    BA_FileOptionsInit(&options, sizeof options);
    return options;
}

std::vector<float> interleaved(const test::Sound& sound) {
    std::vector<float> samples;
    for (std::size_t frame = 0; frame < sound.channels[0].size(); ++frame)
        for (const auto& channel : sound.channels) samples.push_back(channel[frame]);
    return samples;
}

class MediaLibraryTest : public testing::Test {
protected:
    test::Sound music(int rate = 44100) const {
        test::Sound sound = test::kicks(rate, 8.0, 0.5);
        test::mixInto(sound, test::cadence(rate, 1, 8.0, 3, 440.0));
        sound.channels.push_back(sound.channels[0]);
        for (float& sample : sound.channels[1]) sample *= 0.7F;
        return sound;
    }

    test::TemporaryFolder folder_;
    std::string path_ = folder_.file("track.flac");
};

TEST_F(MediaLibraryTest, FindsInAFileWhatTheProgramFinds) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    Outcome outcome;
    ASSERT_EQ(outcome.ofFile(path_), BA_FILE_OK) << outcome.reason();
    EXPECT_EQ(outcome.reason(), "");
    const beatatlas::track::TrackResult expected = FileAnalysis({}).analyze(path_).result;
    ASSERT_TRUE(expected.bpm);
    test::expectSameResults(outcome.result(), expected);
}

TEST_F(MediaLibraryTest, SaysWhatTheFileIs) {
    test::writeAudioFile(path_, {"flac", "flac"}, music(96000));
    Outcome outcome;
    ASSERT_EQ(outcome.ofFile(path_), BA_FILE_OK) << outcome.reason();
    BA_FileFacts facts;
    ASSERT_EQ(BA_FileFactsOf(outcome.file(), &facts, sizeof facts), 1);
    EXPECT_STREQ(facts.container, "flac");
    EXPECT_STREQ(facts.codec, "flac");
    EXPECT_STREQ(facts.title, "");
    EXPECT_EQ(facts.channels, 2);
    EXPECT_EQ(facts.file_rate, 96000);
    EXPECT_EQ(facts.damaged_packets, 0);
    EXPECT_EQ(facts.is_cut_off, 0);
    EXPECT_EQ(BA_FileGaps(outcome.file(), nullptr, 0), 0U);
    EXPECT_EQ(BA_TrackRate(BA_FileTrack(outcome.file())), 48000);
}

BA_FileFacts factsOf(const Outcome& outcome) {
    BA_FileFacts facts;
    EXPECT_EQ(BA_FileFactsOf(outcome.file(), &facts, sizeof facts), 1) << outcome.reason();
    return facts;
}

// Of 8 seconds at 44,100 Hz in two channels, which are not the same.
constexpr std::int64_t kMusicSamples = 2 * 8 * 44100;

TEST_F(MediaLibraryTest, CountsTheSamplesThatCannotBeAnalysedUnchanged) {
    test::Sound sound = music();
    sound.channels[0][1000] = -3.0F;
    sound.channels[1][1000] = 1.5F;
    for (const std::size_t at : {7, 8, 9})
        sound.channels[0][at] = std::numeric_limits<float>::quiet_NaN();
    test::writeAudioFile(path_, {"wav", "pcm_f32le"}, sound);
    Outcome file;
    Outcome memory;
    file.ofFile(path_);
    memory.ofSamples(interleaved(sound), 44100, 2);
    for (const Outcome* outcome : {&file, &memory}) {
        const BA_FileFacts facts = factsOf(*outcome);
        EXPECT_EQ(facts.samples, kMusicSamples);
        EXPECT_EQ(facts.clipped_samples, 2);
        EXPECT_EQ(facts.clipped_peak, 3.0);
        EXPECT_EQ(facts.not_numbers, 3);
        EXPECT_EQ(facts.is_too_loud, 1);
        EXPECT_EQ(facts.reserved_level, 0);
    }
}

TEST_F(MediaLibraryTest, SaysWhetherMoreIsClippedThanDoesNoHarm) {
    test::Sound sound = music();
    Outcome clean;
    clean.ofSamples(interleaved(sound), 44100, 2);
    EXPECT_EQ(factsOf(clean).samples, kMusicSamples);
    EXPECT_EQ(factsOf(clean).clipped_samples, 0);
    EXPECT_EQ(factsOf(clean).clipped_peak, 0.0);
    EXPECT_EQ(factsOf(clean).is_too_loud, 0);
    sound.channels[0][1000] = 1.5F;
    Outcome once;
    once.ofSamples(interleaved(sound), 44100, 2);
    EXPECT_EQ(factsOf(once).clipped_peak, 1.5);
    EXPECT_EQ(factsOf(once).is_too_loud, 0);
    sound.channels[0][1000] = std::numeric_limits<float>::infinity();
    Outcome infinite;
    infinite.ofSamples(interleaved(sound), 44100, 2);
    EXPECT_TRUE(std::isinf(factsOf(infinite).clipped_peak));
    EXPECT_EQ(factsOf(infinite).not_numbers, 0);
    EXPECT_EQ(factsOf(infinite).is_too_loud, 1);
}

TEST_F(MediaLibraryTest, AHostThatKnowsFewerFactsGetsThose) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    Outcome outcome;
    ASSERT_EQ(outcome.ofFile(path_), BA_FILE_OK) << outcome.reason();
    BA_FileFacts facts;
    std::memset(&facts, 0x55, sizeof facts);
    ASSERT_EQ(BA_FileFactsOf(outcome.file(), &facts, offsetof(BA_FileFacts, artist)), 1);
    EXPECT_STREQ(facts.codec, "flac");
    EXPECT_EQ(facts.channels, 0x55555555);
}

// As hosts were compiled before there were levels, and as they may be when there is more.
TEST_F(MediaLibraryTest, HostsOfOtherVersionsGetTheFactsThatBothKnow) {
    Outcome outcome;
    ASSERT_EQ(outcome.ofSamples(interleaved(music()), 44100, 2), BA_FILE_OK) << outcome.reason();
    struct {
        BA_FileFacts known;
        std::int64_t added;
    } facts;
    std::memset(&facts, 0x55, sizeof facts);
    BA_FileFactsOf(outcome.file(), &facts.known, offsetof(BA_FileFacts, samples));
    EXPECT_EQ(facts.known.reserved, 0);
    EXPECT_EQ(facts.known.samples, 0x5555555555555555);
    BA_FileFactsOf(outcome.file(), &facts.known, sizeof facts);
    EXPECT_EQ(facts.known.samples, kMusicSamples);
    EXPECT_EQ(facts.added, 0);
}

TEST_F(MediaLibraryTest, SamplesInMemoryGiveTheResultsOfTheirFile) {
    for (const int rate : {44100, 48000, 32000}) {
        const test::Sound sound = music(rate);
        test::writeAudioFile(path_, {"wav", "pcm_f32le"}, sound);
        Outcome file;
        Outcome memory;
        ASSERT_EQ(file.ofFile(path_), BA_FILE_OK) << file.reason();
        ASSERT_EQ(memory.ofSamples(interleaved(sound), rate, 2), BA_FILE_OK) << memory.reason();
        test::expectSameResults(memory.result(), file.result());
    }
}

TEST_F(MediaLibraryTest, OneChannelCountsAsBoth) {
    const test::Sound sound = test::kicks(44100, 8.0, 0.5);
    ASSERT_EQ(sound.channels.size(), 1U);
    test::Sound twice = sound;
    twice.channels.push_back(sound.channels[0]);
    Outcome one;
    Outcome two;
    ASSERT_EQ(one.ofSamples(interleaved(sound), 44100, 1), BA_FILE_OK);
    ASSERT_EQ(two.ofSamples(interleaved(twice), 44100, 2), BA_FILE_OK);
    test::expectSameResults(one.result(), two.result());
}

TEST_F(MediaLibraryTest, SaysWhyThereIsNoResult) {
    Outcome missing;
    EXPECT_EQ(missing.ofFile(folder_.file("none.mp3")), BA_FILE_MISSING);
    EXPECT_THAT(missing.reason(), HasSubstr("No such file"));
    EXPECT_EQ(BA_FileTrack(missing.file()), nullptr);
    EXPECT_EQ(BA_FileFactsOf(missing.file(), nullptr, 0), 0);
    test::writeFile(folder_.file("text.txt"), "These are words, and no music.");
    Outcome text;
    EXPECT_EQ(text.ofFile(folder_.file("text.txt")), BA_FILE_NOT_AUDIO);
    test::writeFile(folder_.file("empty.wav"), "");
    Outcome empty;
    EXPECT_EQ(empty.ofFile(folder_.file("empty.wav")), BA_FILE_NOT_AUDIO);
    EXPECT_EQ(empty.reason(), "is empty");
    Outcome folder;
    EXPECT_EQ(folder.ofFile(folder_.path()), BA_FILE_NOT_AUDIO) << folder.reason();
    Outcome slow;
    EXPECT_EQ(slow.ofSamples(std::vector<float>(4000), 10, 1), BA_FILE_DAMAGED);
    EXPECT_THAT(slow.reason(), HasSubstr("10 Hz"));
}

TEST_F(MediaLibraryTest, RefusesArgumentsOutOfRange) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    BA_TrackOptions track = usualOptions();
    track.beats_per_bar = 7;
    BA_FileOptions options = usualFileOptions();
    options.memory_bytes = 0;
    BA_FileOptions small = usualFileOptions();
    small.size = 1;
    Outcome outcome;
    EXPECT_EQ(outcome.ofFile(path_, &track), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(outcome.ofFile(path_, nullptr, &options), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(outcome.ofFile(path_, nullptr, &small), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(outcome.file(), nullptr);
    BA_File* file = nullptr;
    EXPECT_EQ(BA_FileAnalyze(nullptr, nullptr, nullptr, &file), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(BA_FileAnalyze(path_.c_str(), nullptr, nullptr, nullptr), BA_FILE_BAD_ARGUMENT);
    const float sample = 0.0F;
    EXPECT_EQ(BA_FileAnalyzeSamples(&sample, 44100, 1, 0, nullptr, &file), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(BA_FileAnalyzeSamples(&sample, 0, 1, 1, nullptr, &file), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(BA_FileAnalyzeSamples(&sample, 44100, 65, 1, nullptr, &file), BA_FILE_BAD_ARGUMENT);
    EXPECT_EQ(BA_FileAnalyzeSamples(nullptr, 44100, 1, 1, nullptr, &file), BA_FILE_BAD_ARGUMENT);
}

/** A host of a later version, which asks for something that this library does not know. */
TEST_F(MediaLibraryTest, RefusesWhatALaterVersionAddsUnlessItIsZero) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    struct {
        BA_FileOptions known;
        std::int64_t added;
    } later{};
    BA_FileOptionsInit(&later.known, sizeof later);
    EXPECT_EQ(later.known.size, sizeof later);
    Outcome accepted;
    EXPECT_EQ(accepted.ofFile(path_, nullptr, &later.known), BA_FILE_OK) << accepted.reason();
    later.added = 1;
    Outcome refused;
    EXPECT_EQ(refused.ofFile(path_, nullptr, &later.known), BA_FILE_BAD_ARGUMENT);
}

TEST_F(MediaLibraryTest, TheProgressCallCanStopTheWork) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    BA_TrackOptions options = usualOptions();
    int calls = 0;
    options.progress_host = &calls;
    options.progress = [](void* host, double) { return ++*static_cast<int*>(host) == 2 ? 1 : 0; };
    Outcome file;
    EXPECT_EQ(file.ofFile(path_, &options), BA_FILE_STOPPED);
    EXPECT_EQ(calls, 2);
    calls = 0;
    Outcome memory;
    EXPECT_EQ(memory.ofSamples(interleaved(music()), 44100, 2, &options), BA_FILE_STOPPED);
    EXPECT_EQ(calls, 2);
}

// Ten blocks of 65,536 frames are taken before the analysis begins, which then counts from 0 to 1.
TEST_F(MediaLibraryTest, TheProgressCallCanStopTheTakingOfSamples) {
    struct Calls {
        int count = 0;
        double fraction = 1.0;
    } calls;
    BA_TrackOptions options = usualOptions();
    options.progress_host = &calls;
    options.progress = [](void* host, double fraction) {
        auto* seen = static_cast<Calls*>(host);
        seen->fraction = fraction;
        return ++seen->count == 9 ? 1 : 0;
    };
    Outcome memory;
    EXPECT_EQ(memory.ofSamples(std::vector<float>(655360), 44100, 1, &options), BA_FILE_STOPPED);
    EXPECT_EQ(calls.count, 9);
    EXPECT_EQ(calls.fraction, 0.0);
}

TEST_F(MediaLibraryTest, AFileThatWasCutOffIsAnalysedOnRequest) {
    test::writeAudioFile(path_, {"flac", "flac"}, music());
    test::writeFile(folder_.file("cut.flac"), test::readFile(path_).substr(0, 100000));
    Outcome refused;
    EXPECT_EQ(refused.ofFile(folder_.file("cut.flac")), BA_FILE_DAMAGED);
    BA_FileOptions options = usualFileOptions();
    options.accepts_cut_off = 1;
    Outcome accepted;
    ASSERT_EQ(accepted.ofFile(folder_.file("cut.flac"), nullptr, &options), BA_FILE_OK)
        << accepted.reason();
    BA_FileFacts facts;
    BA_FileFactsOf(accepted.file(), &facts, sizeof facts);
    EXPECT_EQ(facts.is_cut_off, 1);
}

TEST(MediaLibrary, NullHandlesGiveEmptyAnswers) {
    EXPECT_EQ(BA_FileTrack(nullptr), nullptr);
    EXPECT_STREQ(BA_FileReason(nullptr), "");
    EXPECT_EQ(BA_FileFactsOf(nullptr, nullptr, 0), 0);
    EXPECT_EQ(BA_FileGaps(nullptr, nullptr, 0), 0U);
    BA_FileRelease(nullptr);
    BA_FileOptionsInit(nullptr, sizeof(BA_FileOptions));
}

}  // namespace
}  // namespace media
