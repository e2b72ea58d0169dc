// SPDX-License-Identifier: MIT
#include "output/page/packed.h"

#include <gtest/gtest.h>

namespace output {
namespace {

// The examples of RFC 4648, section 10.
TEST(packed, Base64PadsToFours) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foob"), "Zm9vYg==");
    EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
}

TEST(packed, Base64TakesAnyByteAndBreaksNoLine) {
    EXPECT_EQ(base64(std::string_view("\0\xFF\xFE", 3)), "AP/+");
    const std::string long_ = base64(std::string(30000, '\xFF'));
    EXPECT_EQ(long_, std::string(40000, '/'));
}

// SHA-256 of "abc" by FIPS 180-4 is ba7816bf 8f01cfea 414140de 5dae2223 b00361a3 96177a9c b410ff61
// f20015ad.
TEST(packed, PolicyHashIsSha256InBase64) {
    EXPECT_EQ(policyHash("abc"), "'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='");
}

}  // namespace
}  // namespace output
