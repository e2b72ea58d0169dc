// SPDX-License-Identifier: MIT
#include "serve/requestFrame.h"

#include <string>

#include <gtest/gtest.h>

#include "serve/fileReply.h"

namespace app {
namespace {

TEST(RequestFrame, IsWholeWithTheLastByteOfItsBody) {
    const std::string request = "POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc";
    for (std::size_t i = 0; i < request.size(); ++i) {
        const RequestFrame frame = frameOf(request.substr(0, i));
        EXPECT_EQ(frame.refusal, nullptr) << i;
        EXPECT_FALSE(frame.isWhole(i)) << i;
    }
    const RequestFrame frame = frameOf(request);
    EXPECT_TRUE(frame.isWhole(request.size()));
    EXPECT_EQ(frame.headBytes, request.size() - 3);
    EXPECT_EQ(frame.bodyBytes, 3U);
}

TEST(RequestFrame, ReadsNamesOfHeadersWhateverTheirCapitals) {
    EXPECT_EQ(frameOf("A / B\r\nCONTENT-length:\t7 \r\n\r\n").bodyBytes, 7U);
    EXPECT_NE(frameOf("A / B\r\ntransfer-ENCODING: x\r\n\r\n").refusal, nullptr);
    // Another name that only begins or ends alike.
    EXPECT_EQ(frameOf("A / B\r\nX-Content-Length: 7\r\nContent-Length-X: 8\r\n\r\n").bodyBytes, 0U);
}

TEST(RequestFrame, EndsWithTheHeadWhateverFollows) {
    const RequestFrame frame = frameOf("A / B\r\n\r\nContent-Length: 7\r\n\r\n");
    EXPECT_EQ(frame.headBytes, 9U);
    EXPECT_EQ(frame.bodyBytes, 0U);
}

TEST(RangeOf, IsTheBytesBothIncluded) {
    const auto range = rangeOf("bytes=2-4", 10);
    ASSERT_TRUE(range);
    EXPECT_EQ(range->first, 2U);
    EXPECT_EQ(range->length, 3U);
}

TEST(RangeOf, EndsWithTheContent) {
    EXPECT_EQ(rangeOf("bytes=8-99", 10)->length, 2U);
    EXPECT_EQ(rangeOf("bytes=8-18446744073709551615", 10)->length, 2U);
    EXPECT_EQ(rangeOf("bytes=0-", 10)->length, 10U);
    EXPECT_EQ(rangeOf("bytes=-3", 10)->first, 7U);
    EXPECT_EQ(rangeOf("bytes=-99", 10)->first, 0U);
}

TEST(RangeOf, IsNothingForAllElse) {
    for (const char* header :
         {"", "bytes=", "bytes=-", "bytes=-0", "bytes=10-", "bytes=4-2", "bytes=1-2,4-5",
          "bytes=a-b", "bytes=1", "Bytes=1-2", "bytes=+1-2", "bytes=18446744073709551616-"})
        EXPECT_FALSE(rangeOf(header, 10)) << header;
    EXPECT_FALSE(rangeOf("bytes=0-0", 0));
    EXPECT_FALSE(rangeOf("bytes=-1", 0));
}

}  // namespace
}  // namespace app
