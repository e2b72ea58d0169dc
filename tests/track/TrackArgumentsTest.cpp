// SPDX-License-Identifier: MIT
// Arguments out of range, structures of hosts older and newer than the library, and handles that
// are null.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

const Audio& music() {
    static const Audio audio = shortMusic(44100, 5);
    return audio;
}

int statusOf(const BA_TrackOptions* options) {
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyzeArrays(options, music().rate, music().left.data(),
                                             music().right.data(), music().frames(), &track);
    EXPECT_EQ(track != nullptr, status == BA_TRACK_OK);
    BA_TrackRelease(track);
    return status;
}

template <class Change>
int statusWith(Change change) {
    BA_TrackOptions options = defaultsOf();
    change(options);
    return statusOf(&options);
}

TEST(TrackOptionsTest, HaveTheStatedDefaults) {
    BA_TrackOptions options;
    std::memset(&options, 0xAB, sizeof options);
    BA_TrackOptionsInit(&options, sizeof options);
    EXPECT_EQ(options.size, sizeof options);
    EXPECT_EQ(options.tempo, BA_TRACK_TEMPO_AUTO);
    EXPECT_EQ(options.section_beats, 32);
    EXPECT_EQ(options.range_seconds, 0.0);
    EXPECT_EQ(options.wants_key, 1);
    EXPECT_EQ(options.wants_waves, 1);
    EXPECT_EQ(options.threads, 1);
    EXPECT_EQ(options.reserved, 0);
    EXPECT_EQ(options.progress, nullptr);
    EXPECT_EQ(options.progress_host, nullptr);
    EXPECT_EQ(options.lowest_bpm, 0.0);
    EXPECT_EQ(options.highest_bpm, 0.0);
    EXPECT_EQ(options.beats_per_bar, 0);
    EXPECT_EQ(options.reserved_bar, 0);
    EXPECT_EQ(options.wants_session_key, 0);
    EXPECT_EQ(options.reserved_key, 0);
}

TEST(TrackOptionsTest, NullMeansAllDefaults) {
    BA_Track* track = nullptr;
    const int status = BA_TrackAnalyzeArrays(nullptr, music().rate, music().left.data(),
                                             music().right.data(), music().frames(), &track);
    EXPECT_TRUE(sameBits(readAndRelease(status, track), analyseArrays(defaultsOf(), music())));
    EXPECT_EQ(status, BA_TRACK_OK);
}

TEST(TrackOptionsTest, OutOfRangeAreRefused) {
    EXPECT_EQ(statusWith([](auto& options) { options.tempo = -1; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.tempo = 5; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.section_beats = 0; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.section_beats = -32; }),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.range_seconds = -1e-300; }),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.range_seconds = std::nan(""); }),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.threads = 0; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.threads = -1; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.reserved = 1; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.reserved_bar = 1; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.reserved_key = 1; }), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusWith([](auto& options) { options.beats_per_bar = 5; }), BA_TRACK_BAD_ARGUMENT);
}

TEST(TrackOptionsTest, ATempoRangeSpansAnOctaveAtLeast) {
    const auto statusOfRange = [](double lowest, double highest) {
        return statusWith([&](auto& options) {
            options.lowest_bpm = lowest;
            options.highest_bpm = highest;
        });
    };
    EXPECT_EQ(statusOfRange(85.0, 170.0), BA_TRACK_OK);
    EXPECT_EQ(statusOfRange(20.0, 1000.0), BA_TRACK_OK);
    EXPECT_EQ(statusOfRange(85.0, 169.9), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(19.9, 170.0), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(85.0, 1000.1), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(0.0, 170.0), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(85.0, 0.0), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(std::nan(""), 170.0), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(statusOfRange(85.0, std::nan("")), BA_TRACK_BAD_ARGUMENT);
}

TEST(TrackOptionsTest, AtTheEndsOfTheirRangesAreTaken) {
    EXPECT_EQ(statusWith([](auto& options) { options.section_beats = kMost; }), BA_TRACK_OK);
    EXPECT_EQ(statusWith([](auto& options) { options.threads = kMost; }), BA_TRACK_OK);
    EXPECT_EQ(statusWith([](auto& options) { options.wants_key = -1; }), BA_TRACK_OK);
    EXPECT_EQ(statusWith([](auto& options) {
                  options.tempo = BA_TRACK_TEMPO_SIMPLE;
                  options.range_seconds = std::numeric_limits<double>::max();
              }),
              BA_TRACK_OK);
}

// Each size of an older host ends behind a field. What it did not know is filled with what would be
// refused.
TEST(TrackOptionsTest, OfAnOlderHostHaveDefaultsForWhatItLacks) {
    const std::size_t sizes[] = {
        offsetof(BA_TrackOptions, tempo),         offsetof(BA_TrackOptions, section_beats),
        offsetof(BA_TrackOptions, range_seconds), offsetof(BA_TrackOptions, wants_key),
        offsetof(BA_TrackOptions, wants_waves),   offsetof(BA_TrackOptions, threads),
        offsetof(BA_TrackOptions, reserved),      offsetof(BA_TrackOptions, progress),
    };
    for (const std::size_t size : sizes) {
        BA_TrackOptions options = defaultsOf();
        options.tempo = BA_TRACK_TEMPO_VARIED;
        options.section_beats = 8;
        options.wants_key = 0;
        BA_TrackOptions expected = defaultsOf();
        const auto* known = reinterpret_cast<const unsigned char*>(&options);
        std::memcpy(&expected, known, size);
        expected.size = sizeof expected;
        std::memset(reinterpret_cast<unsigned char*>(&options) + size, 0xFF, sizeof options - size);
        options.size = size;
        const Found found = analyseArrays(options, music());
        EXPECT_EQ(found.status, BA_TRACK_OK) << size;
        EXPECT_TRUE(sameBits(found, analyseArrays(expected, music()))) << size;
        // A size within the next field: there is no such host, and none of its field is used.
        options.size = size + 1;
        EXPECT_TRUE(sameBits(analyseArrays(options, music()), found)) << size;
    }
}

TEST(TrackOptionsTest, TooSmallToHoldTheirSizeAreRefused) {
    for (std::size_t size = 0; size < sizeof(std::size_t); ++size)
        EXPECT_EQ(statusWith([&](auto& options) { options.size = size; }), BA_TRACK_BAD_ARGUMENT);
}

struct NewerOptions {
    BA_TrackOptions known;
    std::array<unsigned char, 24> unknown;
};

TEST(TrackOptionsTest, OfANewerHostAreTakenWhereTheyAskForNothingUnknown) {
    NewerOptions newer{defaultsOf(), {}};
    newer.known.size = sizeof newer;
    EXPECT_EQ(statusOf(&newer.known), BA_TRACK_OK);
    for (unsigned char& byte : newer.unknown) {
        byte = 1;
        EXPECT_EQ(statusOf(&newer.known), BA_TRACK_BAD_ARGUMENT);
        byte = 0;
    }
    newer.unknown.back() = 1;
    newer.known.size = sizeof newer - 1;
    EXPECT_EQ(statusOf(&newer.known), BA_TRACK_OK) << "the last byte is none of the host's";
}

TEST(TrackOptionsTest, AreFilledInAsFarAsTheHostKnowsThem) {
    constexpr std::size_t kOlder = offsetof(BA_TrackOptions, threads);
    NewerOptions newer;
    std::memset(&newer, 0xAB, sizeof newer);
    BA_TrackOptionsInit(&newer.known, kOlder);
    EXPECT_EQ(newer.known.size, kOlder);
    EXPECT_EQ(newer.known.wants_waves, 1);
    EXPECT_EQ(newer.known.threads, static_cast<std::int32_t>(0xABABABAB)) << "not the host's";
    BA_TrackOptionsInit(&newer.known, sizeof newer);
    EXPECT_EQ(newer.known.size, sizeof newer);
    EXPECT_EQ(newer.known.threads, 1);
    for (const unsigned char byte : newer.unknown) EXPECT_EQ(byte, 0);
    BA_TrackOptionsInit(nullptr, sizeof newer);
    std::size_t tooSmall = 77;
    BA_TrackOptionsInit(reinterpret_cast<BA_TrackOptions*>(&tooSmall), sizeof tooSmall - 1);
    EXPECT_EQ(tooSmall, 77U);
}

/** Must be refused before anything is called. */
void expectRefused(std::int32_t rate, std::int64_t frames, const BA_TrackSource& source,
                   const WatchedSource& watched) {
    int none = 0;
    auto* track = reinterpret_cast<BA_Track*>(&none);
    EXPECT_EQ(BA_TrackAnalyze(nullptr, rate, frames, &source, &track), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(track, nullptr);
    EXPECT_EQ(watched.opens(), 0);
}

TEST(TrackArgumentsTest, ARateOrLengthOutOfRangeIsRefused) {
    WatchedSource watched(music());
    const BA_TrackSource source = watched.asSource();
    for (const int rate : {0, -44100, 44099, 44101, 22050, 96000})
        expectRefused(rate, 1000, source, watched);
    for (const std::int64_t frames :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 31,
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
        expectRefused(44100, frames, source, watched);
}

TEST(TrackArgumentsTest, ASourceThatIsNotWholeIsRefused) {
    WatchedSource watched(music());
    const BA_TrackSource whole = watched.asSource();
    const auto changed = [&](auto change) {
        BA_TrackSource source = whole;
        change(source);
        expectRefused(44100, music().frames(), source, watched);
    };
    changed([](auto& source) { source.open = nullptr; });
    changed([](auto& source) { source.read = nullptr; });
    changed([](auto& source) { source.close = nullptr; });
    changed([](auto& source) { source.reserved = 1; });
    changed([](auto& source) { source.size = 0; });
    changed([](auto& source) { source.size = offsetof(BA_TrackSource, close); });
    BA_Track* track = nullptr;
    EXPECT_EQ(BA_TrackAnalyze(nullptr, 44100, 1000, nullptr, &track), BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(BA_TrackAnalyze(nullptr, 44100, 1000, &whole, nullptr), BA_TRACK_BAD_ARGUMENT);
}

TEST(TrackArgumentsTest, ASourceOfAnOlderHostHasQuickPasses) {
    WatchedSource watched(music());
    watched.isFewestPasses = true;
    BA_TrackSource source = watched.asSource();
    source.size = offsetof(BA_TrackSource, fewest_passes);
    BA_TrackOptions options = allWanted();
    options.threads = 2;
    BA_Track* track = nullptr;
    EXPECT_EQ(BA_TrackAnalyze(&options, 44100, music().frames(), &source, &track), BA_TRACK_OK);
    BA_TrackRelease(track);
    EXPECT_EQ(watched.opens(), 3);
}

TEST(TrackArgumentsTest, ASourceOfANewerHostIsTakenWhereItAsksForNothingUnknown) {
    struct {
        BA_TrackSource known;
        std::int64_t unknown;
    } newer{};
    WatchedSource watched(music());
    newer.known = watched.asSource();
    newer.known.size = sizeof newer;
    newer.unknown = 1;
    expectRefused(44100, music().frames(), newer.known, watched);
    newer.unknown = 0;
    BA_Track* track = nullptr;
    EXPECT_EQ(BA_TrackAnalyze(nullptr, 44100, music().frames(), &newer.known, &track), BA_TRACK_OK);
    BA_TrackRelease(track);
}

TEST(TrackArgumentsTest, ArraysThatAreNullAreRefused) {
    const float sample = 0.0F;
    int none = 0;
    auto* track = reinterpret_cast<BA_Track*>(&none);
    EXPECT_EQ(BA_TrackAnalyzeArrays(nullptr, 44100, nullptr, &sample, 1, &track),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(track, nullptr);
    EXPECT_EQ(BA_TrackAnalyzeArrays(nullptr, 44100, &sample, nullptr, 1, &track),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(BA_TrackAnalyzeArrays(nullptr, 44100, &sample, &sample, 1, nullptr),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(BA_TrackAnalyzeArrays(nullptr, 44101, &sample, &sample, 1, &track),
              BA_TRACK_BAD_ARGUMENT);
    EXPECT_EQ(BA_TrackAnalyzeArrays(nullptr, 44100, &sample, &sample, 0, &track),
              BA_TRACK_BAD_ARGUMENT);
}

TEST(TrackArgumentsTest, EveryStatusHasASentenceOfItsOwn) {
    std::set<std::string> sentences;
    for (const int status : {int{BA_TRACK_OK}, int{BA_TRACK_BAD_ARGUMENT}, int{BA_TRACK_NO_MEMORY},
                             int{BA_TRACK_STOPPED}, int{BA_TRACK_WRONG_LENGTH}, 5}) {
        const std::string text = BA_TrackStatusText(status);
        EXPECT_EQ(text.back(), '.');
        sentences.insert(text);
    }
    EXPECT_EQ(sentences.size(), 6U);
    for (const int unknown :
         {-1, 6, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_STREQ(BA_TrackStatusText(unknown), BA_TrackStatusText(5));
}

TEST(TrackGetterTest, ANullHandleIsAnsweredNeutrally) {
    BA_TrackBeat beat{};
    BA_WaveInfo point{};
    BA_TrackKeyScore score{};
    BA_TrackNote note{};
    EXPECT_EQ(BA_TrackRate(nullptr), 0);
    EXPECT_EQ(BA_TrackFrames(nullptr), 0);
    EXPECT_EQ(BA_TrackBpm(nullptr), 0.0);
    EXPECT_EQ(BA_TrackBeats(nullptr, &beat, 1), 0U);
    EXPECT_EQ(BA_TrackWave(nullptr, BA_TRACK_WAVE_ZOOM, &point, 1), 0U);
    BA_TrackKeyCandidate candidate{};
    BA_TrackKeySegment segment{};
    double tone = 0.0;
    EXPECT_EQ(BA_TrackKey(nullptr), -1);
    EXPECT_EQ(BA_TrackKeyConfidence(nullptr), 0.0);
    EXPECT_EQ(BA_TrackKeyRanking(nullptr, &candidate, 1), 0U);
    EXPECT_EQ(BA_TrackKeySegments(nullptr, &segment, 1), 0U);
    EXPECT_EQ(BA_TrackChroma(nullptr, &tone, 1), 0U);
    EXPECT_EQ(BA_TrackTuningCents(nullptr), 0.0);
    EXPECT_EQ(BA_TrackTuningHz(nullptr), 0.0);
    EXPECT_EQ(BA_TrackSessionKey(nullptr), -1);
    EXPECT_EQ(BA_TrackSessionKeyRanking(nullptr, &score, 1), 0U);
    EXPECT_EQ(BA_TrackNotes(nullptr, &note, 1), 0U);
    BA_TrackRelease(nullptr);
}

/** An analysed track. */
class TrackListTest : public ::testing::Test {
protected:
    void SetUp() override {
        const BA_TrackOptions options = allWanted();
        ASSERT_EQ(BA_TrackAnalyzeArrays(&options, music().rate, music().left.data(),
                                        music().right.data(), music().frames(), &track_),
                  BA_TRACK_OK);
    }
    void TearDown() override { BA_TrackRelease(track_); }

    /** Copies into arrays that are too small and too large, and none. */
    template <class Record, class Getter>
    void expectCopiesAsMuchAsThereIsRoomFor(const Getter& getter) {
        const std::size_t count = getter(nullptr, 0);
        ASSERT_GT(count, 2U);
        EXPECT_EQ(getter(nullptr, count), count);
        std::vector<Record> all(count);
        EXPECT_EQ(getter(all.data(), count), count);
        for (const std::size_t room :
             {std::size_t{0}, std::size_t{1}, count - 1, count, count + 3}) {
            std::vector<unsigned char> bytes((count + 3) * sizeof(Record), 0xAB);
            auto* records = reinterpret_cast<Record*>(bytes.data());
            EXPECT_EQ(getter(records, room), count);
            const std::size_t copied = std::min(room, count) * sizeof(Record);
            EXPECT_EQ(std::memcmp(bytes.data(), all.data(), copied), 0);
            for (std::size_t i = copied; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xAB) << i;
        }
    }

    BA_Track* track_ = nullptr;
};

TEST_F(TrackListTest, CopiesAsMuchAsThereIsRoomFor) {
    expectCopiesAsMuchAsThereIsRoomFor<BA_TrackBeat>(
        [&](BA_TrackBeat* out, std::size_t room) { return BA_TrackBeats(track_, out, room); });
    for (const int wave : {BA_TRACK_WAVE_LOUD, BA_TRACK_WAVE_DOTS, BA_TRACK_WAVE_ZOOM})
        expectCopiesAsMuchAsThereIsRoomFor<BA_WaveInfo>([&](BA_WaveInfo* out, std::size_t room) {
            return BA_TrackWave(track_, wave, out, room);
        });
    expectCopiesAsMuchAsThereIsRoomFor<BA_TrackKeyCandidate>(
        [&](BA_TrackKeyCandidate* out, std::size_t room) {
            return BA_TrackKeyRanking(track_, out, room);
        });
    expectCopiesAsMuchAsThereIsRoomFor<double>(
        [&](double* out, std::size_t room) { return BA_TrackChroma(track_, out, room); });
    expectCopiesAsMuchAsThereIsRoomFor<BA_TrackKeyScore>(
        [&](BA_TrackKeyScore* out, std::size_t room) {
            return BA_TrackSessionKeyRanking(track_, out, room);
        });
    expectCopiesAsMuchAsThereIsRoomFor<BA_TrackNote>(
        [&](BA_TrackNote* out, std::size_t room) { return BA_TrackNotes(track_, out, room); });
}

TEST_F(TrackListTest, HasNoWaveOfAnUnknownKind) {
    BA_WaveInfo point{-1.0F, -1};
    for (const int wave : {-1, 3, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(BA_TrackWave(track_, wave, &point, 1), 0U);
    EXPECT_EQ(point.color, -1);
}

}  // namespace
}  // namespace beatatlas::test
