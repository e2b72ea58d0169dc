// SPDX-License-Identifier: MIT
// Every request for memory is refused in turn, in both interfaces: at creation, while feeding, in
// the closing analysis and in the utilities. The plain functions return normally, the mangled ones
// throw std::bad_alloc, nothing is leaked, and what is left of a session can be fed, asked and
// released.
#include <cfenv>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExportSet.h"
#include "support/TrackSynth.h"
#include "support/refuseEach.h"

namespace beatatlas::test {
namespace {

constexpr int kSeconds = 4;
constexpr double kBpm = 170.0;
constexpr int kLastCall = 100;  // frames kept back for the call that closes the analysis
constexpr const char* kTransformMessage = "記憶領域不足\n";

const StereoTrack& trackOf(int kind) {
    const auto make = [](int rate) {
        return TrackSynth(dryKickPlan(rate, std::int64_t{rate} * kSeconds, kBpm)).renderAll();
    };
    static const StereoTrack at48k = make(48000);
    static const StereoTrack at44k = make(44100);
    return kind % 2 == 0 ? at48k : at44k;
}

struct Interface {
    const char* name;
    const ExportSet& (*exports)();
    bool throws;
};

void PrintTo(const Interface& interface, std::ostream* out) {
    *out << interface.name;
}

/** A session with everything on, and how many blocks it holds. */
class Subject {
public:
    Subject(const ExportSet& exports, int kind)
        : exports_(exports), track_(trackOf(kind)), blocks_(-liveBlocks()) {
        handle_ = exports.create[kind](track_.frames(), kind < 6 ? 32 : track_.frames(), true, true,
                                       true);
        blocks_ += liveBlocks();
    }

    void preCheck(int from, int count) { call(exports_.setSamplePre, from, count); }
    void feed(int from, int count) { call(exports_.setSample, from, count); }
    int frames() const { return track_.frames(); }
    bool isAnalyzed() const { return exports_.analyzed(handle_); }

    /** Asks for everything; answers how many requests for memory that took. */
    long readAll() const {
        std::vector<BA_BeatInfo> beats(static_cast<std::size_t>(exports_.getBeatNum(handle_)));
        std::vector<BA_WaveInfo> wave(
            static_cast<std::size_t>(std::max(exports_.getZoomWave(handle_, nullptr), 400)));
        std::vector<double> values(24);
        std::vector<int> numbers(24);
        const RequestsFailAfter shortage(0);
        exports_.getBpm(handle_);
        exports_.getMainKey(handle_);
        exports_.getBeatList(handle_, beats.data());
        exports_.getLoudWave(handle_, wave.data(), 0);
        exports_.getDotsWave(handle_, wave.data(), 0);
        exports_.getZoomWave(handle_, wave.data());
        if (exports_.getKeyPoint != nullptr) {
            exports_.getKeyPoint(handle_, values.data());
            exports_.getKeyRank(handle_, numbers.data());
            exports_.getNoteEncount(handle_, numbers.data());
            exports_.getNoteEncountVal(handle_, values.data());
        }
        return shortage.refusals();
    }

    int bpm() const { return exports_.getBpm(handle_); }
    void release() { exports_.release(handle_); }
    long blocks() const { return blocks_; }

private:
    void call(ExportSet::Feed function, int from, int count) {
        function(handle_, const_cast<float*>(track_.left.data()) + from,
                 const_cast<float*>(track_.right.data()) + from, count);
    }

    const ExportSet& exports_;
    const StereoTrack& track_;
    void* handle_ = nullptr;
    long blocks_;
};

class MemoryShortageTest : public ::testing::TestWithParam<std::tuple<Interface, Shortage>> {
protected:
    void SetUp() override {
        mode_ = std::fegetround();
        // Made before anything is counted.
        for (int kind : {0, 1}) trackOf(kind);
    }
    void TearDown() override { std::fesetround(mode_); }

    static const Interface& interface() { return std::get<0>(GetParam()); }
    static const ExportSet& exports() { return interface().exports(); }
    /** Varied, constant and, where there is one, simple tempo. */
    static std::vector<int> kinds() {
        if (exports().createCount == 6) return {2, 5};
        return {2, 5, 6};
    }
    static Shortage shortage() { return std::get<1>(GetParam()); }

private:
    int mode_ = 0;
};

TEST_P(MemoryShortageTest, CreateGivesAnInertSessionOrThrows) {
    for (int kind = 0; kind < exports().createCount; ++kind) {
        const StereoTrack& track = trackOf(kind);
        std::vector<float> samples(track.left);
        void* handle = nullptr;
        long before = 0;
        const auto create = [&] {
            before = liveBlocks();
            handle = exports().create[kind](track.frames(), 32, true, true, true);
        };
        const long requests =
            refuseEach(Requests::both, shortage(), create, [&](bool threw, long granted) {
                // Of the plain creates only the allocation of the session itself throws.
                EXPECT_EQ(threw, interface().throws || granted == 0);
                EXPECT_EQ(handle == nullptr, threw);
                exports().setSamplePre(handle, samples.data(), samples.data(), track.frames());
                exports().setSample(handle, samples.data(), samples.data(), track.frames());
                EXPECT_FALSE(exports().analyzed(handle));
                EXPECT_EQ(exports().getBpm(handle), 0);
                EXPECT_EQ(exports().getBeatNum(handle), 0);
                EXPECT_EQ(exports().getLoudWave(handle, nullptr, 400), 0);
                EXPECT_EQ(exports().getDotsWave(handle, nullptr, 100), 0);
                EXPECT_EQ(exports().getZoomWave(handle, nullptr), 0);
                EXPECT_EQ(exports().getMainKey(handle), 0);
                exports().release(handle);
                EXPECT_EQ(liveBlocks(), before);
            });
        EXPECT_GT(requests, 20);
    }
}

TEST_P(MemoryShortageTest, TheFedSessionGoesOnOrThrows) {
    for (const int kind : kinds()) {
        const long before = liveBlocks();
        Subject session(exports(), kind);
        session.preCheck(0, session.frames());
        const int part = session.frames() - kLastCall;
        long others = 0;
        const auto feed = [&] {
            others = liveBlocks() - session.blocks();
            session.feed(0, part);
        };
        const long requests = refuseEach(Requests::news, shortage(), feed, [&](bool threw, long) {
            EXPECT_EQ(threw, interface().throws);
            EXPECT_EQ(session.readAll(), 0);
            session.feed(0, session.frames());
            EXPECT_TRUE(session.isAnalyzed());
            EXPECT_EQ(session.readAll(), 0);
            session.release();
            EXPECT_EQ(liveBlocks(), others);
        });
        EXPECT_GT(requests, 0);
        session.release();
        EXPECT_EQ(liveBlocks(), before);
    }
}

TEST_P(MemoryShortageTest, TheClosingAnalysisReturnsOrThrowsAndTheSessionCountsAsAnalysed) {
    for (const int kind : kinds()) {
        const long before = liveBlocks();
        Subject session(exports(), kind);
        session.preCheck(0, session.frames());
        const int part = session.frames() - kLastCall;
        session.feed(0, part);
        const long fedBlocks = liveBlocks() - before;
        long others = 0;
        const auto close = [&] {
            others = liveBlocks() - fedBlocks;
            session.feed(part, kLastCall);
        };
        const long requests = refuseEach(Requests::both, shortage(), close, [&](bool threw, long) {
            EXPECT_EQ(threw, interface().throws);
            EXPECT_TRUE(session.isAnalyzed());
            EXPECT_EQ(session.readAll(), 0);
            session.feed(part, kLastCall);
            session.release();
            EXPECT_EQ(liveBlocks(), others);
        });
        EXPECT_GT(requests, 20);
        session.feed(part, kLastCall);
        EXPECT_NEAR(session.bpm(), 100.0 * kBpm, 10.0) << "with memory again";
        session.release();
        EXPECT_EQ(liveBlocks(), before);
    }
}

// The spectrum's tables are asked for by the first frame and, refused, by every later one: such
// frames are silent.
TEST_P(MemoryShortageTest, AKeySpectrumWithoutTablesSaysSoAndIsNoReasonToStop) {
    for (const int kind : kinds()) {
        Subject session(exports(), kind);
        session.preCheck(0, session.frames());
        const auto feed = [&] {
            ::testing::internal::CaptureStderr();
            session.feed(0, session.frames());
        };
        const long requests =
            refuseEach(Requests::callocs, shortage(), feed, [&](bool threw, long) {
                EXPECT_FALSE(threw);
                EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                            ::testing::StartsWith(kTransformMessage));
                EXPECT_TRUE(session.isAnalyzed());
                EXPECT_EQ(session.readAll(), 0);
            });
        EXPECT_GT(requests, 0);
        session.release();
    }
}

TEST_P(MemoryShortageTest, PreCheckAndGettersAskForNoMemory) {
    for (int kind = 0; kind < exports().createCount; ++kind) {
        Subject session(exports(), kind);
        {
            const RequestsFailAfter none(0);
            session.preCheck(0, session.frames());
            EXPECT_EQ(none.refusals(), 0);
        }
        EXPECT_EQ(session.readAll(), 0);
        session.feed(0, session.frames());
        EXPECT_EQ(session.readAll(), 0);
        session.release();
    }
}

TEST_P(MemoryShortageTest, AUtilityAnswersNeutrallyOrThrows) {
    int anything = 0;  // the utilities ask for a handle but do not use it
    std::vector<float> in(9000, 100.0F);
    std::vector<float> out(9000);
    float pitch = -1.0F;
    int key = -1;
    const auto count = static_cast<int>(in.size());
    const std::vector<std::function<void()>> utilities = {
        [&] { exports().resample(&anything, out.data(), 900, in.data(), count, 1.0F, 10, 0); },
        [&] { exports().cutBeats(&anything, out.data(), in.data(), count, 44100.0F, 1, 0); },
        [&] { pitch = exports().pitchDetect(&anything, in.data(), count, 4410.0F, 1, 3); },
        [&] { key = exports().getKey(&anything, in.data(), count, 4000.0F, 440.0F, 1, 0); },
    };
    for (const auto& utility : utilities) {
        long before = 0;
        const auto call = [&] {
            before = liveBlocks();
            utility();
        };
        const long requests = refuseEach(Requests::both, shortage(), call, [&](bool threw, long) {
            EXPECT_EQ(threw, interface().throws);
            EXPECT_TRUE(threw || pitch == -1.0F || pitch == 0.0F);
            EXPECT_TRUE(threw || key == -1 || key == 0);
            EXPECT_EQ(liveBlocks(), before);
        });
        EXPECT_GE(requests, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Interfaces, MemoryShortageTest,
    ::testing::Combine(::testing::Values(Interface{"Plain", plainExports, false},
                                         Interface{"Mangled", mangledExports, true}),
                       ::testing::Values(Shortage::lasting, Shortage::once)),
    [](const auto& instance) {
        return std::get<0>(instance.param).name +
               std::string(std::get<1>(instance.param) == Shortage::once ? "Once" : "Lasting");
    });

}  // namespace
}  // namespace beatatlas::test
