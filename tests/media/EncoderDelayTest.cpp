// SPDX-License-Identifier: MIT
#include "media/EncoderDelay.h"

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "base/errors.h"
#include "media/Container.h"
#include "media/StereoChain.h"
#include "media/TrackDecoder.h"
#include "support/ClickPattern.h"
#include "support/TemporaryFolder.h"
#include "support/encoderFiles.h"

namespace media {
namespace {

constexpr double kGoodMs = 1.0;

/** Files whose clicks cannot come out where they were: what cannot be known. */
struct Unknowable {
    std::string_view encoder;
    std::string_view container;  // empty: any
    double frames;               // by which they come out late, at the file's rate
};
constexpr Unknowable kUnknowable[] = {
    // An MP3 without an encoder's tag is taken for one of LAME's.
    {"libshine", "", -48.0},
    // Neither states the pre-skip, and libopus looks further ahead.
    {"opus", "CAF", 120.0 - 312.0},
    {"opus", "MPEG-TS", 120.0 - 312.0},
    // No tag names FFmpeg: taken for Windows' encoders, a block longer.
    {"wmav1", "W64", -2048.0},
    {"wmav2", "W64", -2048.0},
};

/** How late the clicks of a file come out, in seconds; nothing where there are none to be heard. */
std::optional<double> shiftOf(const std::string& path) {
    test::Recorder sound;
    TrackDecoder decoder(path);
    decoder.run(sound);
    return test::patternShift(sound.left, decoder.format().sessionRate);
}

/** Everything that the stream's decoder yields when it is told to drop nothing. */
void decodeWithDelay(const std::string& path, TrackSink& sink) {
    FileInput input(path);
    Container container(input);
    AVCodecContext* context =
        avcodec_alloc_context3(avcodec_find_decoder(container.stream().codecpar->codec_id));
    avcodec_parameters_to_context(context, container.stream().codecpar);
    context->pkt_timebase = container.stream().time_base;
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    avcodec_open2(context, nullptr, nullptr);
    StereoChain chain(sink);
    const PacketPointer packet = makePacket();
    const FramePointer frame = makeFrame();
    const auto receiveAll = [&] {
        while (avcodec_receive_frame(context, frame.get()) >= 0) chain.put(*frame);
    };
    while (container.next(*packet)) {
        if (avcodec_send_packet(context, packet.get()) >= 0) receiveAll();
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(context, nullptr);
    receiveAll();
    chain.finish();
    avcodec_free_context(&context);
}

class EveryEncoder : public testing::TestWithParam<const char*> {
protected:
    const std::string encoder_ = GetParam();
    test::TemporaryFolder folder_;

    /** The rate that the clicks were written at; 0 where the container does not hold the codec. */
    int write(const test::ContainerKind& container, const std::string& path) const {
        for (const int rate : test::ratesOf(encoder_))
            if (test::writeClickPattern(path, container, encoder_, rate)) return rate;
        return 0;
    }

    void check(const test::ContainerKind& container) {
        const std::string path = folder_.file("clicks");
        const int rate = write(container, path);
        if (rate == 0) return;
        std::optional<double> shift;
        try {
            shift = shiftOf(path);
        } catch (const base::TrackError&) {
        }
        // Written, but no decoder makes sense of it: positions do not come into it.
        if (!shift) return;
        double frames = 0.0;
        for (const Unknowable& row : kUnknowable) {
            const bool fits = row.encoder == encoder_ &&
                              (row.container.empty() || row.container == container.name);
            if (fits && std::abs(*shift) * 1000.0 >= kGoodMs) frames = row.frames;
        }
        EXPECT_NEAR(*shift * 1000.0, frames / rate * 1000.0, kGoodMs) << container.name;
        checkDropped(container, path, *shift);
        ++heard_;
    }

    /** What was left out is how much later the clicks come from a decoder that leaves nothing
     *  out. */
    static void checkDropped(const test::ContainerKind& container, const std::string& path,
                             double shift) {
        test::Recorder heard;
        TrackDecoder decoder(path);
        decoder.run(heard);
        test::Recorder whole;
        decodeWithDelay(path, whole);
        const auto later = test::patternShift(whole.left, decoder.format().sessionRate);
        ASSERT_TRUE(later) << container.name;
        const double dropped =
            static_cast<double>(decoder.droppedFrames()) / decoder.format().trackRate;
        EXPECT_NEAR(dropped * 1000.0, (*later - shift) * 1000.0, kGoodMs) << container.name;
    }

    int heard_ = 0;
};

// The oracle is the sound itself: clicks were put at known places, and within a millisecond there
// they must be.
TEST_P(EveryEncoder, KeepsClicksInPlaceInEveryContainer) {
    if (avcodec_find_encoder_by_name(GetParam()) == nullptr)
        GTEST_SKIP() << "this FFmpeg has no encoder " << encoder_;
    for (const auto& container : test::everyContainer()) check(container);
    EXPECT_GT(heard_, 0);
}

INSTANTIATE_TEST_SUITE_P(Files, EveryEncoder,
                         testing::Values("aac", "ac3", "ac3_fixed", "adpcm_ima_qt", "adpcm_ima_wav",
                                         "adpcm_ms", "adpcm_swf", "alac", "dca", "eac3", "flac",
                                         "g722", "g723_1", "g726", "libfdk_aac", "libgsm",
                                         "libgsm_ms", "libmp3lame", "libopus", "libshine",
                                         "libspeex", "libtwolame", "libvorbis", "mlp", "mp2",
                                         "mp2fixed", "nellymoser", "opus", "pcm_alaw", "pcm_f32le",
                                         "pcm_mulaw", "pcm_s16be", "pcm_s16le", "pcm_s24le",
                                         "real_144", "s302m", "truehd", "tta", "vorbis", "wavpack",
                                         "wmav1", "wmav2"),
                         [](const auto& instance) { return std::string(instance.param); });

constexpr int kRate = 44100;

class EncoderDelayTest : public testing::Test {
protected:
    /** The click pattern as an encoder and a muxer write it. */
    std::string written(const test::ContainerKind& container, const char* encoder) {
        const std::string path = folder_.file("clicks");
        EXPECT_TRUE(test::writeClickPattern(path, container, encoder, kRate));
        return path;
    }

    static double shiftInFrames(const std::string& path) {
        const auto shift = shiftOf(path);
        return shift ? *shift * kRate : NAN;
    }

    test::TemporaryFolder folder_;
};

std::string bigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

// FFmpeg's AAC encoder begins 1024 frames early and says so; an edit list of another time makes the
// track begin so much later.
TEST_F(EncoderDelayTest, FollowsTheEditListWhateverTimeItTells) {
    const std::string path = written({"M4A", "ipod"}, "aac");
    const std::string original = test::readFile(path);
    // Version and flags, one entry, its duration (here anything), its time.
    const std::size_t timeAt = original.find("elst") + 16;
    ASSERT_EQ(original.substr(timeAt, 4), bigEndian(1024));
    for (const std::uint32_t time : {1U, 1000U, 1024U, 1025U, 2048U, 2112U, 3072U}) {
        std::string bytes = original;
        bytes.replace(timeAt, 4, bigEndian(time));
        test::writeFile(path, bytes);
        EXPECT_NEAR(shiftInFrames(path), 1024.0 - time, 0.5) << time;
    }
}

// If an MP4 states nothing, Apple's programs have 2112 frames, as QuickTime assumes.
TEST_F(EncoderDelayTest, TakesTheDelayOfTheProgramThatWroteTheFile) {
    const std::string path = written({"M4A", "ipod", "use_editlist=0"}, "aac");
    EXPECT_NEAR(shiftInFrames(path), 0.0, 0.5);
    std::string bytes = test::readFile(path);
    const std::size_t at = bytes.rfind("Lavf");
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at, 6, "iTunes");
    test::writeFile(path, bytes);
    EXPECT_NEAR(shiftInFrames(path), 1024.0 - 2112.0, 0.5);
}

/** A box of MP4. */
std::string box(const std::string& type, const std::string& content) {
    return bigEndian(static_cast<std::uint32_t>(content.size() + 8)) + type + content;
}

/** The gapless tag of iTunes: 2112 frames before the music. */
std::string gaplessTag() {
    const std::string text = " 00000000 00000840 000001CA 0000000000020000 00000000";
    return box("----", box("mean", bigEndian(0) + "com.apple.iTunes") +
                           box("name", bigEndian(0) + "iTunSMPB") +
                           box("data", bigEndian(1) + bigEndian(0) + text));
}

TEST_F(EncoderDelayTest, FollowsTheGaplessTagWhereThereIsNoEditList) {
    const std::string path = written({"M4A", "ipod", "use_editlist=0"}, "aac");
    std::string bytes = test::readFile(path);
    // The tags are the file's last boxes, all around them included, so nothing behind them moves.
    const std::string tag = gaplessTag();
    for (const char* type : {"moov", "udta", "meta", "ilst"}) {
        const std::size_t sizeAt = bytes.rfind(type) - 4;
        const std::size_t end = bytes.size();
        bytes.replace(sizeAt, 4, bigEndian(static_cast<std::uint32_t>(end - sizeAt + tag.size())));
    }
    test::writeFile(path, bytes + tag);
    EXPECT_NEAR(shiftInFrames(path), 1024.0 - 2112.0, 0.5);
}

// MP3 as LAME encodes it is 1105 frames late; the packet table is believed all the same.
TEST_F(EncoderDelayTest, FollowsThePacketTableOfCaf) {
    const std::string path = written({"CAF", "caf"}, "libmp3lame");
    std::string bytes = test::readFile(path);
    // Type and length of the chunk, the numbers of packets and of frames.
    const std::size_t primingAt = bytes.rfind("pakt") + 4 + 8 + 8 + 8;
    bytes.replace(primingAt, 4, bigEndian(1105 + 300));
    test::writeFile(path, bytes);
    EXPECT_NEAR(shiftInFrames(path), -300.0, 0.5);
}

// In the place of the track's language, which is as long: 10 ms in nanoseconds, 441 frames.
TEST_F(EncoderDelayTest, FollowsTheCodecDelayOfMatroska) {
    const std::string path = written({"Matroska", "matroska"}, "aac");
    std::string bytes = test::readFile(path);
    const std::size_t languageAt = bytes.find("\x22\xB5\x9C\x83und");
    ASSERT_NE(languageAt, std::string::npos);
    bytes.replace(languageAt, 7, "\x56\xAA\x84" + bigEndian(10'000'000));
    test::writeFile(path, bytes);
    EXPECT_NEAR(shiftInFrames(path), 1024.0 - 441.0, 0.5);
}

// FFmpeg puts a header in front of a copied MP3 that has 0 for the delay that it does not know, or
// less the decoder's 529.
TEST_F(EncoderDelayTest, DoesNotTakeTheHeaderOfACopiedMp3ForItsEncodersWord) {
    const std::string path = written({"MP3", "mp3"}, "libmp3lame");
    const std::string original = test::readFile(path);
    const std::size_t delaysAt = original.find("Lavc") + 21;
    // 576 frames in the upper twelve of 24 bits.
    ASSERT_EQ(original.substr(delaysAt, 1), "\x24");
    for (const char* delay : {"\x00\x00", "\xDE\xF0"}) {
        std::string bytes = original;
        bytes.replace(delaysAt, 2, delay, 2);
        test::writeFile(path, bytes);
        TrackDecoder decoder(path);
        test::Recorder sound;
        decoder.run(sound);
        EXPECT_NEAR(test::patternShift(sound.left, kRate).value_or(NAN) * kRate, 0.0, 0.5);
        EXPECT_EQ(decoder.declaredFrames(), static_cast<std::int64_t>(sound.left.size()));
    }
}

std::string littleEndian(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

// A whole MP3 in the shell of a WAV, as some programs make them: its header is a block of silence.
TEST_F(EncoderDelayTest, DropsTheHeaderOfAnMp3InsideAnotherContainer) {
    const std::string path = written({"MP3", "mp3", "id3v2_version=0"}, "libmp3lame");
    const std::string mp3 = test::readFile(path);
    const auto length = static_cast<std::uint32_t>(mp3.size());
    const std::string format = littleEndian(0x55, 2) + littleEndian(2, 2) + littleEndian(kRate, 4) +
                               littleEndian(16000, 4) + littleEndian(1, 2) + littleEndian(0, 2) +
                               littleEndian(0, 2);
    test::writeFile(path, "RIFF" + littleEndian(length + 4 + 8 + 18 + 8, 4) + "WAVEfmt " +
                              littleEndian(18, 4) + format + "data" + littleEndian(length, 4) +
                              mp3);
    EXPECT_NEAR(shiftInFrames(path), 0.0, 0.5);
}

}  // namespace
}  // namespace media
