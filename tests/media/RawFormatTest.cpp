// SPDX-License-Identifier: MIT
#include "media/RawFormat.h"

#include <gtest/gtest.h>

namespace media {
namespace {

TEST(RawFormat, IsSamplesRateAndChannels) {
    const auto format = parseRawFormat("s24be:48000:6");
    ASSERT_TRUE(format);
    EXPECT_EQ(format->samples, "s24be");
    EXPECT_EQ(format->rate, 48000);
    EXPECT_EQ(format->channels, 6);
    EXPECT_EQ(format->bytesPerFrame(), 18);
}

TEST(RawFormat, KnowsEverySampleFormat) {
    for (const char* samples : {"u8", "s8", "s16le", "s16be", "s24le", "s24be", "s32le", "s32be",
                                "f32le", "f32be", "f64le", "f64be"})
        EXPECT_TRUE(parseRawFormat(std::string(samples) + ":44100:2")) << samples;
}

TEST(RawFormat, IsNothingElse) {
    for (const char* text :
         {"", ":", "::", "s16le", "s16le:44100", "s16:44100:2", "s16le:44100:2:", "s16le:44100:2 ",
          "s16le: 44100:2", "s16le:+44100:2", "s16le:44100.0:2", "s16le:999:2", "s16le:1536001:2",
          "s16le:44100:0", "s16le:44100:9", "s16le:99999999999:2", "S16LE:44100:2", "mp3:44100:2"})
        EXPECT_FALSE(parseRawFormat(text)) << text;
}

}  // namespace
}  // namespace media
