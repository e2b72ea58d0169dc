// SPDX-License-Identifier: MIT
#include "serve/Access.h"

#include <gtest/gtest.h>

namespace app {
namespace {

constexpr int kWrongHost = 421;
constexpr int kUninvited = 403;

int statusFor(const Access& access, const std::string& host) {
    HttpRequest request;
    request.method = "GET";
    request.path = "/";
    request.host = host;
    const auto refusal = access.refusal(request);
    return refusal ? refusal->status : 200;
}

TEST(Access, KnowsItsNameWithoutThePortThatIsTheUsualOne) {
    const Access usual("127.0.0.1", 80, false);
    EXPECT_EQ(statusFor(usual, "127.0.0.1"), kUninvited);
    EXPECT_EQ(statusFor(usual, "localhost"), kUninvited);
    EXPECT_EQ(statusFor(usual, "evil.example"), kWrongHost);
    EXPECT_EQ(statusFor(usual, ""), kWrongHost);
    EXPECT_EQ(statusFor({"127.0.0.1", 8000, false}, "127.0.0.1"), kWrongHost);
}

TEST(Access, TakesAnyNumericAddressWhereItListensAtAll) {
    const Access all("0.0.0.0", 8000, true);
    for (const char* host : {"10.1.2.3:8000", "[::1]:8000", "[fe80::1]:8000", "localhost:8000"})
        EXPECT_EQ(statusFor(all, host), kUninvited) << host;
    for (const char* host : {"evil.example:8000", "10.1.2:8000", "::1:8000", "[evil]:8000",
                             "10.1.2.3.evil.example:8000", "10.1.2.3:8001", "[]:8000", ":8000"})
        EXPECT_EQ(statusFor(all, host), kWrongHost) << host;
}

TEST(Access, InvitesToTheAddressAtWhichItIsReached) {
    EXPECT_TRUE(Access("::1", 8000, false).invitation().starts_with("http://[::1]:8000/?token="));
    EXPECT_TRUE(
        Access("0.0.0.0", 8000, true).invitation().starts_with("http://127.0.0.1:8000/?token="));
    EXPECT_NE(Access("::1", 8000, false).invitation(), Access("::1", 8000, false).invitation());
}

TEST(Access, AdmitsByTheWholeSecretAlone) {
    const Access access("127.0.0.1", 8000, false);
    const std::string invitation = access.invitation();
    const std::string token = invitation.substr(invitation.find('=') + 1);
    const auto statusWith = [&](const std::string& text) {
        HttpRequest request;
        request.method = "GET";
        request.path = "/";
        request.host = "127.0.0.1:8000";
        request.parameters.emplace("token", text);
        return access.refusal(request)->status;
    };
    EXPECT_EQ(statusWith(token), 303);
    for (const std::string& wrong : {std::string(), token.substr(1), token + "0",
                                     "0" + token.substr(1) + "x", std::string(64, '0')})
        EXPECT_EQ(statusWith(wrong), kUninvited) << wrong;
}

}  // namespace
}  // namespace app
