// SPDX-License-Identifier: MIT
#include "media/Decoding.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

constexpr std::int64_t kAll = 1LL << 40;
constexpr std::int64_t kFrames = 44100 * 10;

/** Ten seconds of FLAC, decoded in either place. */
class DecodingTest : public testing::TestWithParam<Decoding::Place> {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"flac", "flac"}, test::tone(44100, 2, 10.0, 220.0, 0.4));
    }

    static std::int64_t readAll(Decoding& decoding, PcmReader& reader) {
        StereoBlock block;
        block.resize(4096);
        std::int64_t frames = 0;
        for (;;) {
            const auto count = decoding.read(reader, block.left.data(), block.right.data(), 4096);
            frames += count;
            if (count == 0) return frames;
        }
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("track");
};

TEST_P(DecodingTest, HandsAWholeTrackToItsReaderWhateverIsKept) {
    for (const std::int64_t limit : {std::int64_t{1}, kAll}) {
        Decoding decoding(track_, limit, GetParam(), {});
        PcmReader reader(decoding.store());
        decoding.start();
        decoding.awaitFirst();
        EXPECT_EQ(decoding.sessionRate(), 44100);
        EXPECT_EQ(decoding.declaredFrames(), kFrames);
        EXPECT_EQ(readAll(decoding, reader), kFrames);
        EXPECT_EQ(decoding.store().isWhole(), limit == kAll);
        EXPECT_TRUE(decoding.awaitEnd());
    }
}

TEST_P(DecodingTest, TellsItsHooksOfEveryFrameAndOfTheEnd) {
    std::int64_t heard = 0;
    std::int64_t framesAtEnd = 0;
    Decoding decoding(
        track_, kAll, GetParam(),
        {[&](const StereoBlock& block) { heard += static_cast<std::int64_t>(block.frames()); },
         [&](const TrackDecoder& decoder, std::int64_t frames) {
             EXPECT_FALSE(decoder.isCutOff());
             framesAtEnd = frames;
         }});
    decoding.start();
    while (!decoding.awaitEnd()) {
    }
    EXPECT_EQ(heard, kFrames);
    EXPECT_EQ(framesAtEnd, kFrames);
    EXPECT_EQ(decoding.shareRead(), 1.0);
}

TEST_P(DecodingTest, StopsWhereverItIsWhenItGoes) {
    for (const std::int64_t limit : {std::int64_t{1}, kAll}) {
        Decoding unread(track_, limit, GetParam(), {});
        PcmReader reader(unread.store());
        unread.start();
    }
    Decoding neverStarted(track_, kAll, GetParam(), {});
}

TEST_P(DecodingTest, ThrowsWhatGoesWrongToItsReaderOnceItComesThere) {
    int blocks = 0;
    Decoding decoding(track_, 1, GetParam(),
                      {[&](const StereoBlock&) {
                           if (++blocks == 4) throw base::TrackError("torn");
                       },
                       nullptr});
    PcmReader reader(decoding.store());
    decoding.start();
    EXPECT_NO_THROW(decoding.awaitFirst());
    EXPECT_THROW(readAll(decoding, reader), base::TrackError);
    EXPECT_EQ(decoding.store().frames(), 3 * 16384);
}

TEST_P(DecodingTest, ThrowsBeforeTheFirstFrame) {
    Decoding decoding(track_, kAll, GetParam(),
                      {[](const StereoBlock&) { throw base::TrackError("torn"); }, nullptr});
    decoding.start();
    EXPECT_THROW(decoding.awaitFirst(), base::TrackError);
    EXPECT_THROW(static_cast<void>(decoding.awaitEnd()), base::TrackError);
}

TEST_P(DecodingTest, ThrowsBehindTheLastFrame) {
    Decoding decoding(track_, kAll, GetParam(), {nullptr, [](const TrackDecoder&, std::int64_t) {
                                                     throw base::TrackError("no");
                                                 }});
    PcmReader reader(decoding.store());
    decoding.start();
    EXPECT_THROW(readAll(decoding, reader), base::TrackError);
    EXPECT_EQ(decoding.store().frames(), kFrames);
}

INSTANTIATE_TEST_SUITE_P(Places, DecodingTest,
                         testing::Values(Decoding::Place::ownThread,
                                         Decoding::Place::readersThread),
                         [](const auto& place) {
                             return place.param == Decoding::Place::ownThread ? "OwnThread"
                                                                              : "ReadersThread";
                         });

}  // namespace
}  // namespace media
