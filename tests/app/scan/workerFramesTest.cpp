// SPDX-License-Identifier: MIT
#include "scan/workerFrames.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scan/AudioHasher.h"

namespace app {
namespace {

/** Through a pipe that hands over a byte at a time. */
std::string carried(const std::string& frame) {
    FrameGatherer gatherer;
    for (const char byte : frame.substr(0, frame.size() - 1)) {
        gatherer.put({&byte, 1});
        EXPECT_FALSE(gatherer.take());
    }
    gatherer.put(frame.substr(frame.size() - 1));
    return gatherer.take().value_or("");
}

catalogue::Analysed example() {
    catalogue::Analysed analysed;
    analysed.track = {"/\xFF\n.mp3",
                      {123456789012, 1700000000123456789},
                      {1, 2, 255},
                      {"mp3", "mp3", 2, 44100, 44100, true, {"A", "\xC3\xA9"}},
                      -1,
                      0.1};
    catalogue::ResultRow& result = analysed.result;
    result.parameters = "{}";
    result.toolVersion = "1";
    result.analysisSeconds = 1.0 / 3.0;
    result.warnings = {"is damaged", ""};
    result.bpm = 128.01;
    result.isSteady = false;
    result.confidence = {0.9, 0.8, 0.7, 0.6};
    result.key = 23;
    result.keyConfidence = std::numeric_limits<double>::denorm_min();
    result.tuningCents = -12.5;
    result.details = "{\"a\":1}";
    result.beats = std::string("\0\xFF\x80", 3);
    result.loudWave = "l";
    result.dotsWave = "d";
    result.zoomWave = std::string(100000, '\x90');
    return analysed;
}

TEST(WorkerFrames, CarryAnAnalysisToTheBit) {
    const catalogue::Analysed sent = example();
    const auto answer = answerOf(carried(frameOf(WorkerAnswer(sent))));
    const auto& got = std::get<catalogue::Analysed>(answer);
    EXPECT_EQ(got.track.path, sent.track.path);
    EXPECT_EQ(got.track.state, sent.track.state);
    EXPECT_EQ(got.track.hash, sent.track.hash);
    EXPECT_EQ(got.track.format.tags.title, sent.track.format.tags.title);
    EXPECT_EQ(got.track.format.changes, true);
    EXPECT_EQ(got.track.frames, -1);
    EXPECT_EQ(got.track.seconds, 0.1);
    EXPECT_EQ(got.result.analysisSeconds, 1.0 / 3.0);
    EXPECT_EQ(got.result.warnings, sent.result.warnings);
    EXPECT_EQ(got.result.bpm, 128.01);
    EXPECT_EQ(got.result.rawBpm, std::nullopt);
    EXPECT_EQ(got.result.isSteady, false);
    EXPECT_EQ(got.result.confidence.bars, 0.6);
    EXPECT_EQ(got.result.key, 23);
    EXPECT_EQ(got.result.keyConfidence, sent.result.keyConfidence);
    EXPECT_EQ(got.result.tuningCents, -12.5);
    EXPECT_EQ(got.result.details, sent.result.details);
    EXPECT_EQ(got.result.beats, sent.result.beats);
    EXPECT_EQ(got.result.zoomWave, sent.result.zoomWave);
}

TEST(WorkerFrames, CarryEveryOtherMessage) {
    const auto orders = ordersOf(carried(frameOf(WorkerOrders{"{}", true, false, 1L << 40})));
    EXPECT_EQ(orders.memoryLimit, 1L << 40);
    EXPECT_TRUE(orders.acceptsCutOff);
    const auto task = taskOf(carried(frameOf(WorkerTask{"/\xFE", true})));
    EXPECT_EQ(task.path, "/\xFE");
    EXPECT_FALSE(verdictOf(carried(frameOf(WorkerVerdict{false}))).goesOn);
    const auto answered = [](const WorkerAnswer& answer) {
        return answerOf(carried(frameOf(answer)));
    };
    EXPECT_TRUE(std::holds_alternative<WorkerReady>(answered(WorkerReady{})));
    EXPECT_EQ(std::get<WorkerProgress>(answered(WorkerProgress{0.5, 60.0})).seconds, 60.0);
    const WorkerHash hashed{
        {5, 6}, {9, 8, 7}, {"flac", "flac", 2, 44100, 44100, false, {"A", "T"}}};
    EXPECT_EQ(std::get<WorkerHash>(answered(hashed)).hash, hashed.hash);
    EXPECT_EQ(std::get<WorkerHash>(answered(hashed)).format.tags.title, "T");
    const catalogue::Failure failure{catalogue::FailureKind::crashed, "was killed"};
    EXPECT_EQ(std::get<catalogue::Failure>(answered(failure)).kind, failure.kind);
}

TEST(WorkerFrames, RefuseWhatIsNoFrame) {
    FrameGatherer gatherer;
    gatherer.put("\xFF\xFF\xFF\xFF");
    EXPECT_THROW(gatherer.take(), std::exception);
    EXPECT_THROW(answerOf("\xFF"), std::exception);
    EXPECT_THROW(taskOf(""), std::exception);
}

TEST(AudioHasherTest, HashesBothSidesHoweverTheyCome) {
    AudioHasher hasher;
    hasher.put({{0.5F}, {-0.5F}});
    hasher.put({{0.25F}, {1.0F}});
    // xxhsum -H2 of the bytes that it gives for the floats 0.5, 0.25 and for -0.5, 1.
    EXPECT_THAT(hasher.hash(),
                testing::ElementsAre(0x54, 0xFB, 0x66, 0x42, 0x11, 0x06, 0x8B, 0x2C, 0xE8, 0x66,
                                     0xFF, 0xF2, 0x03, 0xBC, 0xFD, 0xA1));
}

}  // namespace
}  // namespace app
