// SPDX-License-Identifier: MIT
// Files that declare another length than they have: that is reported, and the true one is analysed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "media/FileAnalysis.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/sameResults.h"

namespace media {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int64_t kFrames = 44100 * 8;

class WrongLength : public testing::Test {
protected:
    std::string write(const test::FileKind& kind) {
        test::writeAudioFile(track_, kind, test::tone(44100, 2, 8.0, 220.0, 0.4));
        return test::readFile(track_);
    }

    /** Puts a number in a place of the file's bytes. */
    void declare(std::string bytes, std::size_t at, std::size_t count, std::uint64_t number,
                 bool isLittleEndian) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = at + (isLittleEndian ? i : count - 1 - i);
            bytes[place] = static_cast<char>((number >> (8 * i)) & 0xFF);
        }
        test::writeFile(track_, bytes);
    }

    /** The last 32 of the 36 bits that count the frames, behind "fLaC", a block's header and 14
     *  bytes of it. */
    void declareFlac(std::uint64_t frames) {
        declare(write({"flac", "flac"}), 4 + 4 + 14, 4, frames, false);
    }

    /** The data chunk's length, at the end of the shortest header there is. */
    void declareWave(std::uint64_t frames) {
        const std::string bytes = write({"wav", "pcm_s16le", "fflags=+bitexact"});
        declare(bytes, bytes.find("data") + 4, 4, frames * 4, true);
    }

    /** The number of frames of 1152 samples, behind the header's name and flags. */
    void declareMp3(std::uint64_t (*wrong)(std::uint64_t)) {
        const std::string bytes = write({"mp3", "libmp3lame"});
        const std::size_t at = std::min(bytes.find("Xing"), bytes.find("Info")) + 8;
        std::uint64_t count = 0;
        for (std::size_t i = 0; i < 4; ++i)
            count = (count << 8) | static_cast<unsigned char>(bytes[at + i]);
        declare(bytes, at, 4, wrong(count), false);
    }

    /** Analyses the file in every way. @return the notes of each, which must be the same */
    std::vector<std::string> notesOnTheRightResults(bool acceptsCutOff = false) {
        const test::PlainAnalysis plain(track_);
        beatatlas::track::TrackResult ofOnePass = plain.result();
        ofOnePass.sessionKey.reset();
        std::optional<std::vector<std::string>> first;
        for (const std::int64_t memory : {std::int64_t{1}, std::int64_t{1} << 30}) {
            for (const int threads : {1, 2, 3}) {
                FileAnalysis::Options options;
                options.effort = {memory, threads};
                options.acceptsCutOff = acceptsCutOff;
                const auto notes = notesOnTheRightResult(options, ofOnePass);
                options.track.wantsSessionKey = true;
                EXPECT_EQ(notesOnTheRightResult(options, plain.result()), notes);
                if (!first) first = notes;
                EXPECT_EQ(notes, *first) << memory << " bytes, " << threads << " threads";
            }
        }
        return *first;
    }

    std::vector<std::string> notesOnTheRightResult(FileAnalysis::Options options,
                                                   const beatatlas::track::TrackResult& expected) {
        std::vector<std::string> notes;
        options.note = [&](const std::string& text) { notes.push_back(text); };
        test::expectSameResults(FileAnalysis(options).analyze(track_).result, expected);
        return notes;
    }

    std::string refusal() {
        try {
            static_cast<void>(FileAnalysis({}).analyze(track_));
        } catch (const base::TrackError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("track");
};

TEST_F(WrongLength, IsToldAndMadeGoodWhereAFlacGoesOnBehindIt) {
    declareFlac(kFrames - 1);
    EXPECT_THAT(notesOnTheRightResults(),
                ElementsAre("declares 352799 frames and has 352800: analysed over again with its "
                            "true length"));
    declareFlac(kFrames / 2);
    EXPECT_THAT(notesOnTheRightResults(),
                ElementsAre(HasSubstr("declares 176400 frames and has 352800")));
}

TEST_F(WrongLength, IsRefusedAsCutOffWhereAFlacEndsBeforeIt) {
    for (const std::int64_t frames : {kFrames + 1, 2 * kFrames}) {
        declareFlac(static_cast<std::uint64_t>(frames));
        EXPECT_THAT(refusal(), HasSubstr("is cut off"));
        EXPECT_THAT(notesOnTheRightResults(true), ElementsAre(HasSubstr("and has 352800")));
    }
}

TEST_F(WrongLength, IsNothingToTellOfWhereItIsMissing) {
    declareFlac(0);
    EXPECT_THAT(notesOnTheRightResults(true), IsEmpty());
    declareMp3([](std::uint64_t) -> std::uint64_t { return 0; });
    EXPECT_THAT(notesOnTheRightResults(), IsEmpty());
}

// A WAV ends where its header says, so less is its true length; more is cut off, and FFmpeg goes by
// the file's own end.
TEST_F(WrongLength, OfAWaveIsTrueOrRefused) {
    for (const std::int64_t frames : {kFrames - 1, kFrames / 2}) {
        declareWave(static_cast<std::uint64_t>(frames));
        EXPECT_THAT(notesOnTheRightResults(), IsEmpty());
    }
    for (const std::int64_t frames : {kFrames + 1, 2 * kFrames}) {
        declareWave(static_cast<std::uint64_t>(frames));
        EXPECT_THAT(refusal(), HasSubstr("is cut off"));
        EXPECT_THAT(notesOnTheRightResults(true), IsEmpty());
    }
}

// One frame of MP3 is 1152 samples: 26 ms, within what encoders add.
TEST_F(WrongLength, OfAnMp3IsMadeGoodOrRefused) {
    declareMp3([](std::uint64_t count) { return count - 1; });
    EXPECT_THAT(notesOnTheRightResults(), ElementsAre(HasSubstr("declares")));
    declareMp3([](std::uint64_t count) { return count + 1; });
    EXPECT_THAT(notesOnTheRightResults(), ElementsAre(HasSubstr("declares")));
    declareMp3([](std::uint64_t count) { return count / 2; });
    EXPECT_THAT(notesOnTheRightResults(), ElementsAre(HasSubstr("declares")));
    declareMp3([](std::uint64_t count) { return count * 2; });
    EXPECT_THAT(refusal(), HasSubstr("is cut off"));
    EXPECT_THAT(notesOnTheRightResults(true), ElementsAre(HasSubstr("declares")));
}

}  // namespace
}  // namespace media
